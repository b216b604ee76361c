#ifndef KALVO_TESTS_CAMPANHA_LIVRO_H
#define KALVO_TESTS_CAMPANHA_LIVRO_H

#include <windows.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace campanha {

/// One write as its client saw it.
struct Gravacao {
  enum class Fim { SemResposta, Confirmada, Recusada };

  LONG lPos = 0;               ///< 0 appends, until the answer says where
  std::uint32_t uiNumero = 0;  ///< of the vehicle; no two writes have the same
  Fim eFim = Fim::SemResposta;
};

/// What the vehicles of a company must be after everything that its clients were told. No two clients write to one
/// position.
class CLivro {
public:
  /// Takes over what a client did, in its order.
  void Anota(const std::vector<Gravacao> &gravacoes);

  /// Compares with the company's vehicles, in their order, given by their numbers (0: one that is not whole). Each must
  /// be the last one acknowledged there, or the one whose write got no answer; nothing acknowledged may be missing and
  /// nothing refused be there. Returns what is wrong, or nothing. What is there becomes what must be there.
  std::string Confere(const std::vector<std::uint32_t> &lidos);

  std::size_t Veiculos() const { return m_numeros.size(); }

  /// The first of a hundred thousand numbers that no client has used before, for the one with that index of up to ten
  /// that write next.
  std::uint32_t NumerosDe(unsigned uiCliente) const { return 1 + (m_uiVezes * 10 + uiCliente) * 100000; }

  std::size_t Confirmadas() const { return m_uiConfirmadas; }
  std::size_t SemRespostaFeitas() const { return m_uiSemRespostaFeitas; }  ///< found done although nobody was told

private:
  bool TomaSemResposta(LONG lPos, std::uint32_t uiNumero);

  std::vector<std::uint32_t> m_numeros;  ///< by position; 0 where an append that got no answer may have gone
  std::vector<Gravacao> m_semResposta;
  unsigned m_uiVezes = 0;  ///< comparisons so far
  std::size_t m_uiConfirmadas = 0;
  std::size_t m_uiSemRespostaFeitas = 0;
};

}  // namespace campanha

#endif
