#include "core/env/QZPath.h"

#include <gtest/gtest.h>

#include "tests/apoio/RegistroTeste.h"
#include "tests/apoio/ServicosFalsos.h"

namespace {

TEST(QZPath, DiretorioEArquivoDaEmpresa) {
  const CString sEmpresa = "TESTE-DO-PATH";
  apoio::RegistroTeste registro;
  const std::pair<const char *, CString> casos[] = {
      {"D:\\Data", "D:\\Data\\"}, {"D:\\Data\\", "D:\\Data\\"}, {"%PATH%", "%PATH%\\"}, {"", ""}};
  for (const auto &[lpValor, sDiretorio] : casos) {
    SCOPED_TRACE(lpValor);
    registro.Define(CString(kChaveSuite) + "Empresas\\" + sEmpresa, "DF", apoio::TipoValor::TextoExpansivel, lpValor);
    EXPECT_EQ(CQZPath::CaminhoArquivo(QZ_DF, sEmpresa, "DFVEIC.DAT"), sDiretorio + "DFVEIC.DAT");
    EXPECT_EQ(CQZPath::DiretorioEmpresa(QZ_NFE, sEmpresa), sDiretorio.empty() ? "" : sDiretorio + "NFe\\");
    EXPECT_EQ(CQZPath::DiretorioEmpresa(29, sEmpresa), "");
  }
}

// The names of the values are the suite's: its other programs read the same ones.
TEST(QZPath, DiretoriosCompartilhados) {
  const CString sSuite = "SOFTWARE\\Wow6432Node\\Tarvel\\";
  apoio::RegistroFalso registro;
  registro.m_textos = {{{sSuite + "Miran Empresarial", "Path"}, "C:\\Miran"},
                       {{sSuite, "Relatorios"}, "C:\\R"},
                       {{sSuite, "Mensagens"}, "C:\\M\\"},
                       {{sSuite, "Cadastros"}, "C:\\C"}};
  const apoio::ServicosTrocados servicos(nullptr, &registro);
  const std::pair<std::int32_t, const char *> casos[] = {
      {-2, "C:\\Miran\\"}, {-3, "C:\\R\\"}, {-4, "C:\\M\\"}, {-5, "C:\\C\\"}, {-6, ""}};
  for (const auto &[iModulo, lpDiretorio] : casos) {
    EXPECT_EQ(CQZPath::DiretorioModulo(static_cast<ModuloQZ>(iModulo), "0001"), lpDiretorio) << iModulo;
  }
  EXPECT_EQ(CQZPath::DiretorioInstalacao(QZ_NFE), "C:\\Miran\\");
}

TEST(QZPath, JuntaEExtensao) {
  const char *const casos[][3] = {{"", "b", "b"}, {"a", "b", "a\\b"}, {"a", "\\b", "a\\b"}, {"a\\", "\\b", "a\\b"}};
  for (const auto &[lpEsquerda, lpDireita, lpJuntos] : casos) {
    EXPECT_EQ(CQZPath::Junta(lpEsquerda, lpDireita), lpJuntos) << lpEsquerda << " + " << lpDireita;
  }
  EXPECT_EQ(CQZPath::ChangeExtension("D:\\Data.v2\\DFVEIC", "TRA"), "D:\\Data.v2\\DFVEIC.TRA");
  EXPECT_EQ(CQZPath::ChangeExtension("a.b.DAT", "TRA"), "a.b.TRA");
  EXPECT_TRUE(CQZPath::TemExtensao("dfveic.int", "INT"));
}

}  // namespace
