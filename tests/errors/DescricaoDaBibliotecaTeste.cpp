#include "core/errors/DescricaoDaBiblioteca.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/errors/CodigosResultado.h"
#include "tests/errors/InstalacaoFalsa.h"

namespace {

// Windows does not let a loaded library be written to, and elsewhere the one in memory would answer again: each call
// must free the library.
TEST(DescricaoDaBiblioteca, CadaBibliotecaUmaDepoisDaOutra) {
  const struct {
    const char *lpVariante;
    const char *lpTexto;
  } casos[] = {{"primeira", "100% de %s %n: 810809D9"},
               {"segunda", "segunda"},
               {"sem_exportacao", ""},
               {"segunda", "segunda"},
               {"sem_texto", ""},
               {"excecao", ""},
               {"segunda", "segunda"}};
  const apoio::InstalacaoFalsa instalacao;
  EXPECT_EQ(DescricaoDaBiblioteca(codigos::kPosicaoZero), "") << "no library";
  for (const auto &caso : casos) {
    instalacao.InstalaBiblioteca(caso.lpVariante);
    EXPECT_EQ(DescricaoDaBiblioteca(codigos::kPosicaoZero), caso.lpTexto) << caso.lpVariante;
  }
  apoio::EscreveArquivo(instalacao.Diretorio() + "x64\\QZLMensagem.dll", "not a library");
  EXPECT_EQ(DescricaoDaBiblioteca(codigos::kPosicaoZero), "");
}

// The library lies where each relative directory would lead to, and must still not be loaded.
TEST(DescricaoDaBiblioteca, DiretorioRelativoNaoVale) {
  apoio::InstalacaoFalsa instalacao;
  instalacao.InstalaBiblioteca("segunda");
  const std::filesystem::path anterior = std::filesystem::current_path();
  std::filesystem::current_path(apoio::CaminhoDoSistema(instalacao.Diretorio()));
  for (const char *lpDiretorio : {"", ".", ".\\", "x64\\.."}) {
    instalacao.DefineDiretorio(lpDiretorio);
    EXPECT_EQ(DescricaoDaBiblioteca(0), "") << lpDiretorio;
  }
  std::filesystem::current_path(anterior);
  instalacao.DefineDiretorio(instalacao.Diretorio());
  EXPECT_EQ(DescricaoDaBiblioteca(0), "segunda");
}

}  // namespace
