#include <gtest/gtest.h>

#include <cstring>

#include "client/QZVeiculosTextos.h"

namespace {

TEST(TextoParametro, TwoZeroBytesAtAnEvenOffsetBehindTheText) {
  for (const std::string sTexto : {"", "1", "0001", "00012", "A\xE3O", "\xFF\xFF"}) {
    CQZTextoParametro parametro(sTexto);
    const char *const pBytes = reinterpret_cast<const char *>(parametro.Get());
    EXPECT_EQ(sTexto, pBytes);
    // What the marshaller copies, wide characters up to the zero one, holds the whole text and stays inside the buffer.
    const std::size_t uiCopiados = std::wcslen(parametro.Get()) * 2;
    EXPECT_GE(uiCopiados, sTexto.size()) << sTexto;
    EXPECT_EQ(parametro.TamanhoEmBytes(), uiCopiados + 2) << sTexto;
  }
}

TEST(Erro, CodeAndText) {
  EXPECT_STREQ(CQZErroVeiculos(static_cast<HRESULT>(0x810809DA)).what(),
               "0x810809DA: posi\347\343o al\351m do \372ltimo registro");
  EXPECT_EQ(DescricaoErroVeiculos(static_cast<HRESULT>(0x80040005)), "erro 5 do sistema operacional no servidor");
  const auto sMaquina = DescricaoErroVeiculos(static_cast<HRESULT>(0x8004EAC5));
  EXPECT_EQ(DescricaoErroVeiculos(static_cast<HRESULT>(0x8004EE47)), sMaquina);
  for (const unsigned uiVizinho : {0x8004EAC4U, 0x8004EADCU, 0x8004EE46U}) {
    EXPECT_FALSE(EhFalhaDeMaquina(static_cast<HRESULT>(uiVizinho)));
    EXPECT_NE(DescricaoErroVeiculos(static_cast<HRESULT>(uiVizinho)), sMaquina);
  }
}

}  // namespace
