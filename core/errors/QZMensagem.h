#ifndef KALVO_CORE_ERRORS_QZMENSAGEM_H
#define KALVO_CORE_ERRORS_QZMENSAGEM_H

#include "core/platform/Tipos.h"

/// The message catalogues: user-facing texts by message number, one text file a product ("QZ<code>Mens.txt" in the
/// suite's messages folder). A line holds the number in its first eight characters and the text behind them, in which
/// backslash and "n" stand for a line break. The file is read anew at each lookup. Any thread may call.
///
/// Boxes block until they are answered: none of this while locks are held.
class CQZMensagem {
public:
  virtual ~CQZMensagem() = default;

  /// Makes the catalogues the source of the texts of CQZException.
  static void Instala();

  /// Text of the first line with that number; empty when there is none. A catalogue that cannot be opened shows a box
  /// at every lookup. Number 0 is that of every line that does not begin with a number.
  static CString LeMensagem(std::uint32_t uiMensagem, std::uint32_t uiSistema);

  /// Shows a message in a modal box without an owner, titled with the product's name, with the operating system's error
  /// below the text when there was one.
  static void ExibeMensagem(std::uint32_t uiMensagem, std::uint32_t uiSistema, std::uint32_t uiErroSO,
                            std::uint32_t uiTipo);

  /// The platform's text for an error code in the user's language; empty when it has none.
  static CString DescricaoErroSO(std::uint32_t uiErroSO);
};

#endif
