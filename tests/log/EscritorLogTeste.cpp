#include "core/log/EscritorLog.h"

#include "tests/log/LogTeste.h"

namespace {

using plataforma::FalhaArquivo;
using plataforma::IArquivoAberto;
using plataforma::ModoAbertura;

/// Fails so many times to open a log file, then opens it.
class Ocupado final : public apoio::ArquivosDecorado {
public:
  using ArquivosDecorado::ArquivosDecorado;
  int m_falhas = 0;
  std::uint32_t m_erro = 0;
  int m_vistas = 0;

  FalhaArquivo Abre(const CString &caminho, const ModoAbertura &modo,
                    std::unique_ptr<IArquivoAberto> *arquivo) override {
    ++m_vistas;
    return m_vistas <= m_falhas ? plataforma::FalhaWin32(m_erro) : ArquivosDecorado::Abre(caminho, modo, arquivo);
  }
};

class EscritorLog : public LogTeste {
protected:
  void Grava(const CString &linha) { GravaLinhaLog("c\t", linha, TipoRegistro::Erro, &m_profiler); }
  const CString m_caminho = m_dados / kArquivoErros;
};

TEST_F(EscritorLog, TentativasPorCausa) {
  const struct {
    std::uint32_t erro;
    int falhas;
    int tentativas;
    bool bGrava;
  } casos[] = {
      {32, 18, 19, true}, {32, 19, 19, false},   {5, 99, 19, false},  {33, 99, 19, false}, {4, 99, 19, false},
      {2, 99, 1, false},  {112, 99, 19, false},  {3, 99, 1, false},   {6, 99, 1, false},   {1117, 99, 1, false},
      {23, 99, 1, false}, {1450, 99, 19, false}, {123, 99, 1, false},
  };
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.erro);
    Ocupado ocupado(plataforma::ArquivosDoSistema());
    ocupado.m_falhas = caso.falhas;
    ocupado.m_erro = caso.erro;
    const apoio::ServicosTrocados servicos(&ocupado);
    const std::size_t antes = ErrosDaEmpresa().size();
    Grava("x");
    EXPECT_EQ(ocupado.m_vistas, caso.tentativas);
    EXPECT_EQ(ErrosDaEmpresa().size() > antes, caso.bGrava);
  }
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
  class Intrometido final : public apoio::ArquivosDecorado {
  public:
    using ArquivosDecorado::ArquivosDecorado;
    FalhaArquivo Existe(const CString &caminho, bool *existe) override {
      const FalhaArquivo falha = ArquivosDecorado::Existe(caminho, existe);
      apoio::EscreveArquivo(caminho, "outro\r\n");
      return falha;
    }
  } intrometido(plataforma::ArquivosDoSistema());
  const apoio::ServicosTrocados servicos(&intrometido);
  Grava("um");
  EXPECT_EQ(ErrosDaEmpresa(), (std::vector<std::string>{"outro", "c|um"}));
}

TEST_F(EscritorLog, LinhasInteirasEmQualquerFalha) {
  const FalhaArquivo kDiscoCheio = plataforma::FalhaWin32(112);
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
