#include "core/errors/DescricaoResultado.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/errors/CodigosResultado.h"
#include "core/errors/DescricaoDaBiblioteca.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ValoresProprios.h"

namespace {

constexpr char kFacilidadeDesconhecida[] =
    "Desconhecido ou novo c\xF3"
    "digo de FACILITY";

TEST(DescricaoResultado, NomesDosCodigos) {
  const struct {
    std::uint32_t uValor;
    const char *lpWin32;
    const char *lpHRESULT;
  } casos[] = {{0, "ERROR_SUCCESS", "S_OK"},
               {0xFFFFFFFF, "", ""},
               // The SDK's own winerror.h has these by other names than other headers, or marks of ranges beside them.
               {0x80040000, "ERROR_SUCCESS", "OLE_E_OLEVERB"},
               {0x80072B10, "WSA_QOS_EUNKOWNPSOBJ", ""},
               {0x80190194, "ERROR_CLOUD_FILE_PROVIDER_TERMINATED", "HTTP_E_STATUS_NOT_FOUND"}};
  for (const auto &caso : casos) {
    EXPECT_EQ(NomeWin32(CodigoResultado(caso.uValor)), caso.lpWin32);
    EXPECT_EQ(NomeHRESULT(CodigoResultado(caso.uValor)), caso.lpHRESULT);
  }
  EXPECT_EQ(NomeSeveridade(0), "SEVERITY_SUCCESS");
}

// Every facility number: which have a name of the SDK, which one of the suite, and which none.
TEST(DescricaoResultado, TodasAsFacilidades) {
  constexpr struct {
    std::uint32_t uDe, uAte;
    const char *lpComeco;
  } kFaixas[] = {{0, 4, "FACILITY_"},   {7, 26, "FACILITY_"},  {31, 42, "FACILITY_"},      {48, 58, "FACILITY_"},
                 {60, 61, "FACILITY_"}, {80, 84, "FACILITY_"}, {236, 255, "QZ_FACILITY_"}, {263, 265, "QZ_FACILITY_"}};
  for (std::uint32_t n = 0; n <= 0x1FFF; ++n) {
    const CString nome = NomeFacilidade(CodigoResultado(0x80000000U | n << 16U | 2U));
    const auto *const pFaixa = std::find_if(std::begin(kFaixas), std::end(kFaixas),
                                            [n](const auto &faixa) { return faixa.uDe <= n && n <= faixa.uAte; });
    EXPECT_TRUE(nome.starts_with(pFaixa != std::end(kFaixas) ? pFaixa->lpComeco : kFacilidadeDesconhecida))
        << n << ' ' << nome;
  }
  EXPECT_EQ(NomeFacilidade(CodigoResultado(0x81090000)), "QZ_FACILITY_265");
  EXPECT_EQ(FacilidadeResultado(CodigoResultado(0xE0070005)), 7) << "the bits above are no part of it";
}

/// A new installation directory in force, with an empty "x64" folder.
class Biblioteca : public testing::Test {
protected:
  /// Puts one of the tests' message libraries in place, over the one before.
  void Instala(const CString &sVariante) const {
    Poe(apoio::LeArquivo(KALVO_PASTA_MENSAGENS "mensagens_" + sVariante + ".dll"));
  }
  void Poe(const std::string &sBytes) const { apoio::EscreveArquivo(m_x64 + "QZLMensagem.dll", sBytes); }

  apoio::PastaTemporaria m_pasta;
  CString m_x64 = m_pasta.CriaSubpasta("x64");
  apoio::InstalacaoPropria m_instalacao{m_pasta.Caminho()};
};

// Windows does not let a loaded library be written to, and elsewhere the one in memory would answer again: each call
// must free the library, whatever that library did.
TEST_F(Biblioteca, UmaDepoisDaOutra) {
  constexpr const char *kCasos[][2] = {
      {"primeira", "100% de %s %n: 810809D9"},
      {"segunda", "segunda"},
      {"sem_exportacao", ""},
      {"segunda", "segunda"},
      {"sem_texto", ""},
      {"excecao", ""},
#ifdef _WIN32
      {"falha", ""},
      {"ponteiro_ruim", ""},
      {"throw_alheio", ""},
      {"pilha", ""},
      {"pilha", ""},  // which is there in full again
      {"inicio", ""},
      {"inicio", ""},
#endif
      {"segunda", "segunda"},
  };
  EXPECT_EQ(DescricaoDaBiblioteca(codigos::kPosicaoZero), "") << "no library";
  for (const auto &[lpVariante, lpTexto] : kCasos) {
    Instala(lpVariante);
    EXPECT_EQ(DescricaoDaBiblioteca(codigos::kPosicaoZero), lpTexto) << lpVariante;
  }
  Poe("not a library");
  EXPECT_EQ(DescricaoDaBiblioteca(codigos::kPosicaoZero), "");
}

// The library lies where each relative directory would lead to, and must still not be loaded.
TEST_F(Biblioteca, DiretorioRelativoNaoVale) {
  Instala("segunda");
  const std::filesystem::path anterior = std::filesystem::current_path();
  std::filesystem::current_path(apoio::CaminhoDoSistema(m_pasta.Caminho()));
  for (const char *lpDiretorio : {"", ".", "x64\\.."}) {
    m_instalacao.Define(lpDiretorio);
    EXPECT_EQ(DescricaoDaBiblioteca(0), "") << lpDiretorio;
  }
  std::filesystem::current_path(anterior);
  m_instalacao.Define(m_pasta.Caminho());
  EXPECT_EQ(DescricaoDaBiblioteca(0), "segunda");
}

TEST_F(Biblioteca, LinhaDescrita) {
  EXPECT_EQ(LinhaDescrita("Abre()", "hrAbre", CodigoResultado(0x80070005)),
            "hrAbre = Abre()\thrAbre = 0X80070005 \tSEVERITY = 1 SEVERITY_ERROR\tFACILITY = 7 FACILITY_WIN32\t"
            "CODE = 5 ERROR_ACCESS_DENIED\tDescri\xE7\xE3o = E_ACCESSDENIED");
  Instala("primeira");
  EXPECT_EQ(LinhaDescrita("m_aFiles[idx]->Finaliza(\"%d\")", "hr", codigos::kPosicaoZero),
            "hr = m_aFiles[idx]->Finaliza(\"%d\")\thr = 0X810809D9 100% de %s %n: 810809D9\t"
            "SEVERITY = 1 SEVERITY_ERROR\tFACILITY = 264 QZ_FACILITY_CR_CORE\tCODE = 2521 \t"
            "Descri\xE7\xE3o = ");
}

}  // namespace
