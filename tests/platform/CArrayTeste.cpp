#include "core/platform/CArray.h"

#include <gtest/gtest.h>

namespace {

TEST(CArray, CadaPosicaoEConferida) {
  CArray<int> itens;
  for (const int i : {0, 1, 2}) {
    EXPECT_EQ(itens.Add(10 * i), static_cast<std::size_t>(i));
  }
  EXPECT_THROW(itens[3] = 0, CInvalidArgException *);
  itens.RemoveAt(0);
  ASSERT_EQ(itens.GetSize(), 2U);
  EXPECT_EQ(itens[1], 20);
  EXPECT_THROW(itens.RemoveAt(2), CInvalidArgException *);
}

}  // namespace
