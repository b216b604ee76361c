#ifndef KALVO_CORE_PLATFORM_POSIX_ARQUIVOABERTO_H
#define KALVO_CORE_PLATFORM_POSIX_ARQUIVOABERTO_H

#include "core/platform/Arquivos.h"
#include "core/platform/posix/UsoArquivo.h"

namespace plataforma {

/// An open file over a descriptor. The descriptor may be able to do more than the mode asks for (the share rules need
/// it readable), so the access is checked here.
class ArquivoAberto final : public IArquivoAberto {
public:
  explicit ArquivoAberto(Acesso eAcesso);
  ~ArquivoAberto() override;
  ArquivoAberto(const ArquivoAberto &) = delete;
  ArquivoAberto &operator=(const ArquivoAberto &) = delete;

  /// To be filled with the file's descriptor; everything else needs that.
  Descritor *Posse() { return &m_descritor; }

  FalhaArquivo Le(std::uint64_t posicao, void *pDestino, std::size_t qtd) override;
  FalhaArquivo Grava(std::uint64_t posicao, const void *pOrigem, std::size_t qtd) override;
  FalhaArquivo Tamanho(std::uint64_t *tamanho) override;
  FalhaArquivo AjustaTamanho(std::uint64_t tamanho) override;
  FalhaArquivo UltimaEscrita(std::uint64_t *puiTicks) override;
  FalhaArquivo Descarrega() override;
  FalhaArquivo Mapeia(std::size_t qtd, std::byte **ppBytes) override;

private:
  Descritor m_descritor;
  Acesso m_eAcesso;
  void *m_pMapa = nullptr;
  std::size_t m_qtdMapa = 0;
};

}  // namespace plataforma

#endif
