#include "tests/campanha/Livro.h"

#include <algorithm>

namespace campanha {

void CLivro::Anota(const std::vector<Gravacao> &gravacoes) {
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

bool CLivro::TomaSemResposta(LONG lPos, std::uint32_t uiNumero) {
  const bool bNovo = m_numeros[static_cast<std::size_t>(lPos - 1)] == 0;
  const auto achada = std::find_if(m_semResposta.begin(), m_semResposta.end(), [&](const Gravacao &gravacao) {
    return gravacao.uiNumero == uiNumero && (gravacao.lPos == lPos || (gravacao.lPos == 0 && bNovo));
  });
  if (achada == m_semResposta.end()) {
    return false;
  }
  m_semResposta.erase(achada);
  ++m_uiSemRespostaFeitas;
  return true;
}

std::string CLivro::Confere(const std::vector<std::uint32_t> &lidos) {
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

}  // namespace campanha
