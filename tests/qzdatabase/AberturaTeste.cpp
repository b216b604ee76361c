// Opening: result codes, retries, mode switches, creation, and others who change the file meanwhile.

#include <functional>

#include "tests/qzdatabase/BancoTeste.h"

namespace {

using Abertura = ComBanco;

TEST_F(Abertura, CodigoETentativasPorCausa) {
  struct Caso {
    std::uint32_t erroWin32;
    HRESULT esperado;
    std::size_t tentativas;
    std::size_t esperas;
  };
  const Caso casos[] = {
      {3, codigos::kArqCaminhoInvalido, 1, 0},      {6, codigos::kArqInvalido, 1, 0},
      {32, codigos::kArqCompartilhamento, 100, 99}, {33, codigos::kArqBloqueio, 100, 99},
      {4, codigos::kArqMuitosAbertos, 100, 99},     {5, codigos::kArqAcessoNegado, 100, 99},
      {112, codigos::kArqDiscoCheio, 100, 99},      {1117, codigos::kArqOutra, 100, 100},
      {9999, codigos::kArqOutra, 100, 100},
  };
  m_empresa.Escreve("TESTE.DAT", Bytes(1, 2));
  for (const Caso &caso : casos) {
    SCOPED_TRACE(caso.erroWin32);
    const std::size_t antes = m_relogio.Esperas().size();
    m_falhas.Arma({apoio::kOpAbre, "TESTE.DAT", 1, true, plataforma::FalhaWin32(caso.erroWin32), {}});
    EXPECT_EQ(Abre(), caso.esperado);
    EXPECT_EQ(m_falhas.Vistas(), caso.tentativas);
    EXPECT_EQ(m_relogio.Esperas().size() - antes, caso.esperas);
  }
  m_falhas.Arma({apoio::kOpAbre, "TESTE.DAT", 1, true, {plataforma::CausaArquivo::DiretorioCheio, 0}, {}});
  EXPECT_EQ(Abre(), codigos::kArqDiretorioCheio);

  m_falhas.Arma({apoio::kOpAbre, "TESTE.DAT", 1, false, plataforma::FalhaWin32(32), {}});
  EXPECT_EQ(Abre(), codigos::kOk) << "one busy moment is ridden out";
  EXPECT_EQ(m_relogio.Esperas().back(), 10U);
  EXPECT_EQ(Disco("TESTE.DAT"), Bytes(1, 2));
}

TEST_F(Abertura, ArquivoSomenteLeituraTemCodigoProprio) {
  Prepara("TESTE.DAT", Bytes(1, 1));
  apoio::MarcaSomenteLeitura(m_empresa.Caminho("TESTE.DAT"), true);
  ASSERT_EQ(Abre(), codigos::kOk);
  std::uint64_t uiPosicao = 1;
  EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(1)), codigos::kOk) << "an unchanged record needs no writing";
  if (!apoio::SomenteLeituraSemEfeito()) {
    EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(9)), codigos::kArqSomenteLeitura);
    RegTeste reg;
    EXPECT_EQ(Arquivo().Le(1, &reg), codigos::kOk) << "a refused write leaves the file readable";
    EXPECT_EQ(reg, Registro(1));
  }
  apoio::MarcaSomenteLeitura(m_empresa.Caminho("TESTE.DAT"), false);
  EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(9)), codigos::kOk);
}

TEST_F(Abertura, ArquivoAusente) {
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_FALSE(Arquivo().ExisteArquivo());
  EXPECT_FALSE(m_empresa.Existe("TESTE.DAT")) << "reading creates nothing";
  EXPECT_EQ(Arquivo().AbreArquivo(eModoLeitura), codigos::kOk);
  EXPECT_FALSE(Arquivo().ExisteArquivo());
  EXPECT_EQ(Arquivo().AbreArquivo(), codigos::kOk);
  EXPECT_TRUE(Arquivo().ExisteArquivo());
  EXPECT_EQ(Disco("TESTE.DAT"), "");
}

TEST_F(Abertura, DiretorioQueNaoExisteFalhaSemInsistir) {
  apoio::RegistroTeste registro;
  registro.DefineTexto(m_empresa.ChaveDaEmpresa(), "DF", m_empresa.Caminho("nada"));
  EXPECT_EQ(Abre(), codigos::kArqCaminhoInvalido);
  EXPECT_TRUE(m_relogio.Esperas().empty());
}

TEST_F(Abertura, MesmoModoNaoFazNada) {
  Prepara("TESTE.DAT", Bytes(1, 1));
  ASSERT_EQ(Abre(), codigos::kOk);
  m_falhas.Arma({apoio::kOpTodas, "TESTE.DAT", 1, true, plataforma::FalhaWin32(32), {}});
  EXPECT_EQ(Arquivo().AbreArquivo(eModoLeitura), codigos::kOk);
  EXPECT_EQ(m_falhas.Vistas(), 0U);
}

