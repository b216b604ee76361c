#include "client/Codificacao.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace {

/// The characters of the bytes 0x80 to 0x9F. All other bytes are the characters of their numbers.
constexpr std::uint8_t kPrimeiroProprio = 0x80;
constexpr std::array<char16_t, 32> kProprios{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

std::optional<char> DeUnicodePara1252(std::uint32_t uiCaractere) {
  const auto it = std::find(kProprios.begin(), kProprios.end(), uiCaractere);
  if (it != kProprios.end()) {
    return static_cast<char>(kPrimeiroProprio + (it - kProprios.begin()));
  }
  const bool bProprio = uiCaractere >= kPrimeiroProprio && uiCaractere < kPrimeiroProprio + kProprios.size();
  return uiCaractere > 0xFF || bProprio ? std::nullopt : std::optional(static_cast<char>(uiCaractere));
}

}  // namespace

char16_t De1252ParaUnicode(char c) {
  const auto uiByte = static_cast<std::uint8_t>(c);
  const bool bProprio = uiByte >= kPrimeiroProprio && uiByte < kPrimeiroProprio + kProprios.size();
  return bProprio ? kProprios[uiByte - kPrimeiroProprio] : uiByte;
}

std::optional<char32_t> TiraCaractere(std::string_view &sUtf8) {
  struct CForma {
    std::uint8_t uiMascara, uiMarca;
    std::size_t uiBytes;
    char32_t uiMenor;
  };
  static constexpr std::array kFormas{CForma{0x80, 0x00, 1, 0}, CForma{0xE0, 0xC0, 2, 0x80},
                                      CForma{0xF0, 0xE0, 3, 0x800}, CForma{0xF8, 0xF0, 4, 0x10000}};
  if (sUtf8.empty()) {
    return std::nullopt;
  }
  const auto uiPrimeiro = static_cast<std::uint8_t>(sUtf8.front());
  const auto forma = std::find_if(kFormas.begin(), kFormas.end(),
                                  [&](const CForma &f) { return (uiPrimeiro & f.uiMascara) == f.uiMarca; });
  if (forma == kFormas.end() || sUtf8.size() < forma->uiBytes) {
    return std::nullopt;
  }
  char32_t uiCaractere = uiPrimeiro & static_cast<std::uint8_t>(~forma->uiMascara);
  for (const char c : sUtf8.substr(1, forma->uiBytes - 1)) {
    if ((static_cast<std::uint8_t>(c) & 0xC0) != 0x80) {
      return std::nullopt;
    }
    uiCaractere = uiCaractere << 6 | (static_cast<std::uint8_t>(c) & 0x3FU);
  }
  const bool bMetade = uiCaractere >= 0xD800 && uiCaractere < 0xE000;
  if (uiCaractere < forma->uiMenor || uiCaractere > 0x10FFFF || bMetade) {
    return std::nullopt;
  }
  sUtf8.remove_prefix(forma->uiBytes);
  return uiCaractere;
}

void AcrescentaCaractere(std::string &sUtf8, char32_t uiCaractere) {
  if (uiCaractere < 0x80) {
    sUtf8 += static_cast<char>(uiCaractere);
    return;
  }
  const int iSeguintes = uiCaractere < 0x800 ? 1 : uiCaractere < 0x10000 ? 2 : 3;
  constexpr std::array<std::uint8_t, 4> kMarcas{0x00, 0xC0, 0xE0, 0xF0};
  sUtf8 += static_cast<char>(kMarcas[static_cast<std::size_t>(iSeguintes)] | uiCaractere >> (6 * iSeguintes));
  for (int i = iSeguintes - 1; i >= 0; --i) {
    sUtf8 += static_cast<char>(0x80 | (uiCaractere >> (6 * i) & 0x3F));
  }
}

std::optional<std::string> De8Para1252(std::string_view sUtf8) {
  std::string sDestino;
  while (!sUtf8.empty()) {
    const std::optional<char32_t> uiCaractere = TiraCaractere(sUtf8);
    const std::optional<char> c = uiCaractere ? DeUnicodePara1252(*uiCaractere) : std::nullopt;
    if (!c) {
      return std::nullopt;
    }
    sDestino += *c;
  }
  return sDestino;
}

std::optional<std::string> De16Para1252(std::wstring_view sUtf16) {
  std::string sDestino;
  for (const wchar_t uiUnidade : sUtf16) {
    const std::optional<char> c = DeUnicodePara1252(static_cast<std::uint32_t>(uiUnidade));
    if (!c) {
      return std::nullopt;
    }
    sDestino += *c;
  }
  return sDestino;
}

std::string De1252Para8(std::string_view sTexto) {
  std::string sDestino;
  for (const char c : sTexto) {
    AcrescentaCaractere(sDestino, De1252ParaUnicode(c));
  }
  return sDestino;
}

std::wstring De1252Para16(std::string_view sTexto) {
  std::wstring sDestino;
  for (const char c : sTexto) {
    sDestino += static_cast<wchar_t>(De1252ParaUnicode(c));
  }
  return sDestino;
}
