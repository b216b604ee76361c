#include "core/platform/Caminhos.h"

#include <gtest/gtest.h>

namespace {

TEST(Caminhos, AbsolutosEDependentesDoDiretorioOuDaUnidade) {
  for (const char *lpCaminho : {"C:\\", "d:\\Suite\\", "C:/Suite/", "\\\\servidor\\suite\\", "//servidor/suite/"}) {
    EXPECT_TRUE(plataforma::EhCaminhoAbsoluto(lpCaminho)) << lpCaminho;
  }
  for (const char *lpCaminho : {"", "C", "C:", "C:Suite\\", "\\Suite\\", "/Suite/", "Suite\\", "..\\Suite\\",
                                "1:\\Suite\\", "\\\\", "\\\\\\Suite\\"}) {
    EXPECT_FALSE(plataforma::EhCaminhoAbsoluto(lpCaminho)) << lpCaminho;
  }
}

}  // namespace
