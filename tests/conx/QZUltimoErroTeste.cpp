#include <gtest/gtest.h>

#include "core/conx/QZBaseParaRotinas.h"

namespace {

constexpr HRESULT kErro = CodigoResultado(0x810809DA);

TEST(QZUltimoErro, UltimoErroDeUmaRotina) {
  CQZBaseParaRotinas rotina;
  EXPECT_EQ(rotina.GetUltimoHR(), 0);
  rotina.SetErro(kErro, 3, -4, "%s %d%%", CString(5000, 'x').c_str(), 7);
  EXPECT_EQ(rotina.GetErro().sMensagem, CString(5000, 'x') + " 7%");
  EXPECT_EQ(rotina.GetErro().lComplemento, -4);
  EXPECT_EQ(rotina.GetUltimoHR(), kErro);
  EXPECT_EQ(rotina.GetNumeroServidorUltimoHR(), 3);
  // The next error takes nothing over from the one before.
  const CQZDadosDF_Erro copia = rotina.GetErro();
  rotina.SetErro(1, 2, 5);
  EXPECT_EQ(rotina.GetErro().sMensagem, "");
  EXPECT_EQ(rotina.GetErro().lComplemento, 5);
  rotina.SetErro(copia);
  EXPECT_EQ(rotina.GetErro().sMensagem, copia.sMensagem);
  EXPECT_EQ(rotina.GetUltimoHR(), kErro);
  // A routine's lifecycle leaves its last error alone: it is read after the routine has ended.
  EXPECT_EQ(rotina.Inicializa("EMP1", 1, 2), 0);
  EXPECT_EQ(rotina.Finaliza(), 0);
  EXPECT_EQ(rotina.GetUltimoHR(), kErro);
  rotina.LimpaErro();
  EXPECT_EQ(rotina.GetUltimoHR(), 0);
  EXPECT_EQ(rotina.GetNumeroServidorUltimoHR(), 0);
  EXPECT_EQ(rotina.GetErro().sMensagem, "");
}

}  // namespace
