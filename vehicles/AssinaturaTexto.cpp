#include "vehicles/AssinaturaTexto.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "core/platform/DobraCuringa.h"

namespace {

/// For each byte its part in a pair: the lower half of the number when it is the first letter, the upper half when it
/// is the second. The number of the pair's bit is the sum of both, modulo 64.
struct Partes {
  std::array<std::uint16_t, 256> partes;
  bool bServem;
};

Partes Levanta() {
  Partes partes{};
  const plataforma::DobraLetras *const pDobra = plataforma::DobraDoCuringa();
  partes.bServem = pDobra != nullptr;
  for (std::size_t i = 0; partes.bServem && i < pDobra->size(); ++i) {
    // Factors that put letters and digits, near each other in the code page, far apart.
    const std::uint32_t uiPrimeira = ((*pDobra)[i] * 0x9E3779B1U) >> 26;
    const std::uint32_t uiSegunda = ((*pDobra)[i] * 0x85EBCA77U) >> 26;
    partes.partes[i] = static_cast<std::uint16_t>(uiPrimeira | uiSegunda << 8);
  }
  return partes;
}

const Partes &PartesDasLetras() {
  static const Partes partes = Levanta();
  return partes;
}

std::uint64_t BitDoPar(unsigned uiPrimeira, unsigned uiSegunda) {
  return std::uint64_t{1} << ((uiPrimeira + (uiSegunda >> 8)) % 64);
}

}  // namespace

void CAssinaturaTexto::Prepara() {
  static_cast<void>(PartesDasLetras());
}

std::uint64_t CAssinaturaTexto::DoCampo(const char *lpCampo, std::size_t uiLargura) noexcept {
  const auto &[partes, bServem] = PartesDasLetras();
  if (!bServem) {
    return ~std::uint64_t{0};
  }
  const auto *const letras = reinterpret_cast<const unsigned char *>(lpCampo);
  const std::size_t uiTamanho = strnlen(lpCampo, uiLargura);
  std::uint64_t uiAssinatura = 0;
  for (std::size_t i = 1; i < uiTamanho; ++i) {
    uiAssinatura |= BitDoPar(partes[letras[i - 1]], partes[letras[i]]);
  }
  return uiAssinatura;
}

std::uint64_t CAssinaturaTexto::DoPadrao(std::string_view sPadrao) noexcept {
  std::uint64_t uiAssinatura = 0;
  while (!sPadrao.empty()) {
    const std::size_t uiTamanho = std::min(sPadrao.find_first_of("*?"), sPadrao.size());
    uiAssinatura |= uiTamanho < 2 ? 0 : DoCampo(sPadrao.data(), uiTamanho);
    sPadrao.remove_prefix(std::min(uiTamanho + 1, sPadrao.size()));
  }
  return uiAssinatura;
}
