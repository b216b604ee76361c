#ifndef KALVO_CLIENT_CODIFICACAO_H
#define KALVO_CLIENT_CODIFICACAO_H

// Character sets of the program. Inside it every text is Windows-1252, as in the records.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Nothing when the text is malformed or has a character without a Windows-1252 form; nothing is replaced by a
// look-alike.
std::optional<std::string> De8Para1252(std::string_view sUtf8);
std::optional<std::string> De16Para1252(std::wstring_view sUtf16);
std::wstring De1252Para16(std::string_view sTexto);

// The program's own texts: written in UTF-8 in the sources, Windows-1252 at run time.
inline std::string operator""_pt(const char *pTexto, std::size_t uiTamanho) {
  return De8Para1252({pTexto, uiTamanho}).value();
}

#endif
