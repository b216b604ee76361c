#include "client/Sugestao.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "client/Codificacao.h"

namespace {

constexpr std::size_t kMenorComeco = 3;

/// Fewest letters to add, take away, exchange or swap with their neighbour to make one word of the other.
std::size_t Distancia(std::string_view sUma, std::string_view sOutra) {
  std::vector<std::size_t> aPenultima;
  std::vector<std::size_t> aAnterior(sOutra.size() + 1);
  std::vector<std::size_t> aAtual(sOutra.size() + 1);
  for (std::size_t j = 0; j <= sOutra.size(); ++j) {
    aAnterior[j] = j;
  }
  for (std::size_t i = 1; i <= sUma.size(); ++i) {
    aAtual[0] = i;
    for (std::size_t j = 1; j <= sOutra.size(); ++j) {
      const std::size_t uiTroca = sUma[i - 1] == sOutra[j - 1] ? 0 : 1;
      aAtual[j] = std::min({aAnterior[j] + 1, aAtual[j - 1] + 1, aAnterior[j - 1] + uiTroca});
      if (i > 1 && j > 1 && sUma[i - 1] == sOutra[j - 2] && sUma[i - 2] == sOutra[j - 1]) {
        aAtual[j] = std::min(aAtual[j], aPenultima[j - 2] + 1);
      }
    }
    aPenultima = aAnterior;
    std::swap(aAnterior, aAtual);
  }
  return aAnterior.back();
}

}  // namespace

std::string Sugestao(std::string_view sPalavra, std::span<const std::string_view> aCandidatos) {
  std::string_view sMelhor;
  std::size_t uiMenor = 0;
  for (const std::string_view sCandidato : aCandidatos) {
    const bool bComeco = sPalavra.size() >= kMenorComeco && sCandidato.starts_with(sPalavra);
    const std::size_t uiDistancia = bComeco ? 1 : Distancia(sPalavra, sCandidato);
    const bool bPerto = uiDistancia * 3 <= std::max(sPalavra.size(), sCandidato.size()) + 1;
    if (bPerto && (sMelhor.empty() || uiDistancia < uiMenor)) {
      sMelhor = sCandidato;
      uiMenor = uiDistancia;
    }
  }
  return sMelhor.empty() ? std::string() : "; o mais parecido é \""_pt + std::string(sMelhor) + "\"";
}
