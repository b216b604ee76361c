#include "client/Json.h"

#include <cstdio>

#include "client/Codificacao.h"

std::string TextoJson(std::string_view sTexto) {
  std::string sJson = "\"";
  for (const char c : sTexto) {
    const char16_t uiCaractere = De1252ParaUnicode(c);
    if (c == '"' || c == '\\') {
      sJson += {'\\', c};
    } else if (uiCaractere >= 0x20 && uiCaractere < 0x7F) {
      sJson += c;
    } else {
      char escape[8];
      std::snprintf(escape, sizeof(escape), "\\u%04x", static_cast<unsigned>(uiCaractere));
      sJson += escape;
    }
  }
  return sJson + '"';
}
