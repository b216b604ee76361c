#include "core/errors/DescricaoDaBiblioteca.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/errors/CodigosResultado.h"
#include "tests/apoio/Nativo.h"
#include "tests/errors/InstalacaoFalsa.h"

namespace {

TEST(DescricaoDaBiblioteca, CadaBiblioteca) {
  struct Caso {
    const char *lpVariante;
    const char *lpTexto;
  };
  const Caso casos[] = {{"primeira", "100% de %s %n: 810809D9"},
                        {"segunda", "segunda"},
                        {"sem_exportacao", ""},
                        {"sem_texto", ""},
                        {"excecao", ""}};
  for (const Caso &caso : casos) {
    SCOPED_TRACE(caso.lpVariante);
    apoio::InstalacaoFalsa instalacao;
    instalacao.InstalaBiblioteca(caso.lpVariante);
    EXPECT_EQ(DescricaoDaBiblioteca(codigos::kPosicaoZero), caso.lpTexto);
  }
}

TEST(DescricaoDaBiblioteca, BibliotecaAusenteOuInvalida) {
  const apoio::InstalacaoFalsa instalacao;
  EXPECT_EQ(DescricaoDaBiblioteca(codigos::kPosicaoZero), "");
  apoio::EscreveArquivo(instalacao.Diretorio() + "x64\\QZLMensagem.dll", "not a library");
  EXPECT_EQ(DescricaoDaBiblioteca(codigos::kPosicaoZero), "");
}

// Windows does not let a loaded library be written to, and elsewhere the one in memory would answer again.
TEST(DescricaoDaBiblioteca, LiberadaACadaChamada) {
  const apoio::InstalacaoFalsa instalacao;
  for (const char *lpVariante : {"segunda", "primeira", "segunda"}) {
    instalacao.InstalaBiblioteca(lpVariante);
    EXPECT_EQ(DescricaoDaBiblioteca(0) == "segunda", CString(lpVariante) == "segunda") << lpVariante;
  }
  std::filesystem::remove(apoio::CaminhoDoSistema(instalacao.Diretorio() + "x64\\QZLMensagem.dll"));
  EXPECT_EQ(DescricaoDaBiblioteca(0), "");
}

/// Puts a directory in force as the current one for a scope.
class DiretorioCorrente {
public:
  explicit DiretorioCorrente(const CString &diretorio) : m_anterior(std::filesystem::current_path()) {
    std::filesystem::current_path(apoio::CaminhoDoSistema(diretorio));
  }
  ~DiretorioCorrente() { std::filesystem::current_path(m_anterior); }
  DiretorioCorrente(const DiretorioCorrente &) = delete;
  DiretorioCorrente &operator=(const DiretorioCorrente &) = delete;

private:
  std::filesystem::path m_anterior;
};

// The library lies where each relative directory would lead to, and must still not be loaded.
TEST(DescricaoDaBiblioteca, DiretorioRelativoNaoVale) {
  apoio::InstalacaoFalsa instalacao;
  instalacao.InstalaBiblioteca("segunda");
  const DiretorioCorrente corrente(instalacao.Diretorio());
  for (const char *lpDiretorio : {"", ".", ".\\", "x64\\.."}) {
    instalacao.DefineDiretorio(lpDiretorio);
    EXPECT_EQ(DescricaoDaBiblioteca(0), "") << lpDiretorio;
  }
  instalacao.DefineDiretorio(instalacao.Diretorio());
  EXPECT_EQ(DescricaoDaBiblioteca(0), "segunda");
}

}  // namespace
