// What is special to files of records and to those of one record.

#include <atomic>
#include <new>
#include <thread>

#include "tests/qzdatabase/BancoTeste.h"

namespace {

class ArquivoDeRegistros : public ComBanco {
protected:
  void Prepara(const std::optional<std::string> &dados) {
    Poe("TESTE.DAT", dados);
    ASSERT_EQ(Abre(), codigos::kOk);
  }
};

TEST_F(ArquivoDeRegistros, PosicaoDevolvida) {
  CArray<RegTeste> aUltimoEZero = Colecao(3, 3);
  aUltimoEZero.Add(RegTeste{});  // what memory that nothing has used yet holds behind the last
  const std::tuple<std::uint64_t, CArray<RegTeste>, HRESULT, std::uint64_t, std::string> casos[] = {
      {3, std::move(aUltimoEZero), codigos::kOk, 3, Bytes(1, 3) + Bytes(RegTeste{})},
      {0, Colecao(4, 6), codigos::kOk, 4, Bytes(1, 6)},
      {4, Colecao(4, 4), codigos::kGravacaoAlemDoFim, 4, Bytes(1, 3)},
      {0, {}, codigos::kOk, 0, Bytes(1, 3)}};
  for (const auto &[uiAntes, aRegistros, hr, uiDepois, disco] : casos) {
    Prepara(Bytes(1, 3));
    std::uint64_t uiPosicao = uiAntes;
    EXPECT_EQ(Arquivo().GravaColecao(uiPosicao, aRegistros), hr);
    EXPECT_EQ(uiPosicao, uiDepois);
    EXPECT_EQ(Disco("TESTE.DAT"), disco);
  }
}

TEST_F(ArquivoDeRegistros, ModoDeCriacaoEsvazia) {
  Prepara(Bytes(1, 3));
  ASSERT_EQ(Arquivo().AbreArquivo(eModoCriacao), codigos::kOk);
  EXPECT_EQ(Quantidade(Arquivo()), 0U);
  EXPECT_EQ(Disco("TESTE.DAT"), "");
}

/// Another program has left fewer records by the time that the file is open for writing.
TEST_F(ArquivoDeRegistros, PosicaoQueNaoExisteMais) {
  Prepara(Bytes(1, 3));
  m_falhas.Arma(AntesDeAbrir("TESTE.DAT", [this] { Poe("TESTE.DAT", Bytes(1, 1)); }));
  std::uint64_t uiPosicao = 3;
  EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(9)), codigos::kGravacaoAlemDoFim);
  EXPECT_EQ(uiPosicao, 3U);
  EXPECT_EQ(Disco("TESTE.DAT"), Bytes(1, 1));
}

/// A reader that comes while the file is being opened in another mode, and loaded anew where others have changed it,
/// finds what was there before: neither a file that is not open nor fewer records.
TEST_F(ArquivoDeRegistros, LeituraEnquantoOArquivoEReaberto) {
  Prepara(Bytes(1, 3));
  std::atomic<bool> bReabrindo{true};
  std::thread outro([&] {
    for (int i = 0; i < 6000; ++i) {
      const plataforma::CQZTrava trava(m_banco.m_Registros.Secao());
      m_falhas.FixaUltimaEscrita(static_cast<std::uint64_t>(i / 50 + 1));
      EXPECT_EQ(Arquivo().AbreArquivo(i % 2 == 0 ? eModoLeituraGravacao : eModoLeitura), codigos::kOk);
    }
    bReabrindo = false;
  });
  while (bReabrindo && !HasFailure()) {
    // Mostly the shortest way of reading: what could go wrong does so within a moment of it.
    for (int i = 0; i < 200; ++i) {
      RegTeste reg;
      EXPECT_EQ(Arquivo().Le(2, &reg), codigos::kOk);
    }
    EXPECT_EQ(Quantidade(Arquivo()), 3U);
    EXPECT_EQ(Arquivo().Percorre(1, 3, [](std::uint64_t, const RegTeste &) { return true; }), codigos::kOk);
    const auto posicao = [](std::size_t i) { return i + 1; };
    EXPECT_EQ(Arquivo().LeVarios(3, posicao, [](std::size_t, const RegTeste &) {}), codigos::kOk);
  }
  outro.join();
}

/// Readers wait for no disk: while a write is at it, another thread reads.
TEST_F(ArquivoDeRegistros, LeitoresNaoEsperamPeloDisco) {
  Prepara(Bytes(1, 3));
  m_falhas.Arma({.operacoes = apoio::kOpGrava, .trecho = "TESTE.DAT", .falha = {}, .aoFalhar = [&] {
                   std::thread([&] {
                     RegTeste reg;
                     EXPECT_EQ(Arquivo().Le(Quantidade(Arquivo()) - 1, &reg), codigos::kOk);
                     EXPECT_EQ(reg, Registro(2)) << "not yet";
                   }).join();
                 }});
  EXPECT_EQ(Grava(2, Registro(9)), codigos::kOk);
  EXPECT_TRUE(m_falhas.Disparou());
}

/// Memory that a machine fault has left half changed is not served: it is loaded anew.
TEST_F(ArquivoDeRegistros, MudancaAbandonadaRecarrega) {
  Prepara(Bytes(1, 3));
  std::thread([this] {
    alignas(plataforma::CQZTravaEscrita) std::byte abandonada[sizeof(plataforma::CQZTravaEscrita)];
    new (abandonada) plataforma::CQZTravaEscrita(m_banco.m_Registros.Leitores());
    plataforma::LivroDaThread::SoltaAte(0);
  }).join();
  m_falhas.Arma({.operacoes = apoio::kOpLe, .trecho = "TESTE.DAT", .enesima = 100});
  RegTeste reg;
  EXPECT_EQ(Arquivo().Le(2, &reg), codigos::kOk);
  EXPECT_GT(m_falhas.Vistas(), 0U);
  EXPECT_FALSE(m_banco.m_Registros.Leitores().Suspeita());
}

TEST_F(ArquivoDeRegistros, UmRegistroAusenteOuDeOutroTamanho) {
  Prepara(std::nullopt);
  RegTeste reg = Registro(77);
  EXPECT_EQ(Unico().Le(&reg), codigos::kArquivoNaoAberto);
  EXPECT_EQ(reg, Registro(77)) << "the output stays";
  EXPECT_EQ(Unico().Grava(RegTeste{}), codigos::kOk);
  EXPECT_FALSE(m_empresa.Existe("UNICO.DAT")) << "a zero record creates nothing";
  EXPECT_EQ(Unico().Grava(Registro(1, "differs at")), codigos::kOk);
  EXPECT_EQ(Unico().Grava(Registro(1, "differs at e")), codigos::kOk);
  EXPECT_EQ(Disco("UNICO.DAT"), Bytes(Registro(1, "differs at e")));
  Poe("TESTE.DAT", Bytes(1, 1));
  Poe("TEXTO.DAT", Linhas({"um"}));
  for (const char *conteudo : {"", "fifteen letters", "seventeen letters"}) {
    Poe("UNICO.DAT", conteudo);
    {
      BancoTeste banco;
      EXPECT_EQ(banco.Inicializa(m_empresa.Dono()), codigos::kTamanhoDiferente);
      EXPECT_FALSE(banco.m_Texto.ExisteArquivo() || banco.m_Registros.ExisteArquivo()) << "open already, and closed";
    }
    EXPECT_EQ(m_empresa.Le("UNICO.DAT"), conteudo);
  }
}

}  // namespace
