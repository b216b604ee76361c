#ifndef KALVO_CLIENT_QZVEICULOSMOEDA_H
#define KALVO_CLIENT_QZVEICULOSMOEDA_H

// The values of the currency fields (tare, capacities), signed 64-bit counts of ten-thousandths: from and to decimal
// text, and as a type of their own. Integers throughout: a double cannot hold every ten-thousandth of the range. Names
// in parentheses where a macro of Windows may bear them too.

#include "QZVeiculosPadrao.h"

inline constexpr std::int64_t kUnidadeMoeda = 10000;

/// "1234", "1234,5" and "1234.5" with at most four decimals and an optional '-'. Both signs are decimal separators:
/// there is no thousands separator. Anything else, or a value out of range, gives false and leaves vValor alone.
[[nodiscard]] inline bool MoedaDeTexto(std::string_view sTexto, std::int64_t &vValor) {
  constexpr int kDecimais = 4;
  const bool bNegativo = !sTexto.empty() && sTexto.front() == '-';
  if (bNegativo) {
    sTexto.remove_prefix(1);
  }
  // The magnitude of the lowest value is one more than that of the highest.
  const std::uint64_t uiLimite =
      static_cast<std::uint64_t>((std::numeric_limits<std::int64_t>::max)()) + (bNegativo ? 1U : 0U);
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

/// The shortest exact text, with a comma: "1234,5", "-0,0001", "8000".
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

/// A weight or a volume: what a currency field means, kept apart from plain integers, so that 8200 kg and a field's
/// 82000000 cannot be mistaken for each other.
class CQZMoeda {
public:
  constexpr CQZMoeda() = default;

  /// Whole units: kilograms, cubic metres.
  static constexpr CQZMoeda DeInteiro(std::int32_t iUnidades) { return DeCampo(iUnidades * kUnidadeMoeda); }
  /// What a field of a record holds.
  static constexpr CQZMoeda DeCampo(std::int64_t vCampo) {
    CQZMoeda moeda;
    moeda.m_vCampo = vCampo;
    return moeda;
  }
  /// Nothing for what MoedaDeTexto refuses.
  static std::optional<CQZMoeda> DeTexto(std::string_view sTexto) {
    CQZMoeda moeda;
    return MoedaDeTexto(sTexto, moeda.m_vCampo) ? std::optional(moeda) : std::nullopt;
  }

  constexpr std::int64_t Campo() const { return m_vCampo; }
  std::string Texto() const { return TextoDeMoeda(m_vCampo); }

  friend constexpr bool operator==(CQZMoeda a, CQZMoeda b) { return a.m_vCampo == b.m_vCampo; }
  friend constexpr bool operator!=(CQZMoeda a, CQZMoeda b) { return !(a == b); }
  friend constexpr bool operator<(CQZMoeda a, CQZMoeda b) { return a.m_vCampo < b.m_vCampo; }
  friend constexpr bool operator>(CQZMoeda a, CQZMoeda b) { return b < a; }
  friend constexpr bool operator<=(CQZMoeda a, CQZMoeda b) { return !(b < a); }
  friend constexpr bool operator>=(CQZMoeda a, CQZMoeda b) { return !(a < b); }

private:
  std::int64_t m_vCampo = 0;
};

#endif
