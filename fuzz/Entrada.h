#ifndef KALVO_FUZZ_ENTRADA_H
#define KALVO_FUZZ_ENTRADA_H

// What every fuzzer has: the bytes of a run, and how it tells a finding.

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "core/errors/CodigosResultado.h"

namespace fuzz {

/// The bytes of plain values.
template <typename T>
std::string_view BytesDe(const T *pValores, std::size_t qtd) {
  return {reinterpret_cast<const char *>(pValores), qtd * sizeof(T)};
}
template <typename T>
std::string_view BytesDe(const T &valor) {
  return BytesDe(&valor, 1);
}

/// The plain value that bytes begin with; those that are missing are zero.
template <typename T>
T Valor(std::string_view sBytes) {
  T valor{};
  sBytes.copy(reinterpret_cast<char *>(&valor), sizeof(valor));
  return valor;
}

/// The bytes of one run. What is taken behind their end is zero, or shorter.
class CEntrada : public FuzzedDataProvider {
public:
  explicit CEntrada(std::string_view sBytes)
      : FuzzedDataProvider(reinterpret_cast<const std::uint8_t *>(sBytes.data()), sBytes.size()) {}
  using FuzzedDataProvider::FuzzedDataProvider;

  std::uint8_t Byte() { return ConsumeIntegral<std::uint8_t>(); }

  /// A number from 0 to `uiMaximo`.
  std::size_t Ate(std::size_t uiMaximo) { return ConsumeIntegralInRange<std::size_t>(0, uiMaximo); }
};

/// Ends the run as a finding when a property does not hold.
inline void Exige(bool bVale, const char *lpPropriedade) {
  if (!bVale) {
    std::fprintf(stderr, "BROKEN: %s\n", lpPropriedade);
    std::abort();
  }
}

inline void ExigeCodigo(HRESULT hr, HRESULT hrEsperado, const char *lpPropriedade) {
  if (hr != hrEsperado) {
    std::fprintf(stderr, "0x%08X instead of 0x%08X\n", BitsResultado(hr), BitsResultado(hrEsperado));
    Exige(false, lpPropriedade);
  }
}

}  // namespace fuzz

#endif
