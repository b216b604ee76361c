#include "core/env/QZPath.h"

#include <gtest/gtest.h>

#include "tests/apoio/RegistroTeste.h"
#include "tests/apoio/ServicosFalsos.h"
#include "tests/apoio/ServicosTrocados.h"

namespace {

TEST(QZPath, DiretorioEArquivoDaEmpresa) {
  const CString sEmpresa = "TESTE-DO-PATH";
  const CString sChave = CString(kChaveSuite) + "Empresas\\" + sEmpresa;
  const char *const casos[][3] = {{"D:\\Data\\0001", "D:\\Data\\0001\\", "D:\\Data\\0001\\NFe\\"},
                                  {"D:\\Data\\0001\\", "D:\\Data\\0001\\", "D:\\Data\\0001\\NFe\\"},
                                  {"%PATH%", "%PATH%\\", "%PATH%\\NFe\\"},
                                  {"", "", ""}};
  EXPECT_EQ(CQZPath::CaminhoArquivo(QZ_DF, "PATH-SEM-CHAVE", "DFVEIC.DAT"), "DFVEIC.DAT");
  apoio::RegistroTeste registro;
  for (const auto &[lpValor, lpModulo1, lpModulo23] : casos) {
    SCOPED_TRACE(lpValor);
    registro.Define(sChave, "DF", apoio::TipoValor::TextoExpansivel, lpValor);
    EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_DF, sEmpresa), lpModulo1);
    EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_NFE, sEmpresa), lpModulo23);
    EXPECT_EQ(CQZPath::DiretorioEmpresa(29, sEmpresa), "");
    EXPECT_EQ(CQZPath::CaminhoArquivo(QZ_DF, sEmpresa, "DFVEIC.DAT"), CString(lpModulo1) + "DFVEIC.DAT");
  }
}

// The names of the values are the suite's: its other programs read the same ones.
TEST(QZPath, DiretoriosCompartilhados) {
  const CString sSuite = "SOFTWARE\\Wow6432Node\\Tarvel\\";
  const CString sProduto = sSuite + "Miran Empresarial";
  apoio::RegistroFalso registro;
  registro.m_textos = {{{sProduto, "Path"}, "C:\\Miran"},
                       {{sSuite, "Relatorios"}, "C:\\R"},
                       {{sSuite, "Mensagens"}, "C:\\M\\"},
                       {{sSuite, "Cadastros"}, "C:\\C"},
                       {{sSuite, "Ajuda"}, "C:\\A"}};
  const apoio::ServicosTrocados servicos(nullptr, &registro);
  const std::pair<std::int32_t, const char *> casos[] = {
      {-2, "C:\\Miran\\"}, {-3, "C:\\R\\"}, {-4, "C:\\M\\"}, {-5, "C:\\C\\"}, {-6, ""}};
  for (const auto &[iModulo, lpDiretorio] : casos) {
    EXPECT_EQ(CQZPath::DiretorioModulo(static_cast<ModuloQZ>(iModulo), "0001"), lpDiretorio) << iModulo;
  }
  EXPECT_EQ(CQZPath::DiretorioInstalacao(QZ_NFE), "C:\\Miran\\");
  EXPECT_EQ(CQZPath::DiretorioCompartilhado("Ajuda"), "C:\\A\\");
}

TEST(QZPath, Junta) {
  const char *const casos[][3] = {{"", "b", "b"}, {"a", "b", "a\\b"}, {"a", "\\b", "a\\b"}, {"a\\", "\\b", "a\\b"}};
  for (const auto &[lpEsquerda, lpDireita, lpJuntos] : casos) {
    EXPECT_EQ(CQZPath::Junta(lpEsquerda, lpDireita), lpJuntos) << lpEsquerda << " + " << lpDireita;
  }
}

TEST(QZPath, Extensao) {
  EXPECT_EQ(CQZPath::ChangeExtension("D:\\Data.v2\\DFVEIC", "TRA"), "D:\\Data.v2\\DFVEIC.TRA");
  EXPECT_EQ(CQZPath::ChangeExtension("a.b.DAT", "TRA"), "a.b.TRA");
  EXPECT_EQ(CQZPath::Extensao("D:\\Data.v2\\DFVEIC"), "");
  EXPECT_TRUE(CQZPath::TemExtensao("dfveic.int", "INT"));
}

}  // namespace
