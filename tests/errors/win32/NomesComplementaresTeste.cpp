// The complementary entries of the name tables against the one header that has them. It defines the names of the cross
// compiler's winerror.h again, some with other values: nothing here may include windows.h.

// clang-format off
#include <windows/winerror.h>
// clang-format on

#include <gtest/gtest.h>

#include "core/errors/NomesResultado.h"

namespace {

struct Nome {
  std::uint32_t uTabela;
  std::int64_t iCabecalho;
  const char *lpNome;
};

#define KALVO_NOME(valor, nome)
#define KALVO_NOME_COMPLEMENTAR(valor, nome) {valor, static_cast<std::int64_t>(nome), #nome},

const Nome kWin32[] = {
#include "core/errors/nomes_win32.inc"
};

const Nome kHRESULT[] = {
#include "core/errors/nomes_hresult.inc"
};

#undef KALVO_NOME_COMPLEMENTAR
#undef KALVO_NOME

TEST(NomesComplementares, ComoNoCabecalho) {
  for (const Nome &nome : kWin32) {
    ASSERT_EQ(nome.uTabela, static_cast<std::uint32_t>(nome.iCabecalho)) << nome.lpNome;
    ASSERT_STREQ(nomes::DeWin32(nome.uTabela), nome.lpNome);
  }
  for (const Nome &nome : kHRESULT) {
    ASSERT_EQ(nome.uTabela, static_cast<std::uint32_t>(nome.iCabecalho)) << nome.lpNome;
    ASSERT_STREQ(nomes::DeHRESULT(nome.uTabela), nome.lpNome);
  }
}

}  // namespace
