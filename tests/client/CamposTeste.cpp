#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "client/QZVeiculosCampos.h"
#include "client/QZVeiculosMoeda.h"

namespace {

TEST(Campo, EncheSemZeroFinalENuncaCorta) {
  char aCampo[6];
  const std::string sSentinela = "xxxxxx";
  const auto copia = [&](std::string_view sTexto) {
    std::memcpy(aCampo, sSentinela.data(), sizeof aCampo);
    return CopiaCampo(aCampo, 5, sTexto);
  };
  ASSERT_TRUE(copia("ABCDE"));
  EXPECT_EQ(std::string(aCampo, 6), "ABCDEx");  // not a byte behind the field
  EXPECT_EQ(LeCampo(aCampo, 5), "ABCDE");
  ASSERT_TRUE(copia("AB"));
  EXPECT_EQ(std::string(aCampo, 6), std::string("AB\0\0\0x", 6));
  EXPECT_EQ(LeCampo(aCampo, 5), "AB");
  ASSERT_TRUE(copia(""));
  EXPECT_EQ(LeCampo(aCampo, 5), "");
  for (const std::string_view sRuim : {std::string_view("ABCDEF"), std::string_view("A\0B", 3)}) {
    EXPECT_FALSE(copia(sRuim));
    EXPECT_EQ(std::string(aCampo, 6), sSentinela);
  }
}

// What the text of a value is the fuzzer of currency texts tells; the ends of the form and of the range it rarely
// meets.
TEST(Moeda, TextosNosLimites) {
  constexpr auto kMaior = std::numeric_limits<std::int64_t>::max();
  constexpr auto kMenor = std::numeric_limits<std::int64_t>::min();
  const std::pair<const char *, std::int64_t> aBons[] = {{"0", 0},
                                                         {"1234.5", 12345000},
                                                         {"-0,0001", -1},
                                                         {"922337203685477,5807", kMaior},
                                                         {"-922337203685477,5808", kMenor}};
  for (const auto &[pTexto, vValor] : aBons) {
    EXPECT_EQ(CQZMoeda::DeTexto(pTexto), CQZMoeda::DeCampo(vValor)) << pTexto;
  }
  for (const char *const pRuim : {"", "-", ",5", "5,", "1,23456", "1.234,5", "1,2,3", "922337203685477,5808",
                                  "-922337203685477,5809", "922337203685478"}) {
    EXPECT_EQ(CQZMoeda::DeTexto(pRuim), std::nullopt) << pRuim;
  }
  EXPECT_EQ(CQZMoeda().Texto() + CQZMoeda::DeCampo(-5).Texto(), "0-0,0005");
  // Whole units never leave the range.
  static_assert(CQZMoeda::DeInteiro(std::numeric_limits<std::int32_t>::min()).Campo() == -21474836480000);
  static_assert(CQZMoeda::DeInteiro(-1) < CQZMoeda() && CQZMoeda::DeInteiro(2) > CQZMoeda::DeCampo(19999));
}

}  // namespace
