#include "core/env/QZPath.h"

#include <gtest/gtest.h>

#include "tests/apoio/RegistroFalso.h"
#include "tests/apoio/RegistroTeste.h"
#include "tests/apoio/ServicosTrocados.h"

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

// The names of the values are the suite's: its other programs read the same ones.
TEST(QZPath, DiretoriosCompartilhados) {
  const CString sSuite = "SOFTWARE\\Wow6432Node\\Tarvel\\";
  const CString sProduto = sSuite + "Miran Empresarial";
  apoio::RegistroFalso registro;
  registro.m_textos = {{{sProduto, "Path"}, "C:\\Miran"},  {{sSuite, "Relatorios"}, "C:\\R"},
                       {{sSuite, "Mensagens"}, "C:\\M\\"}, {{sSuite, "Cadastros"}, "C:\\C"},
                       {{sSuite, "Ajuda"}, "C:\\A"},       {{sSuite, "Imagens"}, "C:\\I"}};
  const apoio::ServicosTrocados servicos(nullptr, &registro);
  const std::pair<std::int32_t, const char *> casos[] = {
      {-2, "C:\\Miran\\"}, {-3, "C:\\R\\"}, {-4, "C:\\M\\"}, {-5, "C:\\C\\"}, {-6, ""}};
  for (const auto &[iModulo, lpDiretorio] : casos) {
    EXPECT_EQ(CQZPath::DiretorioModulo(static_cast<ModuloQZ>(iModulo), "0001"), lpDiretorio) << iModulo;
  }
  EXPECT_EQ(CQZPath::DiretorioInstalacao(QZ_NFE), "C:\\Miran\\");
  EXPECT_EQ(CQZPath::DiretorioCompartilhado("Ajuda"), "C:\\A\\");
  EXPECT_EQ(CQZPath::DiretorioCompartilhado("Imagens"), "C:\\I\\");
  EXPECT_EQ(CQZPath::DiretorioCompartilhado("Outros"), "");
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
