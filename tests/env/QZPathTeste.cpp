#include "core/env/QZPath.h"

#include <gtest/gtest.h>

#include "tests/apoio/RegistroTeste.h"

namespace {

constexpr char kEmpresa[] = "PATH9001";

CString ChaveEmpresa() {
  return CString(kChaveSuite) + "Empresas\\" + kEmpresa;
}

TEST(QZPath, DiretorioDaEmpresa) {
  struct Caso {
    const char *valor;
    const char *modulo1;
    const char *modulo23;
  };
  const Caso casos[] = {{"D:\\Data\\0001", "D:\\Data\\0001\\", "D:\\Data\\0001\\NFe\\"},
                        {"D:\\Data\\0001\\", "D:\\Data\\0001\\", "D:\\Data\\0001\\NFe\\"},
                        {"", "", ""}};
  for (const Caso &caso : casos) {
    SCOPED_TRACE(caso.valor);
    apoio::RegistroTeste registro;
    registro.DefineTexto(ChaveEmpresa(), "DF", caso.valor);
    EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_DF, kEmpresa), caso.modulo1);
    EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_NFE, kEmpresa), caso.modulo23);
    EXPECT_EQ(CQZPath::DiretorioEmpresa(0, kEmpresa), "");
    EXPECT_EQ(CQZPath::DiretorioEmpresa(29, kEmpresa), "");
    EXPECT_EQ(CQZPath::CaminhoArquivo(QZ_DF, kEmpresa, "DFVEIC.DAT"), CString(caso.modulo1) + "DFVEIC.DAT");
  }
}

TEST(QZPath, EntradaAusenteDaONomeSozinho) {
  EXPECT_EQ(CQZPath::CaminhoArquivo(QZ_DF, "PATH-SEM-CHAVE", "DFVEIC.DAT"), "DFVEIC.DAT");
  apoio::RegistroTeste registro;
  registro.CriaChave(ChaveEmpresa());
  EXPECT_EQ(CQZPath::CaminhoArquivo(QZ_DF, kEmpresa, "DFVEIC.DAT"), "DFVEIC.DAT");
  registro.DefineNumero(ChaveEmpresa(), "DF", 1);
  EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_DF, kEmpresa), "");
}

TEST(QZPath, ValorExpansivelFicaComoEsta) {
  apoio::RegistroTeste registro;
  registro.DefineTextoExpansivel(ChaveEmpresa(), "DF", "%PATH%\\x");
  EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_DF, kEmpresa), "%PATH%\\x\\");
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
