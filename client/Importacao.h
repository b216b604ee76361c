#ifndef KALVO_CLIENT_IMPORTACAO_H
#define KALVO_CLIENT_IMPORTACAO_H

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_set>

#include "client/LeitorCsv.h"

struct CPassosImportacao {
  std::function<void(const tagREG_VEICULOPS &)> Grava;            ///< what it raises ends the import
  std::function<void(const CLinhaCsv &)> Recusa;                  ///< a bad line
  std::function<void(std::size_t, std::size_t)> MostraProgresso;  ///< bytes done, bytes in all
  std::function<bool()> Parar;                                    ///< asked before each line: true ends the import
};

/// Kept up to date during the import, so that it tells what was done when Grava raises.
struct CResultadoImportacao {
  std::size_t uiGravados = 0;
  std::size_t uiRecusados = 0;
  std::size_t uiRepetidos = 0;
  std::size_t uiUltimaGravada = 0;  ///< line; 0: none
  std::size_t uiProximaLinha = 0;   ///< where an import that stopped goes on: the line that was not written
  bool bParada = false;             ///< Parar asked for it
};

/// The codes that exist already. A vehicle without a code repeats none.
class CCodigosConhecidos {
public:
  /// False when the vehicle's code was known before.
  bool Acrescenta(const tagREG_VEICULOPS &veiculo);

private:
  std::unordered_set<std::string> m_codigos;
};

/// Writes the good lines from uiDesdeLinha on and hands the bad ones to Recusa, in the order of the file. With
/// pConhecidos, vehicles whose code is among them are counted and not written; a written one's joins them. Works on a
/// copy of the reader, so that a file can be gone through without writing first.
void ImportaCsv(CLeitorCsv leitor, std::size_t uiDesdeLinha, CCodigosConhecidos *pConhecidos,
                const CPassosImportacao &passos, CResultadoImportacao &resultado);

#endif
