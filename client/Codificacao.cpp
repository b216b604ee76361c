#include "client/Codificacao.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace {

// The characters of the bytes 0x80 to 0x9F. All other bytes are the characters of their numbers.
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

// The character at the beginning of a text of up to three bytes, which it is taken from; nothing when it is malformed.
// Longer forms are those of characters that Windows-1252 does not have.
std::optional<std::uint32_t> TiraCaractere(std::string_view &sUtf8) {
  struct CForma {
    std::uint8_t uiMascara, uiMarca;
    std::size_t uiBytes;
    std::uint32_t uiMenor;
  };
  static constexpr std::array kFormas{CForma{0x80, 0x00, 1, 0}, CForma{0xE0, 0xC0, 2, 0x80},
                                      CForma{0xF0, 0xE0, 3, 0x800}};
  const auto uiPrimeiro = static_cast<std::uint8_t>(sUtf8.front());
  const auto forma = std::find_if(kFormas.begin(), kFormas.end(),
                                  [&](const CForma &f) { return (uiPrimeiro & f.uiMascara) == f.uiMarca; });
  if (forma == kFormas.end() || sUtf8.size() < forma->uiBytes) {
    return std::nullopt;
  }
  std::uint32_t uiCaractere = uiPrimeiro & static_cast<std::uint8_t>(~forma->uiMascara);
  for (const char c : sUtf8.substr(1, forma->uiBytes - 1)) {
    if ((static_cast<std::uint8_t>(c) & 0xC0) != 0x80) {
      return std::nullopt;
    }
    uiCaractere = uiCaractere << 6 | (static_cast<std::uint8_t>(c) & 0x3FU);
  }
  sUtf8.remove_prefix(forma->uiBytes);
  return uiCaractere < forma->uiMenor ? std::nullopt : std::optional(uiCaractere);
}

}  // namespace

char16_t De1252ParaUnicode(char c) {
  const auto uiByte = static_cast<std::uint8_t>(c);
  const bool bProprio = uiByte >= kPrimeiroProprio && uiByte < kPrimeiroProprio + kProprios.size();
  return bProprio ? kProprios[uiByte - kPrimeiroProprio] : uiByte;
}

std::optional<std::string> De8Para1252(std::string_view sUtf8) {
  std::string sDestino;
  while (!sUtf8.empty()) {
    const std::optional<std::uint32_t> uiCaractere = TiraCaractere(sUtf8);
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
    const std::uint32_t uiCaractere = De1252ParaUnicode(c);
    if (uiCaractere < 0x80) {
      sDestino += c;
    } else if (uiCaractere < 0x800) {
      sDestino += {static_cast<char>(0xC0 | uiCaractere >> 6), static_cast<char>(0x80 | (uiCaractere & 0x3F))};
    } else {
      sDestino += {static_cast<char>(0xE0 | uiCaractere >> 12), static_cast<char>(0x80 | (uiCaractere >> 6 & 0x3F)),
                   static_cast<char>(0x80 | (uiCaractere & 0x3F))};
    }
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
