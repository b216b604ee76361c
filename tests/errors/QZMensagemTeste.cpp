#include "core/errors/QZMensagem.h"

#include <gtest/gtest.h>

#include <vector>

#include "core/env/QZException.h"
#include "core/env/QZPath.h"
#include "core/platform/ServicosSistema.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ServicosFalsos.h"
#include "tests/apoio/ServicosTrocados.h"

namespace {

using apoio::CaixaFalsa;
using plataforma::DonoCaixa;
using Caixas = std::vector<CaixaFalsa::Caixa>;

constexpr char kCatalogo[] = "QZMEMens.txt";
constexpr char kTitulo[] = "Miran Empresarial";
const CString kDesconhecido =
    "Erro desconhecido encontrado. C\xF3"
    "digo ";

/// A messages folder of its own, boxes that nobody has to answer, and one error of the system that has a text: 2.
class QZMensagem : public testing::Test {
protected:
  QZMensagem() {
    m_registro.m_textos[{kChaveSuite, "Mensagens"}] = m_pasta.Caminho();
    CQZMensagem::Instala();
  }
  ~QZMensagem() override { DefineFonteMensagens(nullptr); }

  void Escreve(const std::string &conteudo) const { apoio::EscreveArquivo(m_pasta / kCatalogo, conteudo); }

  /// The box that says that a catalogue cannot be opened.
  CaixaFalsa::Caixa SemCatalogo(const CString &nome) const {
    return {"N\xE3o foi poss\xEDvel abrir o arquivo texto de Mensagens " + (m_pasta / nome) +
                ". Caso o caminho esteja correto, atualize o arquivo.",
            "Erro", 0x30, DonoCaixa::Nenhum};
  }

  apoio::PastaTemporaria m_pasta;
  apoio::RegistroFalso m_registro;
  apoio::InformacoesFalsas m_informacoes;
  CaixaFalsa m_caixa;
  apoio::ServicosTrocados m_servicos{nullptr, &m_registro, nullptr, &m_informacoes, &m_caixa};
};

// What any other catalogue says the fuzzer of catalogues holds against a reference.
TEST_F(QZMensagem, LinhasDoCatalogo) {
  const std::string sLonga(1100, 'x');
  const struct {
    const char *lpNome;
    std::string sConteudo;
    std::uint32_t uiMensagem;
    std::string sTexto;
  } casos[] = {
      {"two lines of text", "      12Linha um\\nLinha dois\r\n", 12, "Linha um\nLinha dois"},
      {"not there, and the last line has a text", "       1um\n       3tres", 2, ""},
      {"zero is the first line without a number", "       1um\ncomentario\n       0zero\n", 0, "io"},
      {"out of range", "99999999999grande\n", 0x7FFFFFFF, "999grande"},
      {"the rest of a long line is a line", "       1" + sLonga + "\n", 0, std::string(77, 'x')},
      {"the length of a long line", "       1" + sLonga + "\n", 1, std::string(1015, 'x')},
  };
  // Another program may have the catalogue open for whatever it likes.
  using namespace plataforma;
  std::unique_ptr<IArquivoAberto> outro;
  ASSERT_FALSE(ArquivosDoSistema().Abre(
      m_pasta / kCatalogo, {Acesso::LeituraEscrita, Compartilhamento::NegaNada, Criacao::AbreOuCria}, &outro));
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.lpNome);
    Escreve(caso.sConteudo);
    EXPECT_EQ(CQZMensagem::LeMensagem(caso.uiMensagem, 1), caso.sTexto);
  }
  EXPECT_EQ(m_caixa.Toma(), Caixas{});
}

TEST_F(QZMensagem, SemCatalogoUmaCaixaACadaConsulta) {
  EXPECT_EQ(CQZMensagem::LeMensagem(1, 1), "");
  EXPECT_EQ(CQZMensagem::LeMensagem(1, 1), "");
  EXPECT_EQ(CQZMensagem::LeMensagem(1, 2), "");
  EXPECT_EQ(m_caixa.Toma(), (Caixas{SemCatalogo(kCatalogo), SemCatalogo(kCatalogo), SemCatalogo("QZMens.txt")}));
}

