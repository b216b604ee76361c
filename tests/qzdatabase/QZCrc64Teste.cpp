// The CRC in both ways of calculating it, against the plain definition.

#include "core/qzdatabase/disco/QZCrc64.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "core/qzdatabase/disco/NomeTrava.h"

namespace {

std::uint64_t PelaDefinicao(const std::string &dados, std::uint64_t crc = 0) {
  for (const char letra : dados) {
    crc ^= static_cast<unsigned char>(letra);
    for (int bit = 0; bit < 8; ++bit) {
      crc = (crc & 1) != 0 ? (crc >> 1) ^ 0xC96C5795D7870F42U : crc >> 1;
    }
  }
  return crc;
}

TEST(Crc64, ChavesConhecidas) {
  EXPECT_EQ(CalculaCrc64("0001", 4), 0x6CD74CE161023462U);
  EXPECT_EQ(CalculaCrc64("EMP1", 4), 0x84B4A8C0DD9DD9A7U);
  EXPECT_EQ(NomeTravaDoCaminho("Cabecalho", "c:\\df\\Um.dat"), NomeTravaDoCaminho("Cabecalho", "C:\\DF\\UM.DAT"));
  EXPECT_EQ(CalculaCrc64("P1", 2, CalculaCrc64("EM", 2)), 0x84B4A8C0DD9DD9A7U) << "in pieces";
}

/// Of any bytes, and of as many zeros behind something.
TEST(Crc64, TodosOsComprimentosDosDoisModos) {
  std::mt19937 sorteio(7);
  std::string dados;
  for (std::size_t cb = 0; cb <= 700; ++cb) {
    const std::uint64_t uiInicial = cb % 3 == 0 ? 0 : std::uint64_t{sorteio()} << 32 | sorteio();
    const std::uint64_t esperado = PelaDefinicao(dados, uiInicial);
    const std::uint64_t comZeros = PelaDefinicao(std::string(cb, '\0'), uiInicial);
    ASSERT_EQ(crc64::CalculaPorTabela(dados.data(), cb, uiInicial), esperado) << cb;
    ASSERT_EQ(crc64::ComZerosPorTabela(uiInicial, cb), comZeros) << cb;
    if (crc64::TemMultiplicacao()) {
      ASSERT_EQ(crc64::CalculaPorMultiplicacao(dados.data(), cb, uiInicial), esperado) << cb;
      ASSERT_EQ(crc64::ComZerosPorMultiplicacao(uiInicial, cb), comZeros) << cb;
    }
    dados.push_back(static_cast<char>(sorteio()));
  }
  const std::uint64_t uiMuitos = std::uint64_t{1} << 40;
  EXPECT_EQ(Crc64ComZeros(Crc64ComZeros(1, uiMuitos - 5), 5), crc64::ComZerosPorTabela(1, uiMuitos));
}

}  // namespace
