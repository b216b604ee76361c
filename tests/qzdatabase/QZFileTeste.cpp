#include "core/qzdatabase/arquivo/QZFile.h"

#include <thread>

#include "tests/qzdatabase/BancoTeste.h"

namespace {

using ArquivoTipado = ComBanco;

TEST_F(ArquivoTipado, TamanhoDoArquivoNaInicializacao) {
  for (const std::size_t tamanho : std::initializer_list<std::size_t>{0, 16, 32, 1, 15, 17}) {
    SCOPED_TRACE(tamanho);
    const std::string conteudo(tamanho, 'x');
    m_empresa.Escreve("TESTE.DAT", conteudo);
    {
      BancoTeste banco;
      EXPECT_EQ(banco.Inicializa(m_empresa.Dono()), tamanho % 16 == 0 ? codigos::kOk : codigos::kTamanhoNaoMultiplo);
      EXPECT_EQ(Quantidade(banco.m_Registros), tamanho % 16 == 0 ? tamanho / 16 : 0);
    }
    EXPECT_EQ(m_empresa.Le("TESTE.DAT"), conteudo);
  }
}

TEST_F(ArquivoTipado, LeituraPorPosicao) {
  RegTeste reg{};
  EXPECT_EQ(Arquivo().Le(0, &reg), codigos::kPosicaoZero);
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(Arquivo().Le(0, &reg), codigos::kPosicaoZero);
  EXPECT_EQ(Arquivo().Le(1, &reg), codigos::kArquivoNaoAberto) << "a missing file is not open";
  ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
  m_empresa.Escreve("TESTE.DAT", Bytes(1, 3));
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(Arquivo().Le(3, &reg), codigos::kOk);
  EXPECT_EQ(reg, Registro(3));
  for (const std::uint64_t posicao : {std::uint64_t{4}, ~std::uint64_t{0}, std::uint64_t{0xFFFFFFFF80000000}}) {
    EXPECT_EQ(Arquivo().Le(posicao, &reg), codigos::kPosicaoAlemDoFim) << posicao;
  }
  ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
  EXPECT_EQ(Arquivo().Le(3, &reg), codigos::kArquivoNaoAberto);
}

TEST_F(ArquivoTipado, GravaAcrescentaESobrepoe) {
  ASSERT_EQ(Abre(), codigos::kOk);
  std::uint64_t uiPosicao = 0;
  EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(1)), codigos::kOk);
  EXPECT_EQ(uiPosicao, 1U);
  uiPosicao = 2;
  EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(2)), codigos::kGravacaoAlemDoFim) << "right behind the last record";
  EXPECT_EQ(uiPosicao, 2U);
  uiPosicao = 0;
  EXPECT_EQ(Arquivo().GravaColecao(uiPosicao, Colecao(2, 5)), codigos::kOk);
  EXPECT_EQ(uiPosicao, 2U) << "an append hands back its first position";
  uiPosicao = 5;
  EXPECT_EQ(Arquivo().GravaColecao(uiPosicao, Colecao(15, 17)), codigos::kOk) << "a range may run past the end";
  EXPECT_EQ(Quantidade(Arquivo()), 7U);
  uiPosicao = 0;
  EXPECT_EQ(Arquivo().GravaColecao(uiPosicao, CArray<RegTeste>()), codigos::kOk);
  EXPECT_EQ(Disco("TESTE.DAT"), Bytes(1, 4) + Bytes(15, 17));
  ASSERT_EQ(Abre(), codigos::kOk);
  RegTeste reg;
  EXPECT_EQ(Arquivo().Le(7, &reg), codigos::kOk);
  EXPECT_EQ(reg, Registro(17));
}

TEST_F(ArquivoTipado, MuitosRegistrosAtravessamBlocos) {
  constexpr std::uint32_t kQtd = 2 * CQZBlocosRegistros<RegTeste>::kRegistrosPorBloco + 5;
  ASSERT_EQ(Abre(), codigos::kOk);
  std::uint64_t uiPosicao = 0;
  ASSERT_EQ(Arquivo().GravaColecao(uiPosicao, Colecao(1, kQtd)), codigos::kOk);
  uiPosicao = 1000;
  ASSERT_EQ(Arquivo().GravaColecao(uiPosicao, Colecao(5000, 5100)), codigos::kOk);
  const std::string esperado = Bytes(1, 999) + Bytes(5000, 5100) + Bytes(1101, kQtd);
  EXPECT_EQ(Disco("TESTE.DAT"), esperado);
  ASSERT_EQ(Abre(), codigos::kOk);
  std::string lido;
  const auto junta = [&](std::uint64_t, const RegTeste &reg) {
    lido.append(reinterpret_cast<const char *>(&reg), sizeof(reg));
    return true;
  };
  EXPECT_EQ(Arquivo().Percorre(1, kQtd, junta), codigos::kOk);
  EXPECT_EQ(lido, esperado);
  EXPECT_EQ(Arquivo().Percorre(kQtd, kQtd + 1, junta), codigos::kPosicaoAlemDoFim);
}

