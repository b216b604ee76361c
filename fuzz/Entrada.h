#ifndef KALVO_FUZZ_ENTRADA_H
#define KALVO_FUZZ_ENTRADA_H

// What every fuzzer has: the bytes of a run, and how it tells a finding.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
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

/// What stands before the first zero byte.
inline std::string AteOZero(std::string_view sTexto) {
  return std::string(sTexto.substr(0, sTexto.find('\0')));
}

/// The bytes of one run, taken from the front. What is taken behind their end is zero, or shorter.
class CEntrada {
public:
  explicit CEntrada(std::string_view sBytes) : m_sRestam(sBytes) {}

  bool Acabou() const { return m_sRestam.empty(); }

  std::uint8_t Byte() { return Valor<std::uint8_t>(); }

  /// A number from 0 to `uiMaximo`, from one byte.
  std::size_t Ate(std::size_t uiMaximo) { return Byte() % (uiMaximo + 1); }

  /// A plain value.
  template <typename T>
  T Valor() {
    T valor{};
    const std::string sBytes = Bytes(sizeof(valor));
    std::memcpy(&valor, sBytes.data(), sBytes.size());
    return valor;
  }

  /// As many bytes as there still are, at most `uiMaximo`.
  std::string Bytes(std::size_t uiMaximo) {
    const std::string sBytes(m_sRestam.substr(0, uiMaximo));
    m_sRestam.remove_prefix(sBytes.size());
    return sBytes;
  }

  std::string Resto() { return Bytes(m_sRestam.size()); }

private:
  std::string_view m_sRestam;
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

/// One run of a fuzzer; each defines its own.
void Executa(CEntrada *pEntrada);

}  // namespace fuzz

#endif
