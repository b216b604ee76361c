// The test doubles that every other test relies on, and the exchange of services.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>

#include "tests/apoio/ArquivosDecorado.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ProcessoFilho.h"
#include "tests/apoio/RelogioFalso.h"
#include "tests/apoio/ServicosTrocados.h"

namespace {

using namespace plataforma;

const ModoAbertura kCria{Acesso::LeituraEscrita, Compartilhamento::Exclusivo, Criacao::CriaVazio};

/// One operation of each kind, ten that count.
FalhaArquivo FazDeTudo(ISistemaArquivos &arquivos, const apoio::PastaTemporaria &pasta) {
  std::unique_ptr<IArquivoAberto> arquivo;
  std::uint64_t numero = 0;
  std::vector<CString> nomes;
  char letras[2];
  FalhaArquivo falha = arquivos.Abre(pasta / "A.TRA", kCria, &arquivo);
  falha = falha ? falha : arquivo->Grava(0, "abcd", 4);
  falha = falha ? falha : arquivo->AjustaTamanho(2);
  falha = falha ? falha : arquivo->Le(0, letras, 2);
  falha = falha ? falha : arquivo->Tamanho(&numero);
  falha = falha ? falha : arquivo->UltimaEscrita(&numero);
  falha = falha ? falha : arquivo->Descarrega();
  arquivo.reset();
  falha = falha ? falha : arquivos.MoveSubstituindo(pasta / "A.TRA", pasta / "B.DAT");
  falha = falha ? falha : arquivos.Lista(pasta.Caminho(), "*.DAT", &nomes);
  return falha ? falha : arquivos.Apaga(pasta / "B.DAT");
}

TEST(ArquivosComFalha, CadaOperacaoFalhaUmaVez) {
  const apoio::PastaTemporaria pasta;
  apoio::ArquivosComFalha arquivos(Arquivos());
  std::size_t enesima = 1;
  for (;; ++enesima) {
    arquivos.Arma({.enesima = enesima, .falha = FalhaWin32(112)});
    const FalhaArquivo falha = FazDeTudo(arquivos, pasta);
    if (!arquivos.Disparou()) {
      EXPECT_FALSE(falha);
      break;
    }
    EXPECT_EQ(falha.erroSO, 112u) << enesima;
    EXPECT_EQ(arquivos.Vistas(), enesima);
    EXPECT_FALSE(FazDeTudo(arquivos, pasta)) << "only once";
  }
  EXPECT_EQ(enesima, 11u);
}

TEST(ArquivosComFalha, SelecaoPersistenciaEEscritaRasgada) {
  const apoio::PastaTemporaria pasta;
  apoio::ArquivosComFalha arquivos(Arquivos());
  std::unique_ptr<IArquivoAberto> a;
  std::unique_ptr<IArquivoAberto> b;
  ASSERT_FALSE(arquivos.Abre(pasta / "A.DAT", kCria, &a));
  ASSERT_FALSE(arquivos.Abre(pasta / "B.DAT", kCria, &b));
  arquivos.Arma({.operacoes = apoio::kOpGrava | apoio::kOpMove,
                 .trecho = "A.DAT",
                 .enesima = 2,
                 .bPersistente = true,
                 .gravaAntes = 3});
  EXPECT_FALSE(a->Grava(0, "------", 6));
  EXPECT_FALSE(a->AjustaTamanho(6));
  EXPECT_FALSE(b->Grava(0, "------", 6));
  EXPECT_EQ(a->Grava(0, "novo", 4).causa, CausaArquivo::ErroFisico);
  EXPECT_EQ(a->Grava(5, "x", 1).causa, CausaArquivo::ErroFisico);
  a.reset();
  b.reset();
  EXPECT_TRUE(arquivos.MoveSubstituindo(pasta / "B.DAT", pasta / "A.DAT")) << "the second path counts too";
  EXPECT_EQ(arquivos.Vistas(), 4u);
  EXPECT_EQ(apoio::LeArquivo(pasta / "A.DAT"), "nov--x");
  arquivos.Desarma();
  EXPECT_FALSE(arquivos.MoveSubstituindo(pasta / "B.DAT", pasta / "A.DAT"));
}

TEST(ServicosTrocados, VoltamAoSair) {
  apoio::RelogioFalso relogio;
  apoio::ArquivosComFalha arquivos(Arquivos());
  {
    const apoio::ServicosTrocados fora(&arquivos, nullptr, &relogio);
    {
      const apoio::ServicosTrocados dentro(ServicosDoSistema().arquivos);
      EXPECT_EQ(&Arquivos(), ServicosDoSistema().arquivos);
      EXPECT_EQ(&Relogio(), &relogio);
    }
    EXPECT_EQ(&Arquivos(), &arquivos);
    EXPECT_EQ(&Registro(), ServicosDoSistema().registro);
    Relogio().Espera(3600000);
    EXPECT_EQ(relogio.Esperas(), std::vector<std::uint32_t>{3600000});
  }
  EXPECT_EQ(&Arquivos(), ServicosDoSistema().arquivos);
  EXPECT_EQ(&Relogio(), ServicosDoSistema().relogio);
}

TEST(RelogioSistema, EsperaAoMenosOPedido) {
  const auto antes = std::chrono::steady_clock::now();
  Relogio().Espera(0);
  Relogio().Espera(40);
  // The system may round the end of a wait to its tick of up to 16 ms.
  EXPECT_GE(std::chrono::steady_clock::now() - antes, std::chrono::milliseconds(24));
}

int DevolveArgumentos(const std::vector<std::string> &argumentos) {
  for (const std::string &argumento : argumentos) {
    std::puts(argumento.c_str());
  }
  return static_cast<int>(argumentos.size());
}
const apoio::RegistraFilha kFilha("devolve-argumentos", DevolveArgumentos);

TEST(ProcessoFilho, ArgumentosECodigoChegamInteiros) {
  const std::vector<std::string> argumentos{"com branco\\", "", "a\"b\\\\\"c", "\\x\\"};
  apoio::ProcessoFilho filho("devolve-argumentos", argumentos);
  for (const std::string &argumento : argumentos) {
    EXPECT_EQ(filho.LeLinha(), argumento);
  }
  EXPECT_EQ(filho.Espera(), 4);
  EXPECT_EQ(apoio::ProcessoFilho("desconhecida").Espera(), 127);
}

}  // namespace
