#ifndef KALVO_CLIENT_CODIFICACAO_H
#define KALVO_CLIENT_CODIFICACAO_H

// Character sets of the programs. Inside them every text is Windows-1252, as in the records. The five bytes without a
// character there stand for the control characters of their numbers, so that any bytes come back as they were.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The Unicode character of a byte.
char16_t De1252ParaUnicode(char c);

/// The character at the beginning of a UTF-8 text, which it is taken from; nothing, and nothing taken, when the text
/// does not begin with a well-formed one.
std::optional<char32_t> TiraCaractere(std::string_view &sUtf8);
void AcrescentaCaractere(std::string &sUtf8, char32_t uiCaractere);

/// Nothing when the text is malformed or has a character without a Windows-1252 form; nothing is replaced by a
/// look-alike.
std::optional<std::string> De8Para1252(std::string_view sUtf8);
std::optional<std::string> De16Para1252(std::wstring_view sUtf16);
std::string De1252Para8(std::string_view sTexto);
std::wstring De1252Para16(std::string_view sTexto);

/// The program's own texts: written in UTF-8 in the sources, Windows-1252 at run time.
inline std::string Pt(std::string_view sUtf8) {
  return De8Para1252(sUtf8).value();
}
inline std::string operator""_pt(const char *pTexto, std::size_t uiTamanho) {
  return Pt({pTexto, uiTamanho});
}

#endif
