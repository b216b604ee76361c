#ifndef KALVO_CORE_QZDATABASE_DISCO_PERCORREARQUIVO_H
#define KALVO_CORE_QZDATABASE_DISCO_PERCORREARQUIVO_H

#include <algorithm>
#include <vector>

#include "core/platform/SistemaArquivos.h"

/// Reads an open file from `uiInicio` to its end, in pieces that stay in the processor's cache, and calls
/// `visita(posicao, bytes, qtd)` for each, which returns a FalhaArquivo. Stops at the first failure.
template <typename F>
plataforma::FalhaArquivo PercorreArquivo(plataforma::IArquivoAberto &arquivo, std::uint64_t uiInicio, F &&visita) {
  constexpr std::uint64_t kTamanhoPeca = std::uint64_t{256} * 1024;
  std::uint64_t uiTamanho = 0;
  if (const plataforma::FalhaArquivo falha = arquivo.Tamanho(&uiTamanho)) {
    return falha;
  }
  std::vector<char> peca(static_cast<std::size_t>(std::min(kTamanhoPeca, uiTamanho)));
  for (std::uint64_t uiPosicao = uiInicio; uiPosicao < uiTamanho;) {
    const auto qtd = static_cast<std::size_t>(std::min<std::uint64_t>(peca.size(), uiTamanho - uiPosicao));
    plataforma::FalhaArquivo falha = arquivo.Le(uiPosicao, peca.data(), qtd);
    if (!falha) {
      falha = visita(uiPosicao, static_cast<const char *>(peca.data()), qtd);
    }
    if (falha) {
      return falha;
    }
    uiPosicao += qtd;
  }
  return plataforma::kSemFalha;
}

#endif
