#include "core/env/QZPath.h"

#include <gtest/gtest.h>

#include "tests/apoio/RegistroTeste.h"

namespace {

TEST(QZPath, DiretorioEArquivoDaEmpresa) {
  const CString sEmpresa = "TESTE-DO-PATH";
  const CString sChave = CString(kChaveSuite) + "Empresas\\" + sEmpresa;
  const struct {
    const char *lpValor;
    const char *lpModulo1;
    const char *lpModulo23;
  } casos[] = {{"D:\\Data\\0001", "D:\\Data\\0001\\", "D:\\Data\\0001\\NFe\\"},
               {"D:\\Data\\0001\\", "D:\\Data\\0001\\", "D:\\Data\\0001\\NFe\\"},
               {"", "", ""}};
  apoio::RegistroTeste registro;
  registro.CriaChave(sChave);
  EXPECT_EQ(CQZPath::CaminhoArquivo(QZ_DF, "PATH-SEM-CHAVE", "DFVEIC.DAT"), "DFVEIC.DAT");
  EXPECT_EQ(CQZPath::CaminhoArquivo(QZ_DF, sEmpresa, "DFVEIC.DAT"), "DFVEIC.DAT");
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.lpValor);
    registro.DefineTexto(sChave, "DF", caso.lpValor);
    EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_DF, sEmpresa), caso.lpModulo1);
    EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_NFE, sEmpresa), caso.lpModulo23);
    EXPECT_EQ(CQZPath::DiretorioEmpresa(0, sEmpresa), "");
    EXPECT_EQ(CQZPath::DiretorioEmpresa(29, sEmpresa), "");
    EXPECT_EQ(CQZPath::CaminhoArquivo(QZ_DF, sEmpresa, "DFVEIC.DAT"), CString(caso.lpModulo1) + "DFVEIC.DAT");
  }
  registro.DefineNumero(sChave, "DF", 1);
  EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_DF, sEmpresa), "");
  registro.DefineTextoExpansivel(sChave, "DF", "%PATH%\\x");
  EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_DF, sEmpresa), "%PATH%\\x\\");
}

TEST(QZPath, Junta) {
  const char *casos[][3] = {{"", "", ""},         {"a", "", "a"},       {"", "b", "b"},        {"a", "b", "a\\b"},
                            {"a\\", "b", "a\\b"}, {"a", "\\b", "a\\b"}, {"a\\", "\\b", "a\\b"}};
  for (const auto &caso : casos) {
    EXPECT_EQ(CQZPath::Junta(caso[0], caso[1]), caso[2]) << caso[0] << " + " << caso[1];
  }
}

TEST(QZPath, Extensao) {
  EXPECT_EQ(CQZPath::ChangeExtension("D:\\Data.v2\\DFVEIC.DAT", "TRA"), "D:\\Data.v2\\DFVEIC.TRA");
  EXPECT_EQ(CQZPath::ChangeExtension("D:\\Data.v2\\DFVEIC", "TRA"), "D:\\Data.v2\\DFVEIC.TRA");
  EXPECT_EQ(CQZPath::ChangeExtension("a.b.DAT", "TRA"), "a.b.TRA");
  EXPECT_EQ(CQZPath::Extensao("D:\\Data.v2\\DFVEIC"), "");
  EXPECT_EQ(CQZPath::Extensao("DFVEIC.DAT"), "DAT");
}

}  // namespace
