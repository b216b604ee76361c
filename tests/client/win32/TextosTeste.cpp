#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <string>

#include "client/QZVeiculosTextos.h"

namespace {

TEST(TextoParametro, DoisZerosEmPosicaoParAtrasDoTexto) {
  for (const std::string sTexto : {"", "0001", "A\xE3O"}) {
    CQZTextoParametro parametro(sTexto);
    const char *const pBytes = reinterpret_cast<const char *>(parametro.Get());
    EXPECT_EQ(sTexto, pBytes);
    // What the marshaller copies, wide characters up to the zero one, holds the whole text and stays inside the buffer.
    const std::size_t uiCopiados = std::wcslen(parametro.Get()) * 2;
    EXPECT_GE(uiCopiados, sTexto.size()) << sTexto;
    EXPECT_EQ(parametro.TamanhoEmBytes(), uiCopiados + 2) << sTexto;
  }
}

TEST(Erro, CodigoETexto) {
  EXPECT_STREQ(CQZErroVeiculos(static_cast<HRESULT>(0x810809DA)).what(),
               "0x810809DA: posi\347\343o al\351m do \372ltimo registro");
  const std::string sNegado = TextoDoSistema(5);
  EXPECT_NE(sNegado, "");
  EXPECT_EQ(DescricaoErroVeiculos(static_cast<HRESULT>(0x80040005)),
            "erro 5 do sistema operacional no servidor: " + sNegado);
  EXPECT_EQ(DescricaoErroVeiculos(HRESULT_FROM_WIN32(ERROR_DISK_FULL)), TextoDoSistema(ERROR_DISK_FULL));
  EXPECT_EQ(DescricaoErroVeiculos(static_cast<HRESULT>(0x8FFFFFFF)), "c\363digo de resultado sem descri\347\343o");
}

// That every code of the server and of the documents is here scripts/lint tells.
TEST(Erro, CadaCodigoUmaVezEFalhasDeMaquinaComoTais) {
  std::set<std::uint32_t> codigos;
  for (const auto &[uiCodigo, lpTexto] : kTextosErro) {
    EXPECT_TRUE(codigos.insert(uiCodigo).second) << std::hex << uiCodigo;
    EXPECT_EQ(EhFalhaDeMaquina(static_cast<HRESULT>(uiCodigo)), std::string(lpTexto).starts_with("falha de m\341quina"))
        << std::hex << uiCodigo;
  }
}

}  // namespace
