#include "core/log/EscritorLog.h"

#include "tests/log/LogTeste.h"

namespace {

class EscritorLog : public LogTeste {
protected:
  void Grava(const CString &linha) { GravaLinhaLog("c\t", linha, ETipoRegistro::Erro, &m_profiler); }
  const CString m_caminho = m_dados / kArquivoErros;
};

TEST_F(EscritorLog, TentativasPorCausa) {
  apoio::PlanoFalha plano{.operacoes = apoio::kOpAbre, .trecho = kArquivoErros, .bPersistente = true};
  const std::pair<std::uint32_t, std::size_t> casos[] = {{32, 19}, {5, 19}, {33, 19},  {4, 19}, {2, 1},     {112, 19},
                                                         {3, 1},   {6, 1},  {1117, 1}, {23, 1}, {1450, 19}, {123, 1}};
  for (const auto &[erro, tentativas] : casos) {
    plano.falha = plataforma::FalhaWin32(erro);
    m_falhas.Arma(plano);
    Grava("x");
    EXPECT_EQ(m_falhas.Vistas(), tentativas) << erro;
  }
  plano.falha = plataforma::FalhaWin32(32);
  plano.aoFalhar = [this] { m_falhas.Disparos() == 18 ? m_falhas.Desarma() : void(); };
  m_falhas.Arma(plano);
  Grava("the last attempt");
  EXPECT_EQ(ErrosDaEmpresa(), (std::vector<std::string>{kCabecalhoErrosEsperado, "c|the last attempt"}));
}

TEST_F(EscritorLog, OutroAbertoPerdeALinhaELeitorNao) {
  using namespace plataforma;
  Grava("um");
  for (const Acesso acesso : {Acesso::Escrita, Acesso::Leitura}) {
    std::unique_ptr<IArquivoAberto> outro;
    ASSERT_FALSE(
        ArquivosDoSistema().Abre(m_caminho, {acesso, Compartilhamento::NegaNada, Criacao::SoExistente}, &outro));
    Grava("dois");
  }
  EXPECT_EQ(ErrosDaEmpresa(), (std::vector<std::string>{kCabecalhoErrosEsperado, "c|um", "c|dois"}));
}

TEST_F(EscritorLog, CabecalhoSoDeQuemCria) {
  Grava("um");
  ASSERT_FALSE(plataforma::Arquivos().Apaga(m_caminho));
  Grava("dois");
  EXPECT_EQ(ErrosDaEmpresa(), (std::vector<std::string>{kCabecalhoErrosEsperado, "c|dois"}));
  apoio::EscreveArquivo(m_caminho, "");
  Grava("tres");
  EXPECT_EQ(ErrosDaEmpresa(), (std::vector<std::string>{"c|tres"}));
}

TEST_F(EscritorLog, DoisQueNaoAcharamOArquivo) {
  // Another process creates the file between this one's look and its opening.
  m_falhas.Arma({.operacoes = apoio::kOpAbre, .trecho = kArquivoErros, .falha = {}, .aoFalhar = [this] {
                   apoio::EscreveArquivo(m_caminho, "outro\r\n");
                 }});
  Grava("um");
  EXPECT_EQ(ErrosDaEmpresa(), (std::vector<std::string>{"outro", "c|um"}));
}

TEST_F(EscritorLog, LinhasInteirasEmQualquerFalha) {
  const apoio::FalhaArquivo kDiscoCheio = plataforma::FalhaWin32(112);
  for (const bool bNovo : {true, false}) {
    for (const std::size_t gravaAntes : {0U, 5U, 279U}) {  // 279: the header and a part of the line
      bool bDisparou = true;
      for (std::size_t n = 1; bDisparou; ++n) {
        SCOPED_TRACE(testing::Message() << bNovo << ' ' << gravaAntes << ' ' << n);
        std::vector<std::string> esperadas = {kCabecalhoErrosEsperado};
        static_cast<void>(plataforma::ArquivosDoSistema().Apaga(m_caminho));
        if (!bNovo) {
          Grava("antes");
          esperadas.emplace_back("c|antes");
        }
        m_falhas.Arma({.operacoes = apoio::kOpTodas & ~apoio::kOpExiste,
                       .trecho = kArquivoErros,
                       .enesima = n,
                       .falha = kDiscoCheio,
                       .gravaAntes = gravaAntes});
        Grava("durante");
        m_falhas.Desarma();
        bDisparou = m_falhas.Disparou();
        const std::vector<std::string> linhas = ErrosDaEmpresa();
        // The first operation is the opening, which is tried again; the others lose the line.
        if (n == 1 || !bDisparou) {
          esperadas.emplace_back("c|durante");
          EXPECT_EQ(linhas, esperadas);
        } else {
          EXPECT_EQ(linhas, bNovo ? std::vector<std::string>() : esperadas);
        }
        Grava("depois");
        esperadas.emplace_back("c|depois");
        EXPECT_EQ(ErrosDaEmpresa(), esperadas);
      }
    }
  }
}

TEST_F(EscritorLog, PastaQueNaoExistePerdeALinha) {
  m_registro.m_textos[{CString(kChaveSuite) + "Empresas\\0001", "DF"}] = m_dados / "falta";
  Grava("um");
  EXPECT_TRUE(ErrosDaInstalacao().empty());
}

}  // namespace
