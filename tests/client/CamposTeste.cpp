#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string_view>

#include "client/QZVeiculosCampos.h"
#include "client/QZVeiculosMoeda.h"

// The fuzzer of CSV texts tells how a field is filled and read.
TEST(Campo, FicaComoEstaOndeOTextoNaoCabeInteiro) {
  char aCampo[] = "xxxxxx";
  EXPECT_FALSE(CopiaCampo(aCampo, 5, "ABCDEF"));
  EXPECT_FALSE(CopiaCampo(aCampo, 5, std::string_view("A\0B", 3)));
  EXPECT_STREQ(aCampo, "xxxxxx");
}

// What the text of a value is the fuzzer of CSV texts tells; the ends of the range it rarely meets.
TEST(Moeda, TextosNosLimites) {
  constexpr auto kMaior = std::numeric_limits<std::int64_t>::max();
  constexpr auto kMenor = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(CQZMoeda::DeTexto("922337203685477,5807"), CQZMoeda::DeCampo(kMaior));
  EXPECT_EQ(CQZMoeda::DeTexto("-922337203685477,5808"), CQZMoeda::DeCampo(kMenor));
  for (const char *const pRuim :
       {"922337203685477,5808", "-922337203685477,5809", "922337203685478", "1.234,5", ",5"}) {
    EXPECT_EQ(CQZMoeda::DeTexto(pRuim), std::nullopt) << pRuim;
  }
  EXPECT_EQ(CQZMoeda().Texto() + CQZMoeda::DeCampo(-5).Texto(), "0-0,0005");
  // Whole units never leave the range.
  static_assert(CQZMoeda::DeInteiro(std::numeric_limits<std::int32_t>::min()).Campo() == -21474836480000);
  static_assert(CQZMoeda::DeInteiro(-1) < CQZMoeda() && CQZMoeda::DeInteiro(2) > CQZMoeda::DeCampo(19999));
}
