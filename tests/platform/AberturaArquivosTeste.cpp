// Opening: create modes, missing and read-only files, and the share rules between two handles and two processes.

#include <gtest/gtest.h>

#include <atomic>
#include <iostream>
#include <thread>

#include "core/platform/Plataforma.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ProcessoFilho.h"

namespace {

using namespace plataforma;

std::vector<ModoAbertura> TodosOsModos() {
  std::vector<ModoAbertura> modos;
  for (const Acesso acesso : {Acesso::Leitura, Acesso::Escrita, Acesso::LeituraEscrita}) {
    for (const auto outros : {Compartilhamento::Exclusivo, Compartilhamento::NegaEscrita, Compartilhamento::NegaNada}) {
      modos.push_back({acesso, outros, Criacao::SoExistente});
    }
  }
  return modos;
}

std::string Descreve(const ModoAbertura &modo) {
  return std::to_string(static_cast<int>(modo.acesso)) + " " + std::to_string(static_cast<int>(modo.compartilhamento));
}

bool Tolera(const ModoAbertura &aberto, const ModoAbertura &outro) {
  const bool bOutroLe = outro.acesso != Acesso::Escrita;
  const bool bOutroGrava = outro.acesso != Acesso::Leitura;
  return (!bOutroLe || aberto.compartilhamento != Compartilhamento::Exclusivo) &&
         (!bOutroGrava || aberto.compartilhamento == Compartilhamento::NegaNada);
}

std::uint32_t ErroAoAbrir(const CString &caminho, const ModoAbertura &modo) {
  std::unique_ptr<IArquivoAberto> arquivo;
  const FalhaArquivo falha = Arquivos().Abre(caminho, modo, &arquivo);
  EXPECT_EQ(arquivo == nullptr, static_cast<bool>(falha));
  EXPECT_EQ(falha.causa, CausaDoErroWin32(falha.erroSO));
  return falha.erroSO;
}

/// Every mode as second opener of a file that is open in mode `primeiro`.
void ConfereSegundos(const CString &caminho, const ModoAbertura &primeiro) {
  for (const ModoAbertura &segundo : TodosOsModos()) {
    const bool bPermitido = Tolera(primeiro, segundo) && Tolera(segundo, primeiro);
    EXPECT_EQ(ErroAoAbrir(caminho, segundo), bPermitido ? 0u : 32u)
        << "first " << Descreve(primeiro) << ", second " << Descreve(segundo);
  }
}

/// Opens the file in each mode that it is told, giving up the one before; answers with the error number.
int AbreQuandoMandado(const std::vector<std::string> &argumentos) {
  std::unique_ptr<IArquivoAberto> arquivo;
  int acesso = 0;
  int compartilhamento = 0;
  while (std::cin >> acesso >> compartilhamento) {
    const ModoAbertura modo{static_cast<Acesso>(acesso), static_cast<Compartilhamento>(compartilhamento),
                            Criacao::SoExistente};
    std::cout << Arquivos().Abre(argumentos[0], modo, &arquivo).erroSO << std::endl;
  }
  return 0;
}
const apoio::RegistraFilha kFilha("abre-quando-mandado", AbreQuandoMandado);

TEST(Compartilhamento, EntreDoisNoMesmoProcessoEEntreDoisProcessos) {
  const apoio::PastaTemporaria pasta;
  apoio::EscreveArquivo(pasta / "A.DAT", "x");
  apoio::ProcessoFilho filho("abre-quando-mandado", {pasta / "A.DAT"});
  for (const ModoAbertura &primeiro : TodosOsModos()) {
    filho.EnviaLinha(Descreve(primeiro));
    ASSERT_EQ(filho.LeLinha(), "0") << Descreve(primeiro);
    ConfereSegundos(pasta / "A.DAT", primeiro);
  }
  filho.Mata();
  EXPECT_EQ(ErroAoAbrir(pasta / "A.DAT", {}), 0u) << "a dead process holds nothing";
  for (const ModoAbertura &primeiro : TodosOsModos()) {
    std::unique_ptr<IArquivoAberto> arquivo;
    ASSERT_FALSE(Arquivos().Abre(pasta / "A.DAT", primeiro, &arquivo)) << Descreve(primeiro);
    ConfereSegundos(pasta / "A.DAT", primeiro);
  }
}

TEST(Compartilhamento, ExclusivoSobDisputa) {
  // The other thread deletes and replaces the file all the time, so that an opener that looks once may end up with a
  // file that no longer has the name.
  const apoio::PastaTemporaria pasta;
  std::atomic<int> dentro{0};
  std::atomic<int> vezes{0};
  const auto disputa = [&](const CString &outro, std::uint64_t marca) {
    for (int i = 0; i < 500; ++i) {
      std::unique_ptr<IArquivoAberto> arquivo;
      const ModoAbertura modo{Acesso::LeituraEscrita, Compartilhamento::Exclusivo, Criacao::AbreOuCria};
      if (!Arquivos().Abre(pasta / "A.DAT", modo, &arquivo)) {
        std::uint64_t tamanho = 0;
        EXPECT_EQ(++dentro, 1);
        EXPECT_FALSE(arquivo->AjustaTamanho(marca));
        EXPECT_FALSE(Arquivos().TamanhoDe(pasta / "A.DAT", &tamanho));
        EXPECT_EQ(tamanho, marca) << "the open file is the one that has the name";
        ++vezes;
        --dentro;
        arquivo.reset();
        static_cast<void>(Arquivos().Apaga(pasta / "A.DAT"));
      }
      apoio::EscreveArquivo(pasta / outro, "x");
      static_cast<void>(Arquivos().MoveSubstituindo(pasta / outro, pasta / "A.DAT"));
    }
  };
  std::thread primeira(disputa, "B.DAT", 1000);
  std::thread segunda(disputa, "C.DAT", 2000);
  primeira.join();
  segunda.join();
  EXPECT_GT(vezes, 0);
}

TEST(Compartilhamento, ArquivoTomadoRespondePorCaminhoENaoEEsvaziado) {
  const apoio::PastaTemporaria pasta;
  apoio::EscreveArquivo(pasta / "A.DAT", "12345");
  std::unique_ptr<IArquivoAberto> arquivo;
  ASSERT_FALSE(Arquivos().Abre(pasta / "A.DAT", {Acesso::LeituraEscrita}, &arquivo));
  std::uint64_t tamanho = 0;
  bool bExiste = false;
  EXPECT_FALSE(Arquivos().Existe(pasta / "A.DAT", &bExiste));
  EXPECT_TRUE(bExiste);
  EXPECT_FALSE(Arquivos().TamanhoDe(pasta / "A.DAT", &tamanho));
  EXPECT_EQ(tamanho, 5u);
  ASSERT_FALSE(Arquivos().Abre(pasta / "A.DAT", {Acesso::Leitura, Compartilhamento::NegaEscrita}, &arquivo));
  EXPECT_EQ(ErroAoAbrir(pasta / "A.DAT", {Acesso::LeituraEscrita, Compartilhamento::NegaNada, Criacao::CriaVazio}),
            32u);
  arquivo.reset();
  EXPECT_EQ(apoio::LeArquivo(pasta / "A.DAT"), "12345");
}

TEST(Abertura, ModosDeCriacao) {
  const apoio::PastaTemporaria pasta;
  const struct {
    Criacao criacao;
    std::uint32_t erroSemArquivo;
    std::uint32_t erroComArquivo;
    const char *depois;  ///< of an existing file's content
  } casos[] = {{Criacao::SoExistente, 2, 0, "velho"},
               {Criacao::CriaNovo, 0, 80, "velho"},
               {Criacao::AbreOuCria, 0, 0, "velho"},
               {Criacao::CriaVazio, 0, 0, ""}};
  for (const auto &caso : casos) {
    const CString sufixo = std::to_string(static_cast<int>(caso.criacao));
    const ModoAbertura modo{Acesso::LeituraEscrita, Compartilhamento::Exclusivo, caso.criacao};
    EXPECT_EQ(ErroAoAbrir(pasta / ("NOVO" + sufixo), modo), caso.erroSemArquivo);
    bool bExiste = false;
    EXPECT_FALSE(Arquivos().Existe(pasta / ("NOVO" + sufixo), &bExiste));
    EXPECT_EQ(bExiste, caso.erroSemArquivo == 0);
    apoio::EscreveArquivo(pasta / ("VELHO" + sufixo), "velho");
    EXPECT_EQ(ErroAoAbrir(pasta / ("VELHO" + sufixo), modo), caso.erroComArquivo);
    EXPECT_EQ(apoio::LeArquivo(pasta / ("VELHO" + sufixo)), caso.depois);
    EXPECT_EQ(ErroAoAbrir(pasta / "NADA\\A.DAT", modo), 3u) << "missing directory";
    EXPECT_EQ(ErroAoAbrir(pasta / ("VELHO" + sufixo) + "\\A.DAT", modo), 3u) << "a file for a directory";
  }
}

TEST(Abertura, DiretorioNaoEArquivo) {
  const apoio::PastaTemporaria pasta;
  pasta.CriaSubpasta("SUB");
  std::uint64_t tamanho = 77;
  EXPECT_EQ(ErroAoAbrir(pasta / "SUB", {}), 5u);
  bool bExiste = true;
  EXPECT_EQ(Arquivos().Existe(pasta / "SUB", &bExiste).erroSO, 5u);
  EXPECT_FALSE(bExiste);
  EXPECT_FALSE(Arquivos().Existe(pasta / "NADA\\A.DAT", &bExiste)) << "without its directory nothing is there";
  EXPECT_FALSE(bExiste);
  EXPECT_FALSE(Arquivos().SomenteLeitura(pasta / "SUB"));
  EXPECT_TRUE(Arquivos().TamanhoDe(pasta / "SUB", &tamanho));
  EXPECT_EQ(Arquivos().TamanhoDe(pasta / "NADA", &tamanho).erroSO, 2u);
  EXPECT_EQ(tamanho, 77u);
}

TEST(Abertura, SomenteLeitura) {
  const apoio::PastaTemporaria pasta;
  apoio::EscreveArquivo(pasta / "A.DAT", "conteudo");
  EXPECT_FALSE(Arquivos().SomenteLeitura(pasta / "A.DAT"));
  apoio::MarcaSomenteLeitura(pasta / "A.DAT", true);
  EXPECT_TRUE(Arquivos().SomenteLeitura(pasta / "A.DAT"));
  EXPECT_FALSE(Arquivos().SomenteLeitura(pasta / "NADA"));
  EXPECT_EQ(ErroAoAbrir(pasta / "A.DAT", {Acesso::Leitura}), 0u);
  if (apoio::SomenteLeituraSemEfeito()) {
    GTEST_SKIP() << "Wine lets the superuser write to a read-only file";
  }
  for (const Criacao criacao : {Criacao::SoExistente, Criacao::AbreOuCria, Criacao::CriaVazio}) {
    EXPECT_EQ(ErroAoAbrir(pasta / "A.DAT", {Acesso::LeituraEscrita, Compartilhamento::NegaNada, criacao}), 5u);
  }
  EXPECT_EQ(apoio::LeArquivo(pasta / "A.DAT"), "conteudo");
}

}  // namespace
