#include "core/qzdatabase/disco/QZCrc64.h"

#include <immintrin.h>

#include <array>
#include <cstring>

// A word stands for a polynomial of degree 63 with its terms in reverse: bit 63 is x^0, bit 0 is x^63. The CRC of a
// message M is M * x^64 modulo the polynomial.

namespace {

constexpr std::uint64_t kPolinomioRefletido = 0xC96C5795D7870F42ULL;

constexpr std::uint64_t VezesX(std::uint64_t w) {
  return (w & 1) != 0 ? (w >> 1) ^ kPolinomioRefletido : w >> 1;
}

/// x^n modulo the polynomial.
constexpr std::uint64_t PotenciaDeX(unsigned n) {
  std::uint64_t w = 1ULL << 63;
  for (unsigned i = 0; i < n; ++i) {
    w = VezesX(w);
  }
  return w;
}

/// kTabelas[k][b]: CRC of the byte b followed by k zero bytes.
constexpr std::array<std::array<std::uint64_t, 256>, 8> MontaTabelas() {
  std::array<std::array<std::uint64_t, 256>, 8> tabelas{};
  for (std::uint64_t b = 0; b < 256; ++b) {
    std::uint64_t crc = b;
    for (int bit = 0; bit < 8; ++bit) {
      crc = VezesX(crc);
    }
    tabelas[0][b] = crc;
  }
  for (std::size_t k = 1; k < tabelas.size(); ++k) {
    for (std::size_t b = 0; b < 256; ++b) {
      const std::uint64_t crc = tabelas[k - 1][b];
      tabelas[k][b] = (crc >> 8) ^ tabelas[0][crc & 0xFF];
    }
  }
  return tabelas;
}

constexpr auto kTabelas = MontaTabelas();
static_assert(kTabelas[0][128] == kPolinomioRefletido);

constexpr std::uint64_t MultiplicaPorTabela(std::uint64_t a, std::uint64_t b) {
  std::uint64_t produto = 0;
  for (std::uint64_t bit = 1ULL << 63; bit != 0; bit >>= 1) {
    produto ^= (b & bit) != 0 ? a : 0;
    a = VezesX(a);
  }
  return produto;
}

/// kZeros[i]: x^(8 * 2^i), the factor for 2^i zero bytes.
constexpr std::array<std::uint64_t, 64> MontaZeros() {
  std::array<std::uint64_t, 64> zeros{};
  zeros[0] = PotenciaDeX(8);
  for (std::size_t i = 1; i < zeros.size(); ++i) {
    zeros[i] = MultiplicaPorTabela(zeros[i - 1], zeros[i - 1]);
  }
  return zeros;
}

constexpr auto kZeros = MontaZeros();

/// The CRC after eight more bytes, the first of them in the lowest place of `w`.
std::uint64_t CrcDaPalavra(std::uint64_t w) {
  return kTabelas[7][w & 0xFF] ^ kTabelas[6][(w >> 8) & 0xFF] ^ kTabelas[5][(w >> 16) & 0xFF] ^
         kTabelas[4][(w >> 24) & 0xFF] ^ kTabelas[3][(w >> 32) & 0xFF] ^ kTabelas[2][(w >> 40) & 0xFF] ^
         kTabelas[1][(w >> 48) & 0xFF] ^ kTabelas[0][w >> 56];
}

template <typename Multiplica>
std::uint64_t ComZeros(std::uint64_t crc, std::uint64_t cbZeros, Multiplica multiplica) {
  for (std::size_t i = 0; cbZeros != 0; ++i, cbZeros >>= 1) {
    if ((cbZeros & 1) != 0) {
      crc = multiplica(crc, kZeros[i]);
    }
  }
  return crc;
}

#define KALVO_COM_MULTIPLICACAO __attribute__((target("pclmul,sse4.1")))

// The instruction gives a * b * x in this representation, so that a factor x^n is stored as x^(n-1).

KALVO_COM_MULTIPLICACAO std::uint64_t Multiplica(std::uint64_t a, std::uint64_t b) {
  const __m128i produto = _mm_clmulepi64_si128(_mm_cvtsi64_si128(static_cast<long long>(a)),
                                               _mm_cvtsi64_si128(static_cast<long long>(b)), 0);
  // 127 bits, one place too low for two words.
  const auto baixa = static_cast<std::uint64_t>(_mm_cvtsi128_si64(produto));
  const auto alta = static_cast<std::uint64_t>(_mm_extract_epi64(produto, 1));
  return (alta << 1 | baixa >> 63) ^ CrcDaPalavra(baixa << 1);
}

/// The block `kDistancia` bits further on: its two words by their factors.
template <unsigned kDistancia>
KALVO_COM_MULTIPLICACAO __m128i Dobra(__m128i bloco) {
  constexpr std::uint64_t kPrimeira = PotenciaDeX(kDistancia + 63);
  constexpr std::uint64_t kSegunda = PotenciaDeX(kDistancia - 1);
  const __m128i fatores = _mm_set_epi64x(static_cast<long long>(kSegunda), static_cast<long long>(kPrimeira));
  return _mm_xor_si128(_mm_clmulepi64_si128(bloco, fatores, 0x00), _mm_clmulepi64_si128(bloco, fatores, 0x11));
}

}  // namespace

