#ifndef KALVO_CLIENT_IMPORTACAO_H
#define KALVO_CLIENT_IMPORTACAO_H

#include <cstddef>
#include <functional>

#include "client/LeitorCsv.h"

struct CPassosImportacao {
  std::function<void(const tagREG_VEICULOPS &)> Grava;            // what it raises ends the import
  std::function<void(const CLinhaCsv &)> Recusa;                  // a bad line
  std::function<void(std::size_t, std::size_t)> MostraProgresso;  // bytes done, bytes in all
};

// Kept up to date during the import, so that it tells what was done when Grava raises.
struct CResultadoImportacao {
  std::size_t uiGravados = 0;
  std::size_t uiRecusados = 0;
  std::size_t uiLinha = 0;  // the last one looked at
};

// Both work on a copy of the reader, so that a file can be validated and then imported.

// Hands every bad line to Recusa without writing anything; their number.
std::size_t ValidaCsv(CLeitorCsv leitor, const std::function<void(const CLinhaCsv &)> &Recusa);

// Writes the good lines and hands the bad ones to Recusa, in the order of the file.
void ImportaCsv(CLeitorCsv leitor, const CPassosImportacao &passos, CResultadoImportacao &resultado);

#endif
