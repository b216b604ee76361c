#include "core/errors/QZMensagem.h"

#include <gtest/gtest.h>

#include <vector>

#include "core/env/QZException.h"
#include "core/env/QZPath.h"
#include "core/platform/ServicosSistema.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ServicosFalsos.h"

namespace {

using apoio::CaixaFalsa;
using plataforma::DonoCaixa;
using Caixas = std::vector<CaixaFalsa::Caixa>;

/// A messages folder of its own, boxes that nobody has to answer, and one error of the system that has a text: 2.
class QZMensagem : public testing::Test {
protected:
  QZMensagem() {
    m_registro.m_textos[{kChaveSuite, "Mensagens"}] = m_pasta.Caminho();
    CQZMensagem::Instala();
  }
  ~QZMensagem() override { DefineFonteMensagens(nullptr); }

  void Escreve(const std::string &conteudo) const { apoio::EscreveArquivo(m_pasta / "QZMEMens.txt", conteudo); }

  apoio::PastaTemporaria m_pasta;
  apoio::RegistroFalso m_registro;
  apoio::InformacoesFalsas m_informacoes;
  CaixaFalsa m_caixa;
  apoio::ServicosTrocados m_servicos{nullptr, &m_registro, nullptr, &m_informacoes, &m_caixa};
};

TEST_F(QZMensagem, SemCatalogoUmaCaixaACadaConsulta) {
  const std::pair<std::uint32_t, const char *> casos[] = {{1, "QZMEMens.txt"}, {1, "QZMEMens.txt"}, {2, "QZMens.txt"}};
  for (const auto &[uiSistema, lpArquivo] : casos) {
    EXPECT_EQ(CQZMensagem::LeMensagem(1, uiSistema), "");
    EXPECT_EQ(m_caixa.Toma(),
              (Caixas{{"N\xE3o foi poss\xEDvel abrir o arquivo texto de Mensagens " + (m_pasta / lpArquivo) +
                           ". Caso o caminho esteja correto, atualize o arquivo.",
                       "Erro", 0x30, DonoCaixa::Nenhum}}));
  }
}

// The first line with a number counts; one that is too long goes on as another, and what no number can be is the
// nearest that can.
TEST_F(QZMensagem, LinhasDoCatalogo) {
  Escreve("       1um\\ndois\\n\r\n       1outro\n       2a\rb\n99999999999\n       3" + std::string(1030, 'x') +
          "\n       4\n       5fim\x1A\n       6depois\n");
  const std::pair<std::uint32_t, std::string> casos[] = {
      {1, "um\ndois\n"}, {2, "a\rb"}, {0x7FFFFFFF, "999"}, {3, std::string(1015, 'x')}, {4, ""}, {5, "fim"}, {6, ""}};
  for (const auto &[uiNumero, sTexto] : casos) {
    EXPECT_EQ(CQZMensagem::LeMensagem(uiNumero, 1), sTexto) << uiNumero;
  }
}

TEST_F(QZMensagem, CaixasDeExibeMensagemEDeReportError) {
  Escreve("       1Falhou\n");
  const CString sErro = "Arquivo\r\nausente." + CString(300, 'y') + "\r\n";
  const CString sUmaLinha = "Arquivo ausente." + CString(239, 'y');  // 255 characters
  const CString sDesconhecido =
      "Erro desconhecido encontrado. C\xF3"
      "digo ";
  m_informacoes.m_textoErro = sErro;
  const struct {
    bool bExcecao;  ///< shown by an exception
    std::uint32_t uiMensagem, uiErroSO, uiTipo;
    CString sTexto;
    std::uint32_t uiTipoMostrado;
  } casos[] = {
      {false, 1, 0, 0x10, "Falhou", 0x10},
      {false, 1, 5, 0x41, "Falhou\nErro do SO: 5 - ", 0x41},
      {false, 9, 2, 0, sDesconhecido + "(9)\nErro do SO: 2 - " + sUmaLinha, 0},
      {true, 1, 0, 0x01, "Falhou", 0x31},
      {true, 1, 2, 0x44, "Falhou\nErro do SO: 2 - " + sErro, 0x44},
      {true, 8, 0x80070005, 0x10, sDesconhecido + "(8)\nErro do SO: -2147024891 - ", 0x10},
  };
  for (const auto &caso : casos) {
    if (caso.bExcecao) {
      CQZException excecao(caso.uiMensagem, 1, caso.uiErroSO);
      EXPECT_EQ(excecao.ReportError(caso.uiTipo, 0), CaixaFalsa::kResposta);
    } else {
      CQZMensagem::ExibeMensagem(caso.uiMensagem, 1, caso.uiErroSO, caso.uiTipo);
    }
    const DonoCaixa eDono = caso.bExcecao ? DonoCaixa::JanelaDaThread : DonoCaixa::Nenhum;
    EXPECT_EQ(m_caixa.Toma(), (Caixas{{caso.sTexto, "Miran Empresarial", caso.uiTipoMostrado, eDono}}));
  }
  CQZException("texto", 2, 0).ReportError(0, 0);
  EXPECT_EQ(m_caixa.Toma(), (Caixas{{"texto", "", 0x30, DonoCaixa::JanelaDaThread}})) << "another product";
}

TEST_F(QZMensagem, ExcecaoBuscaOTextoNoCatalogoECabeNoBuffer) {
  Escreve("       1Falhou\n");
  // Another program may have the catalogue open for whatever it likes.
  using namespace plataforma;
  std::unique_ptr<IArquivoAberto> outro;
  ASSERT_FALSE(ArquivosDoSistema().Abre(
      m_pasta / "QZMEMens.txt", {Acesso::LeituraEscrita, Compartilhamento::NegaNada, Criacao::SoExistente}, &outro));
  CQZException comTexto(1, 1, 0);
  EXPECT_EQ(comTexto.GetTexto(), "Falhou");
  Escreve("       1Outro\n");
  EXPECT_EQ(comTexto.GetTexto(), "Falhou");
  CQZException semTexto(7, 1, 0);
  CInvalidArgException outra;
  const struct {
    CException &excecao;
    std::uint32_t uiTamanho;
    std::string sBuffer;
    bool bTexto;
  } casos[] = {
      {comTexto, 0, "########", true},
      {comTexto, 4, std::string("Fal\0####", 8), true},
      {comTexto, 8, std::string("Falhou\0\0", 8), true},
      {semTexto, 1, std::string("\0#######", 8), false},
      {outra, 1, std::string("\0#######", 8), false},
  };
  for (const auto &caso : casos) {
    std::string sBuffer(8, '#');
    EXPECT_EQ(caso.excecao.GetErrorMessage(sBuffer.data(), caso.uiTamanho, nullptr), caso.bTexto);
    EXPECT_EQ(sBuffer, caso.sBuffer) << caso.uiTamanho;
  }
  EXPECT_TRUE(comTexto.GetErrorMessage(nullptr, 8, nullptr));
  DefineFonteMensagens(nullptr);
  EXPECT_EQ(semTexto.GetTexto(), "");
}

}  // namespace
