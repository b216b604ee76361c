#include "qzdados/LeitorLinhas.h"

#include <algorithm>
#include <cstdint>

using plataforma::FalhaArquivo;

CLeitorLinhas::CLeitorLinhas(plataforma::IArquivoAberto &arquivo, std::uint64_t uiInicio, std::uint64_t uiFim,
                             std::size_t uiMaximo)
    : m_leitor(arquivo, uiInicio, uiFim), m_uiMaximo(uiMaximo) {}

FalhaArquivo CLeitorLinhas::Proxima(LinhaLida *pLinha, bool *pbHa) {
  std::uint32_t uiDeclarado = 0;
  *pbHa = Restam() >= sizeof(uiDeclarado);
  if (!*pbHa) {
    return plataforma::kSemFalha;
  }
  if (const FalhaArquivo falha = m_leitor.Le(&uiDeclarado, sizeof(uiDeclarado))) {
    return falha;
  }
  pLinha->uiTamanho = std::min<std::uint64_t>(uiDeclarado, Restam());
  pLinha->bInteira = pLinha->uiTamanho == uiDeclarado;
  const auto lidos = static_cast<std::size_t>(std::min<std::uint64_t>(pLinha->uiTamanho, m_uiMaximo));
  pLinha->sTexto.resize(lidos);
  const FalhaArquivo falha = m_leitor.Le(pLinha->sTexto.data(), lidos);
  m_leitor.Pula(pLinha->uiTamanho - lidos);
  const std::size_t uiZero = pLinha->sTexto.find('\0');
  pLinha->bCortada = lidos < pLinha->uiTamanho && uiZero == CString::npos;
  pLinha->sTexto.resize(std::min(uiZero, lidos));
  return falha;
}
