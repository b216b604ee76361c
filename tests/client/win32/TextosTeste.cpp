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
  for (const unsigned uiVizinho : {0x8004EAC4U, 0x8004EADCU, 0x8004EE46U}) {
    EXPECT_FALSE(EhFalhaDeMaquina(static_cast<HRESULT>(uiVizinho)));
  }
}

std::ifstream Abre(const std::string &sArquivo) {
  return std::ifstream("Z:" KALVO_RAIZ "/" + sArquivo);
}

/// The codes in a text; "A to B", "A a B" in Portuguese, is all from one to the other.
std::set<std::uint32_t> CodigosEm(const std::string &sTexto) {
  const std::regex codigo("0x(8[0-9A-F]{7})( (?:to|a) 0x(8[0-9A-F]{7}))?");
  std::set<std::uint32_t> codigos;
  for (std::sregex_iterator it(sTexto.begin(), sTexto.end(), codigo), fim; it != fim; ++it) {
    const auto uiDe = static_cast<std::uint32_t>(std::stoul((*it)[1], nullptr, 16));
    const auto uiAte = (*it)[3].matched ? static_cast<std::uint32_t>(std::stoul((*it)[3], nullptr, 16)) : uiDe;
    for (std::uint32_t uiCodigo = uiDe; uiCodigo <= uiAte; ++uiCodigo) {
      codigos.insert(uiCodigo);
    }
  }
  return codigos;
}

/// Those of the table rows and of the source lines of a file.
std::set<std::uint32_t> CodigosDe(const std::string &sArquivo) {
  std::ifstream fluxo = Abre(sArquivo);
  const std::regex constante("CodigoResultado\\(0x8[0-9A-F]{7}\\)");
  std::set<std::uint32_t> codigos;
  for (std::string sLinha; std::getline(fluxo, sLinha);) {
    std::smatch achada;
    codigos.merge(CodigosEm(sLinha.starts_with("| 0x")                     ? sLinha.substr(0, sLinha.find('|', 2))
                            : std::regex_search(sLinha, achada, constante) ? achada.str()
                                                                           : ""));
  }
  return codigos;
}

TEST(Erro, CabecalhoDocumentosEServidorSabemOsMesmosCodigos) {
  std::set<std::uint32_t> doCabecalho;
  for (const CQZTextoErro &erro : kTextosErro) {
    EXPECT_TRUE(doCabecalho.insert(erro.uiCodigo).second) << std::hex << erro.uiCodigo;
    EXPECT_EQ(EhFalhaDeMaquina(static_cast<HRESULT>(erro.uiCodigo)),
              std::string(erro.pTexto).starts_with("falha de m\341quina"))
        << std::hex << erro.uiCodigo;
  }
  const std::set<std::uint32_t> doDiagnostico = CodigosDe("docs/diagnosis.md");
  for (const char *const pArquivo :
       {"docs/diagnosis.md", "docs/client-guide.md", "docs/installation.md", "core/errors/CodigosResultado.h"}) {
    const std::set<std::uint32_t> codigos = CodigosDe(pArquivo);
    EXPECT_GT(codigos.size(), 5U) << pArquivo;
    for (const std::uint32_t uiCodigo : codigos) {
      EXPECT_EQ(doCabecalho.count(uiCodigo), 1U) << pArquivo << " " << std::hex << uiCodigo;
      const bool bDoServidor = uiCodigo >> 16 == 0x8108 || (uiCodigo >> 16 == 0x8004 && (uiCodigo & 0xFFFF) >= 0x3E80);
      EXPECT_TRUE(!bDoServidor || doDiagnostico.count(uiCodigo) == 1) << pArquivo << " " << std::hex << uiCodigo;
    }
  }
}

TEST(Erro, OProgramaAconselhaComAsPalavrasDoDocumento) {
  std::ifstream fluxo = Abre("docs/diagnosis.md");
  std::size_t uiLinhas = 0;
  for (std::string sLinha; std::getline(fluxo, sLinha);) {
    if (sLinha.starts_with("| 0x")) {
      // Without the marks of code and of links.
      const std::string sTexto = std::regex_replace(sLinha, std::regex("`|\\[|\\]\\([^)]*\\)"), "");
      for (const std::uint32_t uiCodigo : CodigosEm(sLinha.substr(0, sLinha.find('|', 2)))) {
        const std::string sRemedio = De1252Para8(RemedioDoErro(uiCodigo));
        EXPECT_TRUE(!sRemedio.empty() && sTexto.find(sRemedio) != std::string::npos) << sRemedio << "\n" << sTexto;
      }
      ++uiLinhas;
    }
  }
  EXPECT_GT(uiLinhas, 30U);
}

}  // namespace
