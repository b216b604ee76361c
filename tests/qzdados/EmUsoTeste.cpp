// The tool beside programs that use the files.

#include <gtest/gtest.h>

#include <functional>

#include "core/platform/Plataforma.h"
#include "qzdados/ArquivoEmExame.h"
#include "tests/apoio/EmpresaTeste.h"
#include "tests/apoio/ServicosFalsos.h"
#include "tests/qzdados/ApoioQzdados.h"

namespace {

using namespace plataforma;

std::unique_ptr<IArquivoAberto> Abre(const CString &sCaminho, Compartilhamento eCompartilhamento) {
  std::unique_ptr<IArquivoAberto> arquivo;
  static_cast<void>(
      Arquivos().Abre(sCaminho, {Acesso::LeituraEscrita, eCompartilhamento, Criacao::SoExistente}, &arquivo));
  return arquivo;
}

TEST(EmUso, NaPausaOutroPodeAbrirENadaMudaSemQueSeDiga) {
  const std::string sBytes(std::size_t{1024} * 1024, 'A');
  std::unique_ptr<IArquivoAberto> preso;
  const struct {
    const char *lpNome;
    std::function<void(const CString &)> naPausa;
    int iCodigo;
    const char *lpTrecho;
  } aCasos[] = {
      {"abre e solta", [](const CString &s) { EXPECT_TRUE(Abre(s, Compartilhamento::Exclusivo)); }, 0,
       "4096 registros"},
      {"fica com ele", [&](const CString &s) { preso = Abre(s, Compartilhamento::Exclusivo); }, 3, "em uso"},
      {"muda", [](const CString &s) { EXPECT_FALSE(Abre(s, Compartilhamento::NegaNada)->AjustaTamanho(512)); }, 3,
       "mudou enquanto"},
  };
  for (const auto &caso : aCasos) {
    SCOPED_TRACE(caso.lpNome);
    const apoio::EmpresaTeste empresa;
    const std::string sArquivo = empresa.Caminho("DFVEIC.DAT");
    empresa.Escreve("DFVEIC.DAT", sBytes);
    apoio::RelogioFalso relogio([&](std::uint32_t uiMilissegundos) {
      if (uiMilissegundos == CArquivoEmExame::kPausaMs) {
        caso.naPausa(sArquivo);
      }
    });
    relogio.m_passo = CArquivoEmExame::kVezMs;  // every reading takes longer than the file may be held at a time
    const apoio::ServicosTrocados servicos(nullptr, nullptr, &relogio);
    const Rodada rodada({"verifica", sArquivo});
    preso.reset();
    EXPECT_EQ(rodada.iCodigo, caso.iCodigo);
    EXPECT_TRUE(Contem(rodada.Saida(), caso.lpTrecho)) << rodada.Saida();
    EXPECT_EQ(rodada.tela.m_bChegouAoFim, caso.iCodigo == 0);
  }
}

/// Others may write while it reads. In its midst, and after its last reading.
TEST(EmUso, UmaCopiaDoQueMudouNaoFica) {
  for (const std::size_t uiRegistros : {4096U, 1U}) {
    const apoio::EmpresaTeste empresa;
    const std::string sArquivo = empresa.Caminho("DFVEIC.DAT");
    empresa.Escreve("DFVEIC.DAT", std::string(uiRegistros * 256, 'A') + "x");
    bool bMudou = false;
    const Rodada rodada({"recupera", sArquivo, "--em", empresa.Caminho("NOVO")}, [&] {
      // Once the copy has begun.
      if (!bMudou && empresa.Existe("NOVO")) {
        bMudou = true;
        const auto deOutro = Abre(sArquivo, Compartilhamento::NegaNada);
        ASSERT_TRUE(deOutro);
        EXPECT_FALSE(deOutro->AjustaTamanho(uiRegistros * 256));
      }
    });
    EXPECT_EQ(rodada.iCodigo, 3);
    EXPECT_TRUE(Contem(rodada.Erros(), "mudou enquanto")) << rodada.Erros();
    EXPECT_TRUE(bMudou);
    EXPECT_FALSE(empresa.Existe("NOVO"));
  }
}

}  // namespace
