#ifndef KALVO_QZDADOS_ARQUIVOEMEXAME_H
#define KALVO_QZDADOS_ARQUIVOEMEXAME_H

#include <functional>

#include "core/qzdatabase/disco/AberturaArquivo.h"
#include "qzdados/ErroArquivo.h"

/// Bytes done and bytes in all.
using FProgresso = std::function<void(std::uint64_t, std::uint64_t)>;

/// One file that is read from end to end without keeping others from it: opened for reading, denying nothing, and let
/// go of at short intervals, because a program that opens it exclusively cannot while it is open here. Such a program
/// tries for a second; the intervals are shorter.
///
/// All operations raise CErroArquivo. A file that another program took, or changed, between two readings is such an
/// error: what was read before would not belong to what follows. So is one that somebody changed while it was held.
class CArquivoEmExame final : public plataforma::IArquivoAberto {
public:
  /// How long the file is held at a time, and left alone after that.
  static constexpr std::uint32_t kVezMs = 200;
  static constexpr std::uint32_t kPausaMs = 30;

  /// `progresso` hears of every reading; may be empty.
  explicit CArquivoEmExame(const CString &sCaminho, FProgresso progresso = {});

  std::uint64_t Tamanho() const { return m_uiTamanho; }

  /// Raises unless the file still is what it was when it was opened.
  void ConfereQueNaoMudou();

  plataforma::FalhaArquivo Le(std::uint64_t posicao, void *destino, std::size_t qtd) override;
  plataforma::FalhaArquivo Tamanho(std::uint64_t *tamanho) override;
  plataforma::FalhaArquivo UltimaEscrita(std::uint64_t *ticks) override;
  /// Refused: nothing here writes.
  plataforma::FalhaArquivo Grava(std::uint64_t posicao, const void *origem, std::size_t qtd) override;
  plataforma::FalhaArquivo AjustaTamanho(std::uint64_t tamanho) override;
  plataforma::FalhaArquivo Descarrega() override;
  plataforma::FalhaArquivo Mapeia(std::size_t qtd, std::byte **ppBytes) override;

private:
  void Abre();
  /// Lets go of the file, and takes it again if it still is the same.
  void Cede(std::uint32_t uiPausaMs);

  CString m_sCaminho;
  FProgresso m_progresso;
  CQZAberturaArquivo m_abertura;
  std::uint32_t m_uiDesde = 0;  ///< when it was last opened, in ticks
  std::uint64_t m_uiTamanho = 0;
  std::uint64_t m_uiUltimaEscrita = 0;
};

#endif
