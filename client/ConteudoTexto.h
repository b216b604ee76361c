#ifndef KALVO_CLIENT_CONTEUDOTEXTO_H
#define KALVO_CLIENT_CONTEUDOTEXTO_H

// The character set of a whole text file: told by its byte-order mark or by the user, or found out.

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

enum class ECodificacao { Windows1252, Utf8, Utf16le, Utf16be };

/// "windows-1252", "utf-8", "utf-16" (little-endian), "utf-16le", "utf-16be", in any letter case; nothing for another
/// name.
std::optional<ECodificacao> CodificacaoDoNome(std::string_view sNome);

/// The bytes with which a file in this character set begins.
std::string_view MarcaDaCodificacao(ECodificacao eQual);

/// A Windows-1252 text in another character set, without a mark.
std::string Codifica(std::string_view sTexto, ECodificacao eQual);

struct CConteudoTexto {
  std::string sTexto;  ///< without the mark
  bool bUtf8 = false;  ///< otherwise Windows-1252
  std::string sAviso;  ///< what was assumed and might be wrong (Windows-1252); empty when nothing was
};

/// A file that cannot be taken for text, or not without being told its character set; the text is Windows-1252.
class CErroCodificacao : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// A mark decides; without one eDada does. Without both, bytes that are valid UTF-8 and not ASCII alone are UTF-8,
/// which the warning says; others are Windows-1252, with a warning where some of them look like UTF-8 nevertheless.
/// UTF-16 comes out as UTF-8; what is malformed in it becomes the replacement character. Raises CErroCodificacao.
CConteudoTexto Decodifica(std::string sBytes, std::optional<ECodificacao> eDada);

#endif
