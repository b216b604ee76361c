// What is special to files of records and to those of one record.

#include "core/qzdatabase/arquivo/QZFile.h"

#include <thread>

#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

using ArquivoTipado = ComBanco;
using RegistroUnico = ComBanco;

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

TEST_F(ArquivoTipado, ModoDeCriacaoEsvazia) {
  Poe("TESTE.DAT", Bytes(1, 3));
  ASSERT_EQ(Abre(), codigos::kOk);
  ASSERT_EQ(Arquivo().AbreArquivo(eModoCriacao), codigos::kOk);
  EXPECT_EQ(Quantidade(Arquivo()), 0U);
  EXPECT_EQ(Disco("TESTE.DAT"), "");
}

/// Another program has left fewer records by the time that the file is open for writing.
TEST_F(ArquivoTipado, PosicaoQueNaoExisteMais) {
  Poe("TESTE.DAT", Bytes(1, 3));
  ASSERT_EQ(Abre(), codigos::kOk);
  m_falhas.Arma(AntesDeAbrir("TESTE.DAT", [this] { Poe("TESTE.DAT", Bytes(1, 1)); }));
  std::uint64_t uiPosicao = 3;
  EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(9)), codigos::kGravacaoAlemDoFim);
  EXPECT_EQ(uiPosicao, 3U);
  EXPECT_EQ(Disco("TESTE.DAT"), Bytes(1, 1));
}

TEST_F(ArquivoTipado, RastroDeUmaFalha) {
  Poe("TESTE.DAT", Bytes(1, 2));
  ASSERT_EQ(Abre(), codigos::kOk);
  apoio::ColetorRastro rastro;
  std::uint64_t uiPosicao = 0;
  m_falhas.Arma({.operacoes = apoio::kOpAbre, .trecho = "TESTE.DAT", .falha = plataforma::FalhaWin32(3)});
  EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(3)), codigos::kArqCaminhoInvalido);
  EXPECT_EQ(rastro.Toma(),
            (std::vector<std::string>{"CQZFileBase::AbreArquivo|QZFileBase.cpp|((HRESULT)0x80043EBFL)",
                                      "CQZFile<struct RegTeste>::GravaColecao|QZFile.h|AbreArquivo()",
                                      "CQZFile<struct RegTeste>::Grava|QZFile.h|GravaColecao(uiPosicao, aRegistros)"}));
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

// Files of one record.

TEST_F(RegistroUnico, ArquivoAusente) {
  ASSERT_EQ(Abre(), codigos::kOk);
  RegTeste reg = Registro(77);
  EXPECT_EQ(Unico().Le(&reg), codigos::kArquivoNaoAberto);
  EXPECT_EQ(reg, Registro(77)) << "the output stays";
  EXPECT_EQ(Unico().Grava(RegTeste{}), codigos::kOk);
  EXPECT_FALSE(m_empresa.Existe("UNICO.DAT")) << "a zero record creates nothing";
  EXPECT_EQ(Unico().Grava(Registro(1)), codigos::kOk);
  EXPECT_EQ(Unico().Le(&reg), codigos::kOk);
  EXPECT_EQ(reg, Registro(1));
  EXPECT_EQ(Disco("UNICO.DAT"), Bytes(1, 1));
}

TEST_F(RegistroUnico, TamanhoErrado) {
  for (const std::size_t tamanho : std::initializer_list<std::size_t>{0, 15, 17}) {
    const std::string conteudo(tamanho, 'x');
    m_empresa.Escreve("UNICO.DAT", conteudo);
    {
      BancoTeste banco;
      EXPECT_EQ(banco.Inicializa(m_empresa.Dono()), codigos::kTamanhoDiferente) << tamanho;
    }
    EXPECT_EQ(m_empresa.Le("UNICO.DAT"), conteudo);
  }
  m_empresa.Escreve("UNICO.DAT", Bytes(1, 1));
  EXPECT_EQ(Abre(), codigos::kOk) << "the right file opens again";
}

TEST_F(RegistroUnico, UtilitariosDeUmTrabalho) {
  const CQZProfilerEmpresa dono = m_empresa.Dono();
  RegTeste reg = Registro(77);
  EXPECT_EQ(CQZDataBaseUtil::LeSingleReg(&dono, QZ_DF, &reg, "UM.DAT"), codigos::kOk);
  EXPECT_EQ(reg, RegTeste{});
  EXPECT_EQ(CQZDataBaseUtil::GravaSingleReg(&dono, QZ_DF, RegTeste{}, "UM.DAT"), codigos::kOk);
  EXPECT_FALSE(m_empresa.Existe("UM.DAT"));
  EXPECT_EQ(CQZDataBaseUtil::GravaSingleReg(&dono, QZ_DF, Registro(3), "UM.DAT"), codigos::kOk);
  EXPECT_EQ(CQZDataBaseUtil::LeSingleReg(&dono, QZ_DF, &reg, "UM.DAT"), codigos::kOk);
  EXPECT_EQ(reg, Registro(3));
  m_empresa.Escreve("UM.DAT", "short");
  EXPECT_EQ(CQZDataBaseUtil::LeSingleReg(&dono, QZ_DF, &reg, "UM.DAT"), codigos::kTamanhoDiferente);
  EXPECT_EQ(reg, RegTeste{}) << "zeroed first";
}

}  // namespace
