#include "client/Codificacao.h"

#include <windows.h>

namespace {

constexpr UINT kPaginaTextos = 1252;

std::optional<std::wstring> Para16(UINT uiPagina, DWORD uiOpcoes, std::string_view sTexto) {
  if (sTexto.empty()) {
    return std::wstring();
  }
  const int iTamanho = static_cast<int>(sTexto.size());
  // UTF-16 never takes more units than the 8-bit forms take bytes.
  std::wstring sDestino(sTexto.size(), L'\0');
  const int iUnidades = MultiByteToWideChar(uiPagina, uiOpcoes, sTexto.data(), iTamanho, sDestino.data(), iTamanho);
  if (iUnidades <= 0) {
    return std::nullopt;
  }
  sDestino.resize(static_cast<std::size_t>(iUnidades));
  return sDestino;
}

}  // namespace

std::optional<std::string> De16Para1252(std::wstring_view sUtf16) {
  if (sUtf16.empty()) {
    return std::string();
  }
  const int iTamanho = static_cast<int>(sUtf16.size());
  std::string sDestino(sUtf16.size(), '\0');
  BOOL bTrocado = FALSE;
  const int iBytes = WideCharToMultiByte(kPaginaTextos, WC_NO_BEST_FIT_CHARS, sUtf16.data(), iTamanho, sDestino.data(),
                                         iTamanho, nullptr, &bTrocado);
  if (iBytes != iTamanho || bTrocado) {
    return std::nullopt;
  }
  return sDestino;
}

std::optional<std::string> De8Para1252(std::string_view sUtf8) {
  const std::optional<std::wstring> sUtf16 = Para16(CP_UTF8, MB_ERR_INVALID_CHARS, sUtf8);
  return sUtf16 ? De16Para1252(*sUtf16) : std::nullopt;
}

std::wstring De1252Para16(std::string_view sTexto) {
  return Para16(kPaginaTextos, 0, sTexto).value();
}
