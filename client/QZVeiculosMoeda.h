#ifndef KALVO_CLIENT_QZVEICULOSMOEDA_H
#define KALVO_CLIENT_QZVEICULOSMOEDA_H

// Currency values, signed 64-bit counts of ten-thousandths, from and to decimal text. Integers throughout: a double
// cannot hold every ten-thousandth of the range.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

inline constexpr std::int64_t kUnidadeMoeda = 10000;

// "1234", "1234,5" and "1234.5" with at most four decimals and an optional '-'. Both signs are decimal separators:
// there is no thousands separator. Anything else, or a value out of range, gives false and leaves vValor alone.
[[nodiscard]] inline bool MoedaDeTexto(std::string_view sTexto, std::int64_t &vValor) {
  constexpr int kDecimais = 4;
  const bool bNegativo = !sTexto.empty() && sTexto.front() == '-';
  if (bNegativo) {
    sTexto.remove_prefix(1);
  }
  // The magnitude of the lowest value is one more than that of the highest.
  const std::uint64_t uiLimite =
      static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) + (bNegativo ? 1U : 0U);
  std::uint64_t uiValor = 0;
  const auto acrescenta = [&](unsigned uiDigito) {
    if (uiValor > (uiLimite - uiDigito) / 10) {
      return false;
    }
    uiValor = uiValor * 10 + uiDigito;
    return true;
  };

  bool bInteiros = false;
  int iDecimais = -1;  // -1 before the separator
  for (const char c : sTexto) {
    if ((c == ',' || c == '.') && iDecimais < 0 && bInteiros) {
      iDecimais = 0;
      continue;
    }
    if (c < '0' || c > '9' || iDecimais == kDecimais || !acrescenta(static_cast<unsigned>(c - '0'))) {
      return false;
    }
    bInteiros = true;
    iDecimais += iDecimais >= 0 ? 1 : 0;
  }
  if (!bInteiros || iDecimais == 0) {
    return false;
  }
  for (int i = iDecimais < 0 ? 0 : iDecimais; i < kDecimais; ++i) {
    if (!acrescenta(0)) {
      return false;
    }
  }
  vValor = static_cast<std::int64_t>(bNegativo ? 0 - uiValor : uiValor);
  return true;
}

// The shortest exact text, with a comma: "1234,5", "-0,0001", "8000".
inline std::string TextoDeMoeda(std::int64_t vValor) {
  constexpr std::uint64_t kUnidade = kUnidadeMoeda;
  const auto uiBits = static_cast<std::uint64_t>(vValor);
  const std::uint64_t uiMagnitude = vValor < 0 ? 0 - uiBits : uiBits;
  std::string sTexto = vValor < 0 ? "-" : "";
  sTexto += std::to_string(uiMagnitude / kUnidade);
  if (uiMagnitude % kUnidade != 0) {
    // The unit added in front keeps the leading zeros of the decimals.
    std::string sDecimais = std::to_string(kUnidade + uiMagnitude % kUnidade).substr(1);
    sDecimais.erase(sDecimais.find_last_not_of('0') + 1);
    sTexto += ',';
    sTexto += sDecimais;
  }
  return sTexto;
}

#endif
