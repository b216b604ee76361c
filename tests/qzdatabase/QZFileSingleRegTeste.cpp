#include "core/qzdatabase/arquivo/QZFileSingleReg.h"

#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

using RegistroUnico = ComBanco;

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

TEST_F(RegistroUnico, FalhaEmCadaOperacao) {
  for (const bool bExistia : {false, true}) {
    SCOPED_TRACE(bExistia ? "existing" : "new");
    const apoio::PlanoFalha plano{.operacoes = apoio::kOpTodas & ~apoio::kOpApaga,
                                  .trecho = "UNICO.DAT",
                                  .falha = plataforma::FalhaWin32(112),
                                  .gravaAntes = 5};
    for (apoio::SerieFalhas serie(m_falhas, plano, apoio::Duracao::Ambas); serie.Proxima();) {
      apoio::EmpresaComBase empresa;
      if (bExistia) {
        empresa.Escreve("UNICO.DAT", Bytes(1, 1));
      }
      ASSERT_EQ(m_banco.Inicializa(empresa.Dono()), codigos::kOk);
      const HRESULT hr = serie.Roda([&] { return Unico().Grava(Registro(2)); });
      if (Falhou(hr)) {
        ASSERT_EQ(Unico().Grava(Registro(2)), codigos::kOk) << "the same record is tried again";
      }
      ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
      ASSERT_EQ(empresa.Le("UNICO.DAT"), Bytes(2, 2));
    }
  }
}

TEST_F(RegistroUnico, FalhaDefinitivaDeixaODiscoComoEstava) {
  for (const bool bExistia : {false, true}) {
    apoio::EmpresaComBase empresa;
    if (bExistia) {
      empresa.Escreve("UNICO.DAT", Bytes(1, 1));
    }
    ASSERT_EQ(m_banco.Inicializa(empresa.Dono()), codigos::kOk);
    m_falhas.Arma({apoio::kOpGrava, "UNICO.DAT", 1, false, plataforma::FalhaWin32(1117), 5});
    EXPECT_EQ(Unico().Grava(Registro(2)), codigos::kArqErroFisico);
    m_falhas.Desarma();
    ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
    EXPECT_EQ(empresa.Existe("UNICO.DAT"), bExistia);
    EXPECT_EQ(m_banco.Inicializa(empresa.Dono()), codigos::kOk) << "the base still opens";
  }
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
