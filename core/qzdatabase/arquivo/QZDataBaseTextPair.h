#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_QZDATABASETEXTPAIR_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_QZDATABASETEXTPAIR_H

#include <cstdint>

#include "core/platform/Tipos.h"

/// One line of a text file in memory.
struct CQZDataBaseTextPair {
  /// Recorded place of the line in the file, where a write over it goes. Lines loaded or rewritten with the whole file
  /// count from the end of the header, appended lines from the start of the file. With a header the two differ by its
  /// length, and a write over an appended line lands that much too far; the difference is deliberate.
  std::uint64_t uiOffset = 0;

  /// The text; for a loaded line what stands before its first zero byte.
  CString sTexto;

  /// Bytes of text that the file holds for the line, of which `sTexto` may be only the beginning.
  std::uint64_t uiTamanhoNoArquivo = 0;

  /// `uiOffset` is not where the line is: it was added by a write that ran past the last line, or a line before it
  /// changed its length in such a write.
  bool bOffsetIncerto = false;
};

#endif
