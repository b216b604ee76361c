#ifndef KALVO_QZDADOS_LEITORLINHAS_H
#define KALVO_QZDADOS_LEITORLINHAS_H

#include "core/qzdatabase/disco/QZLeitorSequencial.h"

/// One line of a text file.
struct LinhaLida {
  CString sTexto;               ///< up to its first zero byte, and no more than the reader keeps
  std::uint64_t uiTamanho = 0;  ///< bytes behind the length, as the file has them
  bool bInteira = false;        ///< false when its length reaches past the end of the file
  bool bCortada = false;        ///< the text is longer than what the reader keeps
};

/// Reads the lines of a text file from front to back with a bounded memory, whatever lengths the file states.
class CLeitorLinhas {
public:
  /// `arquivo` must outlive the object. At most `uiMaximo` bytes of a line are kept.
  CLeitorLinhas(plataforma::IArquivoAberto &arquivo, std::uint64_t uiInicio, std::uint64_t uiFim, std::size_t uiMaximo);

  /// False behind the last line; what Restam then says are fewer bytes than a line's length has.
  plataforma::FalhaArquivo Proxima(LinhaLida *pLinha, bool *pbHa);

  /// Bytes behind the lines read so far.
  std::uint64_t Restam() const { return m_leitor.Restam(); }

private:
  CQZLeitorSequencial m_leitor;
  std::size_t m_uiMaximo;
};

#endif
