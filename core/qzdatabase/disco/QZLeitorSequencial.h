#ifndef KALVO_CORE_QZDATABASE_DISCO_QZLEITORSEQUENCIAL_H
#define KALVO_CORE_QZDATABASE_DISCO_QZLEITORSEQUENCIAL_H

#include <algorithm>
#include <cstring>

#include "core/platform/Arquivos.h"

/// Reads a range of an open file from front to back, in pieces large enough that short lines cost no system call.
class CQZLeitorSequencial {
public:
  /// `arquivo` must outlive the object and keep the bytes from `uiInicio` up to before `uiFim`.
  CQZLeitorSequencial(plataforma::IArquivoAberto &arquivo, std::uint64_t uiInicio, std::uint64_t uiFim)
      : m_arquivo(arquivo), m_uiProximo(uiInicio), m_uiFim(std::max(uiInicio, uiFim)) {}

  /// Bytes not handed out yet.
  std::uint64_t Restam() const { return m_uiFim - m_uiProximo + (m_sPeca.size() - m_usados); }

  /// Copies the next `qtd` bytes, of which there must be as many.
  plataforma::FalhaArquivo Le(void *pDestino, std::size_t qtd) {
    auto *pBytes = static_cast<char *>(pDestino);
    while (qtd > 0) {
      if (m_usados == m_sPeca.size()) {
        if (const plataforma::FalhaArquivo falha = LePeca()) {
          return falha;
        }
      }
      const std::size_t parte = std::min(qtd, m_sPeca.size() - m_usados);
      std::memcpy(pBytes, m_sPeca.data() + m_usados, parte);
      m_usados += parte;
      pBytes += parte;
      qtd -= parte;
    }
    return plataforma::kSemFalha;
  }

  /// Passes over the next `qtd` bytes, of which there must be as many; those behind the present piece are not read.
  void Pula(std::uint64_t qtd) {
    const std::uint64_t parte = std::min<std::uint64_t>(qtd, m_sPeca.size() - m_usados);
    m_usados += static_cast<std::size_t>(parte);
    m_uiProximo += qtd - parte;
  }

private:
  static constexpr std::uint64_t kTamanhoPeca = std::uint64_t{64} * 1024;

  plataforma::FalhaArquivo LePeca() {
    m_sPeca.resize(static_cast<std::size_t>(std::min(kTamanhoPeca, m_uiFim - m_uiProximo)));
    m_usados = 0;
    const plataforma::FalhaArquivo falha = m_arquivo.Le(m_uiProximo, m_sPeca.data(), m_sPeca.size());
    m_uiProximo += m_sPeca.size();
    return falha;
  }

  plataforma::IArquivoAberto &m_arquivo;
  std::uint64_t m_uiProximo;
  std::uint64_t m_uiFim;
  CString m_sPeca;
  std::size_t m_usados = 0;
};

#endif
