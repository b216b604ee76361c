#ifndef KALVO_TESTS_CAMPANHA_LIVRO_H
#define KALVO_TESTS_CAMPANHA_LIVRO_H

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace campanha {

/// One write as its client saw it.
struct Gravacao {
  enum class Fim { Confirmada, SemResposta, Recusada };

  LONG lPos = 0;               ///< 0 appends, until the answer says where
  std::uint32_t uiNumero = 0;  ///< of the vehicle; no two writes have the same
  Fim eFim = Fim::Confirmada;
};

/// What the vehicles of a company must be after everything that its clients were told. No two clients write to one
/// position.
class CLivro {
public:
  /// Takes over what a client did, in its order.
  void Anota(const std::vector<Gravacao> &gravacoes) {
    for (const Gravacao &gravacao : gravacoes) {
      if (gravacao.eFim == Gravacao::Fim::SemResposta) {
        m_semResposta.push_back(gravacao);
      } else if (gravacao.eFim == Gravacao::Fim::Confirmada) {
        const auto indice = static_cast<std::size_t>(gravacao.lPos - 1);
        m_numeros.resize(std::max(m_numeros.size(), indice + 1));
        m_numeros[indice] = gravacao.uiNumero;
        ++m_uiConfirmadas;
      }
    }
  }

  /// Compares with the company's vehicles, in their order, given by their numbers (0: one that is not whole). Each must
  /// be the last one acknowledged there, or the one whose write got no answer; nothing acknowledged may be missing and
  /// nothing refused be there. Returns what is wrong, or nothing. What is there becomes what must be there.
  std::string Confere(const std::vector<std::uint32_t> &lidos) {
    std::string sErrado;
    if (lidos.size() < m_numeros.size()) {
      sErrado = std::to_string(lidos.size()) + " vehicles instead of " + std::to_string(m_numeros.size()) + "; ";
    }
    m_numeros.resize(std::max(m_numeros.size(), lidos.size()));
    constexpr std::size_t kBastante = 400;  // of a text that somebody is to read
    for (std::size_t i = 0; i < lidos.size() && sErrado.size() < kBastante; ++i) {
      if (lidos[i] == 0 || (lidos[i] != m_numeros[i] && !TomaSemResposta(static_cast<LONG>(i + 1), lidos[i]))) {
        sErrado += "position " + std::to_string(i + 1) + " has " + std::to_string(lidos[i]) + " instead of " +
                   std::to_string(m_numeros[i]) + "; ";
      }
    }
    m_numeros = lidos;
    m_semResposta.clear();
    ++m_uiVezes;
    return sErrado;
  }

  std::size_t Veiculos() const { return m_numeros.size(); }

  /// The first of a hundred thousand numbers that no client has used before, for the one with that index of up to ten
  /// that write next.
  std::uint32_t NumerosDe(unsigned uiCliente) const { return 1 + (m_uiVezes * 10 + uiCliente) * 100000; }

  std::size_t Confirmadas() const { return m_uiConfirmadas; }
  std::size_t SemRespostaFeitas() const { return m_uiSemRespostaFeitas; }  ///< found done although nobody was told

private:
  bool TomaSemResposta(LONG lPos, std::uint32_t uiNumero) {
    const bool bNovo = m_numeros[static_cast<std::size_t>(lPos - 1)] == 0;
    const std::size_t uiTomadas = std::erase_if(m_semResposta, [&](const Gravacao &gravacao) {
      return gravacao.uiNumero == uiNumero && (gravacao.lPos == lPos || (gravacao.lPos == 0 && bNovo));
    });
    m_uiSemRespostaFeitas += uiTomadas;
    return uiTomadas != 0;
  }

  std::vector<std::uint32_t> m_numeros;  ///< by position; 0 where an append that got no answer may have gone
  std::vector<Gravacao> m_semResposta;
  unsigned m_uiVezes = 0;  ///< comparisons so far
  std::size_t m_uiConfirmadas = 0;
  std::size_t m_uiSemRespostaFeitas = 0;
};

}  // namespace campanha

#endif
