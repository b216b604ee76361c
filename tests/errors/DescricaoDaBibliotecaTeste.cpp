#include "core/errors/DescricaoDaBiblioteca.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/errors/CodigosResultado.h"
#include "tests/errors/InstalacaoFalsa.h"

namespace {

struct Caso {
  const char *lpVariante;
  const char *lpTexto;
};

constexpr Caso kCasos[] = {
    {"primeira", "100% de %s %n: 810809D9"},
    {"segunda", "segunda"},
    {"sem_exportacao", ""},
    {"segunda", "segunda"},
    {"sem_texto", ""},
    {"excecao", ""},
#ifdef _WIN32
    {"falha", ""},
    {"ponteiro_ruim", ""},
    {"throw_alheio", ""},
    {"codigo_alheio", ""},
    {"pilha", ""},
    {"pilha", ""},  // which is there in full again
    {"inicio", ""},
    {"inicio", ""},
#endif
    {"segunda", "segunda"},
};

// Windows does not let a loaded library be written to, and elsewhere the one in memory would answer again: each call
// must free the library, whatever that library did.
TEST(DescricaoDaBiblioteca, CadaBibliotecaUmaDepoisDaOutra) {
  const apoio::InstalacaoFalsa instalacao;
  EXPECT_EQ(DescricaoDaBiblioteca(codigos::kPosicaoZero), "") << "no library";
  for (const Caso &caso : kCasos) {
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
  for (const char *lpDiretorio : {"", ".", "x64\\.."}) {
    instalacao.DefineDiretorio(lpDiretorio);
    EXPECT_EQ(DescricaoDaBiblioteca(0), "") << lpDiretorio;
  }
  std::filesystem::current_path(anterior);
  instalacao.DefineDiretorio(instalacao.Diretorio());
  EXPECT_EQ(DescricaoDaBiblioteca(0), "segunda");
}

}  // namespace