TEST_F(Abertura, ModoDeCriacaoEsvazia) {
  m_empresa.Escreve("TESTE.DAT", Bytes(1, 3));
  ASSERT_EQ(Abre(), codigos::kOk);
  ASSERT_EQ(Arquivo().AbreArquivo(eModoCriacao), codigos::kOk);
  EXPECT_EQ(Quantidade(Arquivo()), 0U);
  EXPECT_EQ(Disco("TESTE.DAT"), "");
}

TEST_F(Abertura, FalhaNaTrocaDeModoVoltaAoModoAnterior) {
  Prepara("TESTE.DAT", Bytes(1, 2));
  ASSERT_EQ(Abre(), codigos::kOk);
  apoio::ColetorRastro rastro;
  std::uint64_t uiPosicao = 0;
  m_falhas.Arma({apoio::kOpAbre, "TESTE.DAT", 1, false, plataforma::FalhaWin32(3), {}});
  EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(3)), codigos::kArqCaminhoInvalido);
  EXPECT_EQ(rastro.Toma(),
            (std::vector<std::string>{"CQZFileBase::AbreArquivo|QZFileBase.cpp|((HRESULT)0x80043EBFL)",
                                      "CQZFile<struct RegTeste>::GravaColecao|QZFile.h|AbreArquivo()",
                                      "CQZFile<struct RegTeste>::Grava|QZFile.h|GravaColecao(uiPosicao, aRegistros)"}));
  RegTeste reg;
  EXPECT_EQ(Arquivo().Le(2, &reg), codigos::kOk);
  EXPECT_EQ(reg, Registro(2));
  EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(3)), codigos::kOk);
  EXPECT_EQ(uiPosicao, 3U);
}

/// Does something to the disk, once, right before an open that fits: another process that comes in between.
class Intrometido : public apoio::ArquivosDecorado {
public:
  using Quando = std::function<bool(const plataforma::ModoAbertura &)>;
  Intrometido(Quando quando, std::function<void()> acao)
      : ArquivosDecorado(*plataforma::ServicosDoSistema().arquivos),
        m_quando(std::move(quando)),
        m_acao(std::move(acao)) {}

  plataforma::FalhaArquivo Abre(const CString &caminho, const plataforma::ModoAbertura &modo,
                                std::unique_ptr<plataforma::IArquivoAberto> *arquivo) override {
    if (m_acao && caminho.find("TESTE.DAT") != CString::npos && m_quando(modo)) {
      std::exchange(m_acao, nullptr)();
    }
    return ArquivosDecorado::Abre(caminho, modo, arquivo);
  }

private:
  Quando m_quando;
  std::function<void()> m_acao;
};

bool ParaGravar(const plataforma::ModoAbertura &modo) {
  return modo.acesso == plataforma::Acesso::LeituraEscrita;
}
bool ParaCriar(const plataforma::ModoAbertura &modo) {
  return modo.criacao == plataforma::Criacao::CriaNovo;
}

TEST_F(Abertura, OutroProcessoMudaOArquivoNaTrocaDeModo) {
  struct Caso {
    const char *nome;
    std::string disco;
    std::uint64_t uiPosicao;
    HRESULT esperado;
    std::string depois;
  };
  const Caso casos[] = {
      {"more records", Bytes(1, 4), 0, codigos::kOk, Bytes(1, 4) + Bytes(9, 9)},
      {"fewer records", Bytes(1, 1), 2, codigos::kGravacaoAlemDoFim, Bytes(1, 1)},
      {"no whole record", Bytes(1, 1) + "x", 0, codigos::kTamanhoNaoMultiplo, Bytes(1, 1) + "x"},
      {"same length, other content", Bytes(5, 6), 1, codigos::kOk, Bytes(9, 9) + Bytes(6, 6)},
  };
  for (const Caso &caso : casos) {
    SCOPED_TRACE(caso.nome);
    Prepara("TESTE.DAT", Bytes(1, 2));
    Intrometido intrometido(ParaGravar, [&] {
      // A clock tick must pass for the time of the last write to differ.
      plataforma::ServicosDoSistema().relogio->Espera(20);
      m_empresa.Escreve("TESTE.DAT", caso.disco);
    });
    apoio::ServicosTrocados servicos(&intrometido);
    ASSERT_EQ(Abre(), codigos::kOk);
    std::uint64_t uiPosicao = caso.uiPosicao;
    EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(9)), caso.esperado);
    EXPECT_EQ(m_banco.Finaliza(), codigos::kOk);
    EXPECT_EQ(m_empresa.Le("TESTE.DAT"), caso.depois);
  }
}

TEST_F(Abertura, CriacaoNaoApagaOQueOutroProcessoCriou) {
  Intrometido intrometido(ParaCriar, [&] { m_empresa.Escreve("TESTE.DAT", Bytes(1, 1)); });
  apoio::ServicosTrocados servicos(&intrometido);
  ASSERT_EQ(Abre(), codigos::kOk);
  std::uint64_t uiPosicao = 0;
  EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(2)), codigos::kOk);
  EXPECT_EQ(uiPosicao, 2U);
  EXPECT_EQ(Disco("TESTE.DAT"), Bytes(1, 2));
}

}  // namespace
