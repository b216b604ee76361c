#include "core/log/Rastro.h"

#include <array>
#include <atomic>
#include <cstdio>

namespace {

std::atomic<SumidouroRastro> g_sumidouro{nullptr};

constexpr HRESULT kNenhumEsperado[] = {kFimCodigosEsperados};

}  // namespace

SumidouroRastro DefineSumidouroRastro(SumidouroRastro sumidouro) {
  return g_sumidouro.exchange(sumidouro);
}

bool ErroEsperado(HRESULT hr, const HRESULT *pCodigos) {
  for (;; ++pCodigos) {
    if (hr == *pCodigos) {
      return true;
    }
    if (*pCodigos == kFimCodigosEsperados) {
      return false;
    }
  }
}

bool CQZRastro::Rastreia(HRESULT hr, const char *lpExpressao, const char *lpVariavel, int iLinha) const {
  if (ErroEsperado(hr, kNenhumEsperado)) {
    return false;
  }
  if (const SumidouroRastro sumidouro = g_sumidouro.load()) {
    sumidouro({m_pProfiler, m_funcao, m_lpArquivo, iLinha, lpVariavel, lpExpressao, hr});
  }
  return true;
}

HRESULT CQZRastro::Codigo(HRESULT hr, int iLinha) const {
  std::array<char, 32> texto{};
  std::snprintf(texto.data(), texto.size(), "((HRESULT)0x%08XL)", BitsResultado(hr));
  static_cast<void>(Falha(hr, texto.data(), iLinha));
  return hr;
}
