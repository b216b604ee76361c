#ifndef KALVO_CORE_QZDATABASE_DISCO_PERCORREARQUIVO_H
#define KALVO_CORE_QZDATABASE_DISCO_PERCORREARQUIVO_H

#include <algorithm>
#include <vector>

#include "core/platform/Arquivos.h"

/// Reads an open file from `uiInicio` to before `uiFim`, in pieces that stay in the processor's cache, and calls
/// `visita(posicao, bytes, qtd)` for each, which returns a FalhaArquivo. Stops at the first failure.
template <typename F>
plataforma::FalhaArquivo PercorreArquivo(plataforma::IArquivoAberto &arquivo, std::uint64_t uiInicio,
                                         std::uint64_t uiFim, F &&visita) {
  constexpr std::uint64_t kTamanhoPeca = std::uint64_t{256} * 1024;
  std::vector<char> peca(static_cast<std::size_t>(std::min(kTamanhoPeca, uiFim)));
  for (std::uint64_t uiPosicao = uiInicio; uiPosicao < uiFim;) {
    const auto qtd = static_cast<std::size_t>(std::min<std::uint64_t>(peca.size(), uiFim - uiPosicao));
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

/// To the end of the file.
template <typename F>
plataforma::FalhaArquivo PercorreArquivo(plataforma::IArquivoAberto &arquivo, std::uint64_t uiInicio, F &&visita) {
  std::uint64_t uiTamanho = 0;
  const plataforma::FalhaArquivo falha = arquivo.Tamanho(&uiTamanho);
  return falha ? falha : PercorreArquivo(arquivo, uiInicio, uiTamanho, visita);
}

#endif
