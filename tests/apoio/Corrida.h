#ifndef KALVO_TESTS_APOIO_CORRIDA_H
#define KALVO_TESTS_APOIO_CORRIDA_H

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "core/errors/CodigosResultado.h"
#include "tests/apoio/EmpresaTeste.h"
#include "tests/apoio/ProcessoFilho.h"

namespace apoio {

/// A number from the environment, or the one given.
unsigned DoAmbiente(const char *lpNome, unsigned uiSenao);

/// How often what depends on chance is tried: as the environment's KALVO_RODADAS says, or a few times.
inline unsigned Rodadas() {
  return DoAmbiente("KALVO_RODADAS", 6);
}

/// A line of the list of created files.
std::string LinhaDaLista(const CString &sNome);

/// Processes that do the same thing to one company at the same moment, round after round: a round costs milliseconds,
/// not the start of a process. What went wrong is counted by kind. Destruction prints a line of the figures and fails
/// the test unless they are all 0.
class Corrida {
public:
  /// Starts the children. Each runs the registered function `sNome`, which hands its arguments on to Corre.
  Corrida(const std::string &sNome, const EmpresaTeste &empresa, unsigned uiProcessos,
          const std::string &sConfiguracao);
  ~Corrida();

  /// False when the rounds are over (Rodadas). Else the company's directory is empty and a new round begins.
  bool Proxima();
  /// Opens the gate. How many steps of its part each child was told done.
  std::vector<unsigned> Roda();

  // What the round left is counted where it is not as it must be.

  /// The data of a file, without its header, is these records in any order.
  void ConfereRegistros(const CString &sNome, std::size_t cbRegistro, std::multiset<std::string> registros);
  /// The list of created files has these names, each once, and nothing else; no companion of a file is left.
  void ConferePasta(const std::vector<CString> &listados);
  /// A process, or the one that opens the company afterwards, was refused.
  void Recusa(HRESULT hr);
  void Conta(const std::string &sOque, std::size_t qtd = 1);

  /// The data of a file, without its header; empty when the file is missing.
  std::string Dados(const CString &sNome) const;
  unsigned Rodada() const { return m_uiRodada; }

  /// One try of a child's part: `*puiFeitos` counts the steps done so far, over all tries.
  using Parte = std::function<HRESULT(unsigned uiRodada, unsigned *puiFeitos)>;
  /// The child's side: waits at the gate, runs its part, again while a file is busy, and tells; until no more rounds
  /// come. The arguments are company, directory, number of the child and the configuration.
  static int Corre(const std::vector<std::string> &argumentos, const Parte &parte);

private:
  std::vector<CString> Arquivos() const;

  const EmpresaTeste &m_empresa;
  std::string m_sTitulo;
  std::deque<ProcessoFilho> m_filhos;
  unsigned m_uiRodada = 0;
  unsigned m_uiConfirmados = 0;
  std::map<std::string, std::size_t> m_contas{{"lost", 0}, {"refused", 0}, {"names twice", 0}};
};

}  // namespace apoio

#endif