TEST_F(QZMensagem, ExibeMensagem) {
  Escreve("       1Falhou\n");
  m_informacoes.m_textoErro = "Arquivo\r\nausente.\r\n";
  const struct {
    std::uint32_t uiMensagem, uiErroSO, uiTipo;
    CString sTexto;
  } casos[] = {
      {1, 0, 0x10, "Falhou"},
      {1, 2, 0, "Falhou\nErro do SO: 2 - Arquivo ausente."},
      {1, 5, 0x41, "Falhou\nErro do SO: 5 - "},
      {9, 2, 0, kDesconhecido + "(9)\nErro do SO: 2 - Arquivo ausente."},
  };
  for (const auto &caso : casos) {
    CQZMensagem::ExibeMensagem(caso.uiMensagem, 1, caso.uiErroSO, caso.uiTipo);
    EXPECT_EQ(m_caixa.Toma(), (Caixas{{caso.sTexto, kTitulo, caso.uiTipo, DonoCaixa::Nenhum}}));
  }
  m_informacoes.m_textoErro = CString(300, 'y');
  CQZMensagem::ExibeMensagem(1, 1, 2, 0);
  EXPECT_EQ(m_caixa.Toma()[0].texto, "Falhou\nErro do SO: 2 - " + CString(255, 'y'));
}

TEST_F(QZMensagem, ExcecaoBuscaOTextoNoCatalogo) {
  Escreve("       1Falhou\n");
  CQZException excecao(1, 1, 0);
  EXPECT_EQ(excecao.GetMensagem(), "");
  EXPECT_EQ(excecao.GetTexto(), "Falhou");
  Escreve("       1Outro\n");
  EXPECT_EQ(excecao.GetTexto(), "Falhou");
  EXPECT_EQ(CQZException(7, 1, 0).GetTexto(), "");
  EXPECT_EQ(CQZException("texto", 1, 0).GetTexto(), "texto");
  DefineFonteMensagens(nullptr);
  EXPECT_EQ(CQZException(1, 1, 0).GetTexto(), "");
}

TEST_F(QZMensagem, GetErrorMessageCabeNoBuffer) {
  Escreve("");
  CQZException comTexto("abcdef", 1, 0);
  CQZException semTexto(1, 1, 0);
  CInvalidArgException outra;
  const struct {
    CException &excecao;
    std::uint32_t uiTamanho;
    std::string sBuffer;
    bool bTexto;
  } casos[] = {
      {comTexto, 0, "########", true},
      {comTexto, 4, std::string("abc\0####", 8), true},
      {comTexto, 7, std::string("abcdef\0#", 8), true},
      {comTexto, 8, std::string("abcdef\0\0", 8), true},
      {semTexto, 1, std::string("\0#######", 8), false},
      {outra, 1, std::string("\0#######", 8), false},
  };
  for (const auto &caso : casos) {
    std::string sBuffer(8, '#');
    std::uint32_t uiAjuda = 5;
    EXPECT_EQ(caso.excecao.GetErrorMessage(sBuffer.data(), caso.uiTamanho, &uiAjuda), caso.bTexto);
    EXPECT_EQ(sBuffer, caso.sBuffer) << caso.uiTamanho;
    EXPECT_EQ(uiAjuda, 0U);
  }
  EXPECT_TRUE(comTexto.GetErrorMessage(nullptr, 8, nullptr));
  EXPECT_EQ(outra.ReportError(0, 0), 0);
}

TEST_F(QZMensagem, ReportErrorMostraACaixa) {
  Escreve("       1Falhou\n");
  const struct {
    std::uint32_t uiMensagem, uiErroSO, uiTipo;
    CString sTexto;
    std::uint32_t uiTipoMostrado;
  } casos[] = {
      {1, 0, 0x01, "Falhou", 0x31},
      {1, 0, 0x44, "Falhou", 0x44},
      {1, 2, 0x10, "Falhou\nErro do SO: 2 - Arquivo ausente.\r\n", 0x10},
      {8, 0x80070005, 0x10, kDesconhecido + "(8)\nErro do SO: -2147024891 - ", 0x10},
  };
  for (const auto &caso : casos) {
    CQZException excecao(caso.uiMensagem, 1, caso.uiErroSO);
    EXPECT_EQ(excecao.ReportError(caso.uiTipo, 0), CaixaFalsa::kResposta);
    EXPECT_EQ(m_caixa.Toma(), (Caixas{{caso.sTexto, kTitulo, caso.uiTipoMostrado, DonoCaixa::JanelaDaThread}}));
  }
  CQZException("texto", 2, 0).ReportError(0, 0);
  EXPECT_EQ(m_caixa.Toma(), (Caixas{{"texto", "", 0x30, DonoCaixa::JanelaDaThread}})) << "another product";
}

}  // namespace