TEST_F(ArquivoTipado, RegistroIgualNaoTocaNoDisco) {
  m_empresa.Escreve("TESTE.DAT", Bytes(1, 3));
  ASSERT_EQ(Abre(), codigos::kOk);
  m_falhas.Arma({apoio::kOpTodas, "", 1, true, plataforma::FalhaWin32(1117), {}});
  std::uint64_t uiPosicao = 2;
  EXPECT_EQ(Arquivo().GravaColecao(uiPosicao, Colecao(2, 3)), codigos::kOk);
  EXPECT_EQ(m_falhas.Vistas(), 0U);
  m_falhas.Desarma();
  uiPosicao = 3;
  EXPECT_EQ(Arquivo().GravaColecao(uiPosicao, Colecao(3, 4)), codigos::kOk) << "equal as far as it goes, but longer";
  EXPECT_EQ(Disco("TESTE.DAT"), Bytes(1, 4));
}

TEST_F(ArquivoTipado, RetentaSeNaoForFatal) {
  m_empresa.Escreve("TESTE.DAT", Bytes(1, 2));
  ASSERT_EQ(Abre(), codigos::kOk);
  std::uint64_t uiPosicao = 0;
  m_falhas.Arma({apoio::kOpGrava, "", 1, true, plataforma::FalhaWin32(32), {}});
  EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(3)), codigos::kArqCompartilhamento);
  EXPECT_EQ(m_relogio.Esperas().size(), 50U);
  for (const std::uint32_t fatal : {25U, 38U, 1117U, 2U, 3U}) {
    const std::size_t antes = m_relogio.Esperas().size();
    m_falhas.Arma({apoio::kOpGrava, "", 1, true, plataforma::FalhaWin32(fatal), {}});
    EXPECT_TRUE(Falhou(Arquivo().Grava(uiPosicao, Registro(3)))) << fatal;
    EXPECT_EQ(m_relogio.Esperas().size(), antes) << fatal;
  }
  m_falhas.Desarma();
  EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(3)), codigos::kOk);
  EXPECT_EQ(uiPosicao, 3U);
  EXPECT_EQ(Disco("TESTE.DAT"), Bytes(1, 3));
}

/// Every write of a case with its N-th file operation failing, for every N, once and for good: the caller's answer, the
/// memory and the disk agree, and the next write works.
TEST_F(ArquivoTipado, FalhaEmCadaOperacao) {
  struct Caso {
    const char *nome;
    std::uint64_t uiPosicao;
    CArray<RegTeste> aRegistros;
    std::string depois;
  };
  const Caso casos[] = {{"append", 0, Colecao(11, 11), Bytes(1, 3) + Bytes(11, 11)},
                        {"overwrite", 2, Colecao(12, 12), Bytes(1, 1) + Bytes(12, 12) + Bytes(3, 3)},
                        {"range past the end", 3, Colecao(13, 15), Bytes(1, 2) + Bytes(13, 15)}};
  for (const Caso &caso : casos) {
    SCOPED_TRACE(caso.nome);
    const apoio::PlanoFalha plano{.trecho = "TESTE.DAT", .falha = plataforma::FalhaWin32(112), .gravaAntes = 21};
    for (apoio::SerieFalhas serie(m_falhas, plano, apoio::Duracao::Ambas); serie.Proxima();) {
      m_empresa.Escreve("TESTE.DAT", Bytes(1, 3));
      ASSERT_EQ(Abre(), codigos::kOk);
      std::uint64_t uiPosicao = caso.uiPosicao;
      const HRESULT hr = serie.Roda([&] { return Arquivo().GravaColecao(uiPosicao, caso.aRegistros); });
      ASSERT_TRUE(serie.Persistente() || hr == codigos::kOk) << "a passing failure is ridden out";
      // When neither mode could be opened the next write opens the file again.
      ASSERT_TRUE(Falhou(hr) || Arquivo().ExisteArquivo());
      std::uint64_t uiOutra = 1;
      ASSERT_EQ(Arquivo().Grava(uiOutra, Registro(1, "again")), codigos::kOk);
      uiOutra = 1;
      ASSERT_EQ(Arquivo().Grava(uiOutra, Registro(1)), codigos::kOk);
      ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
      ASSERT_EQ(m_empresa.Le("TESTE.DAT"), Falhou(hr) ? Bytes(1, 3) : caso.depois);
    }
  }
}

TEST_F(ArquivoTipado, LeitoresEEscritoresAoMesmoTempo) {
  constexpr std::uint32_t kEscritores = 4;
  constexpr std::uint32_t kPorEscritor = 300;
  ASSERT_EQ(Abre(), codigos::kOk);
  std::vector<std::thread> threads;
  std::atomic<bool> bErro{false};
  for (std::uint32_t e = 0; e < kEscritores; ++e) {
    threads.emplace_back([&, e] {
      for (std::uint32_t i = 0; i < kPorEscritor; ++i) {
        std::uint64_t uiPosicao = 0;
        const RegTeste reg = Registro(e * kPorEscritor + i);
        RegTeste lido;
        bErro = bErro || Falhou(Arquivo().Grava(uiPosicao, reg)) || Falhou(Arquivo().Le(uiPosicao, &lido)) ||
                !(lido == reg) || Quantidade(Arquivo()) < uiPosicao;
      }
    });
  }
  for (std::thread &thread : threads) {
    thread.join();
  }
  EXPECT_FALSE(bErro);
  std::vector<int> vezes(kEscritores * kPorEscritor, 0);
  EXPECT_EQ(Arquivo().Percorre(1, Quantidade(Arquivo()),
                               [&](std::uint64_t, const RegTeste &reg) {
                                 ++vezes.at(reg.uiNumero);
                                 return true;
                               }),
            codigos::kOk);
  EXPECT_EQ(vezes, std::vector<int>(kEscritores * kPorEscritor, 1));
}

}  // namespace