namespace crc64 {

std::uint64_t CalculaPorTabela(const void *pDados, std::size_t cb, std::uint64_t uiInicial) {
  const auto *p = static_cast<const unsigned char *>(pDados);
  std::uint64_t crc = uiInicial;
  for (; cb >= sizeof(std::uint64_t); cb -= sizeof(std::uint64_t), p += sizeof(std::uint64_t)) {
    std::uint64_t w = 0;
    std::memcpy(&w, p, sizeof(w));
    crc = CrcDaPalavra(crc ^ w);
  }
  for (; cb != 0; --cb, ++p) {
    crc = (crc >> 8) ^ kTabelas[0][(*p ^ crc) & 0xFF];
  }
  return crc;
}

KALVO_COM_MULTIPLICACAO std::uint64_t CalculaPorMultiplicacao(const void *pDados, std::size_t cb,
                                                              std::uint64_t uiInicial) {
  constexpr std::size_t kBlocos = 4;
  constexpr std::size_t kPasso = kBlocos * sizeof(__m128i);
  if (cb < 2 * kPasso) {
    return CalculaPorTabela(pDados, cb, uiInicial);
  }
  const auto *p = static_cast<const __m128i *>(pDados);
  __m128i blocos[kBlocos];
  for (__m128i &bloco : blocos) {
    bloco = _mm_loadu_si128(p++);
  }
  // The CRC so far enters as a change of the first eight bytes, by linearity.
  blocos[0] = _mm_xor_si128(blocos[0], _mm_cvtsi64_si128(static_cast<long long>(uiInicial)));
  // Four chains: each multiplication waits for the one before it in its own chain only.
  for (cb -= kPasso; cb >= kPasso; cb -= kPasso) {
    for (__m128i &bloco : blocos) {
      bloco = _mm_xor_si128(Dobra<8 * kPasso>(bloco), _mm_loadu_si128(p++));
    }
  }
  // The chains joined, 16 bytes are left that stand for all; tables do the last step.
  __m128i resto = blocos[0];
  for (std::size_t i = 1; i < kBlocos; ++i) {
    resto = _mm_xor_si128(Dobra<128>(resto), blocos[i]);
  }
  return CalculaPorTabela(p, cb, CalculaPorTabela(&resto, sizeof(resto), 0));
}

std::uint64_t ComZerosPorTabela(std::uint64_t crc, std::uint64_t cbZeros) {
  return ComZeros(crc, cbZeros, MultiplicaPorTabela);
}

std::uint64_t ComZerosPorMultiplicacao(std::uint64_t crc, std::uint64_t cbZeros) {
  return ComZeros(crc, cbZeros, Multiplica);
}

bool TemMultiplicacao() {
  static const bool bTem = __builtin_cpu_supports("pclmul") != 0 && __builtin_cpu_supports("sse4.1") != 0;
  return bTem;
}

}  // namespace crc64

std::uint64_t CalculaCrc64(const void *pDados, std::size_t cb, std::uint64_t uiInicial) {
  return crc64::TemMultiplicacao() ? crc64::CalculaPorMultiplicacao(pDados, cb, uiInicial)
                                   : crc64::CalculaPorTabela(pDados, cb, uiInicial);
}

std::uint64_t Crc64ComZeros(std::uint64_t crc, std::uint64_t cbZeros) {
  return crc64::TemMultiplicacao() ? crc64::ComZerosPorMultiplicacao(crc, cbZeros)
                                   : crc64::ComZerosPorTabela(crc, cbZeros);
}
