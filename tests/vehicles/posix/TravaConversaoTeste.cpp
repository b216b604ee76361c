#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/apoio/EmpresaComBase.h"
#include "vehicles/BaseVeiculos.h"

namespace {

/// The lock of the directory cannot be had, as when another process keeps it for too long.
TEST(TravaDaConversao, SemElaNadaEConvertido) {
  const apoio::EmpresaComBase empresa;
  const std::string bytes(512, 'x');
  empresa.Escreve("DFVEIC.DAT", bytes);
  const char *const lpTemp = std::getenv("TMPDIR");
  const std::string sAntes = lpTemp != nullptr ? lpTemp : "/tmp";
  ASSERT_EQ(::setenv("TMPDIR", empresa.Caminho("nada").c_str(), 1), 0);
  CBaseVeiculos base;
  EXPECT_EQ(base.Inicializa(empresa.Codigo(), 7, 42), codigos::kArqCompartilhamento);
  ASSERT_EQ(::setenv("TMPDIR", sAntes.c_str(), 1), 0);
  EXPECT_EQ(empresa.Le("DFVEIC.DAT"), bytes);
}

}  // namespace
