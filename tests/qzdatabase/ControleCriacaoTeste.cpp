// The list of created files: who is listed, what a listed file's absence means, and deletions on purpose.

#include "core/qzdatabase/arquivo/QZFileBase.h"

#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

class Controle : public ComBanco {
protected:
  HRESULT Acrescenta() { return Grava(0, Registro(1)); }
  void Apaga(const CString &nome) { Poe(nome, std::nullopt); }
  /// A company with TESTE.DAT, listed.
  void Cria() {
    Apaga("TESTE.DAT");
    Apaga(kArquivoControle);
    ASSERT_EQ(Abre(), codigos::kOk);
    ASSERT_EQ(Acrescenta(), codigos::kOk);
    ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
  }
  HRESULT Deleta() { return CQZDataBaseUtil::DeletaArquivo(m_empresa.Codigo(), QZ_DF, "TESTE.DAT"); }
};

TEST_F(Controle, SoOQueOSistemaCriouEListado) {
  m_empresa.Escreve("UNICO.DAT", Bytes(1, 1));
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_FALSE(m_empresa.Existe(kArquivoControle)) << "reading lists nothing";
  ASSERT_EQ(Acrescenta(), codigos::kOk);
  ASSERT_EQ(Unico().Grava(Registro(2)), codigos::kOk);
  EXPECT_EQ(m_empresa.Le(kArquivoControle), Linhas({"TESTE.DAT"})) << "neither a file that was there nor the list";
}

/// Gone without the system's doing: reported at every open, for reading too, until the file is back.
TEST_F(Controle, ArquivoListadoQueSumiuERelatado) {
  Cria();
  const std::string sBom = m_empresa.LeInteiro("TESTE.DAT");
  Apaga("TESTE.DAT");
  EXPECT_EQ(Abre(), codigos::kArquivoDesapareceu);
  EXPECT_EQ(Abre(), codigos::kArquivoDesapareceu) << "again";

  // One that goes between the look at it and its opening is no other; on purpose, it never was.
  for (const bool bDeProposito : {false, true}) {
    m_empresa.Escreve("TESTE.DAT", sBom);
    m_falhas.Arma(AntesDeAbrir("TESTE.DAT", [&] {
      Apaga("TESTE.DAT");
      if (bDeProposito) {
        Poe(kArquivoControle, Linhas({""}));
      }
    }));
    EXPECT_EQ(Abre(), bDeProposito ? codigos::kOk : codigos::kArquivoDesapareceu);
    EXPECT_EQ(m_banco.Finaliza(), codigos::kOk);
  }

  // Names are compared with their letter case.
  m_empresa.Escreve(kArquivoControle, Linhas({"teste.dat", "TESTE.DA", "TESTE.DATX"}));
  Apaga("TESTE.DAT");
  EXPECT_EQ(Abre(), codigos::kOk);
}

/// The ways in which the system itself takes a file away.
TEST_F(Controle, DelecaoDePropositoNaoERelatada) {
  for (const bool bSemCompanheiro : {false, true}) {
    Cria();
    if (bSemCompanheiro) {
      EXPECT_EQ(CQZDataBaseUtil::RenomeiaArquivoTRA(m_empresa.Codigo(), QZ_DF, "TESTE.DAT"), codigos::kOk);
    } else {
      Apaga("TESTE.DAT");
      BancoTeste banco;
      banco.m_Registros.DesabilitaControleCriacaoArquivos();
      EXPECT_EQ(banco.Inicializa(m_empresa.Dono()), codigos::kOk);
    }
    EXPECT_FALSE(m_empresa.Existe("TESTE.DAT"));
    EXPECT_EQ(m_empresa.Le(kArquivoControle), Linhas({""}));
  }
}

/// While a file is created its entry and the file are not to be met one without the other: the list is held. Another
/// program that is as far may enter the name first; it is entered once.
TEST_F(Controle, OutroProgramaNaCriacao) {
  Poe(kArquivoControle, Linhas({"OUTRO.DAT"}));
  ASSERT_EQ(Abre(), codigos::kOk);
  const auto listaPresa = [this] { EXPECT_EQ(m_falhas.Abertos(), 1); };
  const auto entraAntes = [this] { Poe(kArquivoControle, Linhas({"OUTRO.DAT", "TESTE.DAT"})); };
  m_falhas.Arma(AntesDeAbrir("TESTE.DAT", listaPresa, 2));
  m_falhas.ArmaTambem(AntesDeAbrir(kArquivoControle, entraAntes, 3));
  EXPECT_EQ(Acrescenta(), codigos::kOk);
  EXPECT_EQ(m_falhas.Disparos(), 2U);
  EXPECT_EQ(m_empresa.Le(kArquivoControle), Linhas({"OUTRO.DAT", "TESTE.DAT"}));
}

/// What cannot be asked is not "not there", and nothing is deleted before the emptied entry is on the storage device.
TEST_F(Controle, OQueNaoSeDescobreOuNaoSeDescarrega) {
  Cria();
  Falha(apoio::kOpExiste, "TESTE.DAT", 5);
  EXPECT_EQ(Abre(), codigos::kArqAcessoNegado);
  for (const unsigned operacao : {apoio::kOpExiste, apoio::kOpDescarrega}) {
    Falha(operacao, kArquivoControle, 5);
    EXPECT_EQ(Deleta(), codigos::kArqAcessoNegado);
    EXPECT_TRUE(m_empresa.Existe("TESTE.DAT"));
  }
}

/// A deletion on purpose that fails leaves a file that is listed; one that is interrupted leaves at most one that is
/// not.
TEST_F(Controle, FalhaEmCadaOperacaoDaDelecao) {
  for (apoio::SerieFalhas serie(m_falhas, {.falha = plataforma::FalhaWin32(5), .gravaAntes = 9}, apoio::Duracao::Todas);
       serie.Proxima();) {
    Cria();
    const HRESULT hr = serie.Roda([&] { return Deleta(); });
    const bool bListado = m_empresa.LeInteiro(kArquivoControle).find("TESTE.DAT") != std::string::npos;
    ASSERT_EQ(m_empresa.Existe("TESTE.DAT"), Falhou(hr));
    ASSERT_TRUE(Falhou(hr) ? bListado || !serie.Passageira() : !bListado);
  }
}

}  // namespace
