#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "client/QZVeiculosMoeda.h"

// What a text means is for the fuzzer of currency texts to tell.
TEST(Moeda, ValorETexto) {
  EXPECT_EQ(CQZMoeda::DeTexto("-0,0005"), CQZMoeda::DeCampo(-5));
  EXPECT_EQ(CQZMoeda::DeTexto("1.234,5"), std::nullopt);
  EXPECT_EQ(CQZMoeda().Texto() + CQZMoeda::DeCampo(-5).Texto(), "0-0,0005");
  // Whole units never leave the range.
  static_assert(CQZMoeda::DeInteiro(std::numeric_limits<std::int32_t>::min()).Campo() == -21474836480000);
  static_assert(CQZMoeda::DeInteiro(-1) < CQZMoeda() && CQZMoeda::DeInteiro(2) > CQZMoeda::DeCampo(19999));
}
