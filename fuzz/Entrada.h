#ifndef KALVO_FUZZ_ENTRADA_H
#define KALVO_FUZZ_ENTRADA_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace fuzz {

/// The bytes of one run, taken from the front. What is taken behind their end is zero, or shorter.
class CEntrada {
public:
  CEntrada(const std::uint8_t *pBytes, std::size_t qtd) : m_pBytes(pBytes), m_uiRestam(qtd) {}

  bool Acabou() const { return m_uiRestam == 0; }

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
    const std::size_t qtd = std::min(uiMaximo, m_uiRestam);
    std::string sBytes(reinterpret_cast<const char *>(m_pBytes), qtd);
    m_pBytes += qtd;
    m_uiRestam -= qtd;
    return sBytes;
  }

  std::string Resto() { return Bytes(m_uiRestam); }

private:
  const std::uint8_t *m_pBytes;
  std::size_t m_uiRestam;
};

}  // namespace fuzz

#endif
