#ifndef KALVO_QZDADOS_LISTAGEM_H
#define KALVO_QZDADOS_LISTAGEM_H

#include <limits>

#include "qzdados/Tela.h"
#include "qzdados/TipoArquivo.h"

enum class EFormato { Tabela, Csv, Json };

/// Which records or lines are wanted, both ends included, from 1 on.
struct FaixaPosicoes {
  std::uint64_t uiDe = 1;
  std::uint64_t uiAte = std::numeric_limits<std::uint64_t>::max();
};

/// Writes the records or lines of a file whatever its header says; what stands behind the last whole one, and lines
/// that are too long to be shown whole, are told as errors. The CSV of vehicles is one that "veiculos importa" takes;
/// JSON is plain ASCII. Raises CErroArquivo, also for a kind that has neither records nor lines.
void ListaArquivo(const CString &sCaminho, const IdentidadeArquivo &identidade, EFormato eFormato,
                  const FaixaPosicoes &faixa, ITela &tela);

#endif
