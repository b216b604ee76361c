#include "core/log/EscritorLog.h"

#include "tests/apoio/SerieFalhas.h"
#include "tests/log/LogTeste.h"

namespace {

class EscritorLog : public LogTeste {
protected:
  void Grava(const CString &linha) { GravaLinhaLog("c\t", linha, ETipoRegistro::Erro, &m_profiler); }
  const CString m_caminho = m_dados / kArquivoErros;
};

TEST_F(EscritorLog, TentativasPorCausa) {
  apoio::PlanoFalha plano{.operacoes = apoio::kOpAbre, .trecho = kArquivoErros, .bPersistente = true};
  const std::pair<std::uint32_t, std::size_t> casos[] = {{32, 19}, {112, 19}, {2, 1}, {3, 1}, {123, 1}, {1117, 1}};
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

TEST_F(EscritorLog, CabecalhoSoDeQuemCria) {
  Grava("um");
  ASSERT_FALSE(plataforma::Arquivos().Apaga(m_caminho));
  Grava("dois");
  EXPECT_EQ(ErrosDaEmpresa(), (std::vector<std::string>{kCabecalhoErrosEsperado, "c|dois"}));
  // Whoever writes to the file keeps others out; whoever looks at it does not.
  apoio::EscreveArquivo(m_caminho, "");
  for (const plataforma::Acesso acesso : {plataforma::Acesso::Escrita, plataforma::Acesso::Leitura}) {
    std::unique_ptr<plataforma::IArquivoAberto> outro;
    ASSERT_FALSE(
        plataforma::ArquivosDoSistema().Abre(m_caminho, {acesso, plataforma::Compartilhamento::NegaNada}, &outro));
    Grava("tres");
  }
  EXPECT_EQ(ErrosDaEmpresa(), (std::vector<std::string>{"c|tres"}));
  // Another process creates the file between this one's look and its opening.
  ASSERT_FALSE(plataforma::Arquivos().Apaga(m_caminho));
  m_falhas.Arma({.operacoes = apoio::kOpAbre, .trecho = kArquivoErros, .falha = {}, .aoFalhar = [this] {
                   apoio::EscreveArquivo(m_caminho, "outro\r\n");
                 }});
  Grava("quatro");
  EXPECT_EQ(ErrosDaEmpresa(), (std::vector<std::string>{"outro", "c|quatro"}));
}

TEST_F(EscritorLog, LinhasInteirasEmQualquerFalha) {
  for (const bool bNovo : {true, false}) {
    for (const std::size_t gravaAntes : {5U, 279U}) {  // 279: the header and a part of the line
      for (apoio::SerieFalhas serie(m_falhas, {.operacoes = apoio::kOpTodas & ~apoio::kOpExiste,
                                              .trecho = kArquivoErros,
                                              .falha = plataforma::FalhaWin32(112),
                                              .gravaAntes = gravaAntes});
           serie.Proxima();) {
        SCOPED_TRACE(testing::Message() << bNovo << ' ' << gravaAntes);
        std::vector<std::string> esperadas = {kCabecalhoErrosEsperado};
        static_cast<void>(plataforma::ArquivosDoSistema().Apaga(m_caminho));
        if (!bNovo) {
          Grava("antes");
          esperadas.emplace_back("c|antes");
        }
        const bool bFeita = serie.Roda([this] {
          Grava("durante");
          return !ErrosDaEmpresa().empty() && ErrosDaEmpresa().back() == "c|durante";
        });
        if (bFeita) {
          esperadas.emplace_back("c|durante");
        }
        EXPECT_TRUE(bFeita || serie.Disparou());
        EXPECT_EQ(ErrosDaEmpresa(), bFeita || !bNovo ? esperadas : std::vector<std::string>());
        Grava("depois");
        esperadas.emplace_back("c|depois");
        EXPECT_EQ(ErrosDaEmpresa(), esperadas);
      }
    }
  }
}

}  // namespace
