#include "core/env/QZPath.h"

#include <gtest/gtest.h>

#include "tests/apoio/RegistroTeste.h"

namespace {

/// A company of its own for each test: tests that run at once share one registry.
class QZPathEmpresa : public ::testing::Test {
protected:
  CString ChaveEmpresa() const { return CString(kChaveSuite) + "Empresas\\" + m_sEmpresa; }

  CString m_sEmpresa = CString("PATH-") + ::testing::UnitTest::GetInstance()->current_test_info()->name();
};

TEST_F(QZPathEmpresa, DiretorioDaEmpresa) {
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
    EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_DF, m_sEmpresa), caso.modulo1);
    EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_NFE, m_sEmpresa), caso.modulo23);
    EXPECT_EQ(CQZPath::DiretorioEmpresa(0, m_sEmpresa), "");
    EXPECT_EQ(CQZPath::DiretorioEmpresa(29, m_sEmpresa), "");
    EXPECT_EQ(CQZPath::CaminhoArquivo(QZ_DF, m_sEmpresa, "DFVEIC.DAT"), CString(caso.modulo1) + "DFVEIC.DAT");
  }
}

TEST_F(QZPathEmpresa, EntradaAusenteDaONomeSozinho) {
  EXPECT_EQ(CQZPath::CaminhoArquivo(QZ_DF, "PATH-SEM-CHAVE", "DFVEIC.DAT"), "DFVEIC.DAT");
  apoio::RegistroTeste registro;
  registro.CriaChave(ChaveEmpresa());
  EXPECT_EQ(CQZPath::CaminhoArquivo(QZ_DF, m_sEmpresa, "DFVEIC.DAT"), "DFVEIC.DAT");
  registro.DefineNumero(ChaveEmpresa(), "DF", 1);
  EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_DF, m_sEmpresa), "");
}

TEST_F(QZPathEmpresa, ValorExpansivelFicaComoEsta) {
  apoio::RegistroTeste registro;
  registro.DefineTextoExpansivel(ChaveEmpresa(), "DF", "%PATH%\\x");
  EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_DF, m_sEmpresa), "%PATH%\\x\\");
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
