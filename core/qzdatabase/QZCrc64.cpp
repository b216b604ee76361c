#include "core/qzdatabase/QZCrc64.h"

#include <array>

namespace {

constexpr std::uint64_t kPolinomioRefletido = 0xC96C5795D7870F42ULL;

constexpr std::array<std::uint64_t, 256> MontaTabela() {
  std::array<std::uint64_t, 256> tabela{};
  for (std::uint64_t i = 0; i < tabela.size(); ++i) {
    std::uint64_t crc = i;
    for (int bit = 0; bit < 8; ++bit) {
      crc = (crc & 1) != 0 ? (crc >> 1) ^ kPolinomioRefletido : crc >> 1;
    }
    tabela[i] = crc;
  }
  return tabela;
}

constexpr std::array<std::uint64_t, 256> kTabela = MontaTabela();
static_assert(kTabela[128] == kPolinomioRefletido);

}  // namespace

std::uint64_t CalculaCrc64(const void *pDados, std::size_t cb, std::uint64_t uiInicial) {
  const auto *p = static_cast<const unsigned char *>(pDados);
  std::uint64_t crc = uiInicial;
  for (std::size_t i = 0; i < cb; ++i) {
    crc = (crc >> 8) ^ kTabela[(p[i] ^ crc) & 0xFF];
  }
  return crc;
}
