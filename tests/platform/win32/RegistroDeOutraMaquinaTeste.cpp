#include <gtest/gtest.h>
#include <windows.h>

#include "core/platform/ChaveRegistro.h"

namespace {

// The one machine that a test can ask for by name is this one.
TEST(RegistroDeOutraMaquina, PelaRede) {
  char nome[MAX_COMPUTERNAME_LENGTH + 1] = "";
  DWORD dwTamanho = sizeof(nome);
  ASSERT_TRUE(GetComputerNameA(nome, &dwTamanho));
  EXPECT_NE(plataforma::AbreChaveRegistro("SOFTWARE", plataforma::AcessoChave::Leitura, CString("\\\\") + nome),
            nullptr);
}

}  // namespace
