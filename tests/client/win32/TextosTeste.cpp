#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <regex>
#include <set>
#include <string>

#include "client/Codificacao.h"
#include "client/QZVeiculosTextos.h"
#include "client/Remedios.h"

namespace {

TEST(TextoParametro, DoisZerosEmPosicaoParAtrasDoTexto) {
  for (const std::string sTexto : {"", "0001", "A\xE3O"}) {
    CQZTextoParametro parametro(sTexto);
    const char *const pBytes = reinterpret_cast<const char *>(parametro.Get());
    EXPECT_EQ(sTexto, pBytes);
    // What the marshaller copies, wide characters up to the zero one, holds the whole text and stays inside the buffer.
    const std::size_t uiCopiados = std::wcslen(parametro.Get()) * 2;
    EXPECT_GE(uiCopiados, sTexto.size()) << sTexto;
    EXPECT_EQ(parametro.TamanhoEmBytes(), uiCopiados + 2) << sTexto;
  }
}

TEST(Erro, CodigoETexto) {
  EXPECT_STREQ(CQZErroVeiculos(static_cast<HRESULT>(0x810809DA)).what(),
               "0x810809DA: posi\347\343o al\351m do \372ltimo registro");
  const std::string sNegado = TextoDoSistema(5);
  EXPECT_NE(sNegado, "");
  EXPECT_EQ(DescricaoErroVeiculos(static_cast<HRESULT>(0x80040005)),
            "erro 5 do sistema operacional no servidor: " + sNegado);
  EXPECT_EQ(DescricaoErroVeiculos(HRESULT_FROM_WIN32(ERROR_DISK_FULL)), TextoDoSistema(ERROR_DISK_FULL));
  EXPECT_EQ(DescricaoErroVeiculos(static_cast<HRESULT>(0x8FFFFFFF)), "c\363digo de resultado sem descri\347\343o");
}

/// The codes in a text; "A to B", "A a B" in Portuguese, is all from one to the other.
std::set<std::uint32_t> CodigosEm(const std::string &sTexto) {
  const std::regex codigo("0x(8[0-9A-F]{7})( (?:to|a) 0x(8[0-9A-F]{7}))?");
  std::set<std::uint32_t> codigos;
  for (std::sregex_iterator it(sTexto.begin(), sTexto.end(), codigo), fim; it != fim; ++it) {
    const unsigned long ulDe = std::stoul((*it)[1], nullptr, 16);
    const unsigned long ulAte = (*it)[3].matched ? std::stoul((*it)[3], nullptr, 16) : ulDe;
    for (unsigned long ulCodigo = ulDe; ulCodigo <= ulAte; ++ulCodigo) {
      codigos.insert(ulCodigo);
    }
  }
  return codigos;
}

// The table rows of the documents and the constants of the server; the program advises with the words of the diagnosis.
TEST(Erro, CabecalhoDocumentosEServidorSabemOsMesmosCodigos) {
  std::set<std::uint32_t> doCabecalho;
  for (const CQZTextoErro &erro : kTextosErro) {
    EXPECT_TRUE(doCabecalho.insert(erro.uiCodigo).second) << std::hex << erro.uiCodigo;
    EXPECT_EQ(EhFalhaDeMaquina(static_cast<HRESULT>(erro.uiCodigo)),
              std::string(erro.pTexto).starts_with("falha de m\341quina"))
        << std::hex << erro.uiCodigo;
  }
  std::set<std::uint32_t> doDiagnostico;
  for (const char *const pArquivo :
       {"docs/diagnosis.md", "docs/client-guide.md", "docs/installation.md", "core/errors/CodigosResultado.h"}) {
    std::ifstream fluxo(std::string("Z:" KALVO_RAIZ "/") + pArquivo);
    std::size_t uiCodigos = 0;
    for (std::string sLinha; std::getline(fluxo, sLinha);) {
      const bool bTabela = sLinha.starts_with("| 0x");
      const std::size_t uiConstante = sLinha.find("CodigoResultado(0x8");
      const std::string sCodigos = bTabela                            ? sLinha.substr(0, sLinha.find('|', 2))
                                   : uiConstante != std::string::npos ? sLinha.substr(uiConstante, 26)
                                                                      : "";
      // Without the marks of code and of links.
      const std::string sTexto = std::regex_replace(sLinha, std::regex("`|\\[|\\]\\([^)]*\\)"), "");
      for (const std::uint32_t uiCodigo : CodigosEm(sCodigos)) {
        SCOPED_TRACE(testing::Message() << pArquivo << ": " << sLinha);
        ++uiCodigos;
        EXPECT_TRUE(doCabecalho.contains(uiCodigo));
        const bool bDoServidor =
            uiCodigo >> 16 == 0x8108 || (uiCodigo >> 16 == 0x8004 && (uiCodigo & 0xFFFF) >= 0x3E80);
        if (pArquivo == std::string("docs/diagnosis.md")) {
          const std::string sRemedio = De1252Para8(RemedioDoErro(uiCodigo));
          EXPECT_TRUE(!sRemedio.empty() && sTexto.find(sRemedio) != std::string::npos) << sRemedio;
          doDiagnostico.insert(uiCodigo);
        } else {
          EXPECT_TRUE(!bDoServidor || doDiagnostico.contains(uiCodigo));
        }
      }
    }
    EXPECT_GT(uiCodigos, 5U) << pArquivo;
  }
}

}  // namespace
