#ifndef KALVO_TESTS_APOIO_CORRIDA_H
#define KALVO_TESTS_APOIO_CORRIDA_H

#include <cstdlib>
#include <deque>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/errors/CodigosResultado.h"
#include "tests/apoio/EmpresaComBase.h"
#include "tests/apoio/ProcessoFilho.h"

namespace apoio {

/// A number from the environment, or the one given.
inline unsigned DoAmbiente(const char *lpNome, unsigned uiSenao) {
  const char *const lpValor = std::getenv(lpNome);
  return lpValor != nullptr ? static_cast<unsigned>(std::stoul(lpValor)) : uiSenao;
}

/// How often what depends on chance is tried: as the environment's KALVO_RODADAS says, or a few times.
inline unsigned Rodadas() {
  return DoAmbiente("KALVO_RODADAS", 6);
}

/// Processes that do the same thing to one company at the same moment, round after round: a round costs milliseconds,
/// not the start of a process. Destruction prints a line of figures.
class Corrida {
public:
  /// Starts the children. Each runs the registered function `sNome`, which hands its arguments on to Corre.
  Corrida(const std::string &sNome, const EmpresaComBase &empresa, unsigned uiProcessos,
          const std::string &sConfiguracao);
  ~Corrida();

  /// False when the rounds are over (Rodadas). Else the company's directory is empty and a new round begins.
  bool Proxima();
  /// Opens the gate. How many steps of its part each child was told done.
  std::vector<unsigned> Roda();

  /// The data of a file is these records in any order.
  void ConfereRegistros(const CString &sNome, std::size_t cbRegistro,
                        const std::multiset<std::string> &registros) const;
  /// The list of created files has these names, each once, and nothing else; no companion of a file is left.
  void ConferePasta(const std::vector<CString> &listados) const;

  /// The data of a file, without its header; empty when the file is missing.
  std::string Dados(const CString &sNome) const;
  unsigned Rodada() const { return m_uiRodada; }

  /// One try of a child's part: `*puiFeitos` counts the steps done so far, over all tries.
  using Parte = std::function<HRESULT(unsigned uiRodada, unsigned *puiFeitos)>;
  /// The child's side: waits at the gate, runs its part, again while a file is busy, and tells; until no more rounds
  /// come. The arguments are company, directory, number of the child and the configuration.
  static int Corre(const std::vector<std::string> &argumentos, const Parte &parte);

private:
  const EmpresaComBase &m_empresa;
  std::string m_sTitulo;
  std::deque<ProcessoFilho> m_filhos;
  unsigned m_uiRodada = 0;
  unsigned m_uiConfirmados = 0;
  std::optional<testing::ScopedTrace> m_rastro;
};

}  // namespace apoio

#endif
