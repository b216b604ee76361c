#include "core/errors/DescricaoResultado.h"

#include <gtest/gtest.h>

#include "core/errors/CodigosResultado.h"
#include "tests/errors/InstalacaoFalsa.h"

namespace {

constexpr char kFacilidadeDesconhecida[] =
    "Desconhecido ou novo c\xF3"
    "digo de FACILITY";

TEST(DescricaoResultado, CodigosConhecidos) {
  const struct {
    std::uint32_t uValor;
    const char *lpSeveridade;
    const char *lpFacilidade;
    const char *lpWin32;
    const char *lpHRESULT;
  } casos[] = {{0, "SEVERITY_SUCCESS", "FACILITY_NULL", "ERROR_SUCCESS", "S_OK"},
               {0xFFFFFFFF, "SEVERITY_ERROR", kFacilidadeDesconhecida, "", ""},
               {0x80070005, "SEVERITY_ERROR", "FACILITY_WIN32", "ERROR_ACCESS_DENIED", "E_ACCESSDENIED"},
               // The SDK's own winerror.h has these by other names than other headers, or marks of ranges beside them.
               {0x80040000, "SEVERITY_ERROR", "FACILITY_ITF", "ERROR_SUCCESS", "OLE_E_OLEVERB"},
               {0x80072B10, "SEVERITY_ERROR", "FACILITY_WIN32", "WSA_QOS_EUNKOWNPSOBJ", ""},
               {0x80190194, "SEVERITY_ERROR", "FACILITY_HTTP", "ERROR_CLOUD_FILE_PROVIDER_TERMINATED",
                "HTTP_E_STATUS_NOT_FOUND"},
               {0x810809D9, "SEVERITY_ERROR", "QZ_FACILITY_CR_CORE", "", ""}};
  for (const auto &caso : casos) {
    SCOPED_TRACE(testing::Message() << std::hex << caso.uValor);
    const HRESULT hr = CodigoResultado(caso.uValor);
    EXPECT_EQ(NomeSeveridade(hr), caso.lpSeveridade);
    EXPECT_EQ(NomeFacilidade(hr), caso.lpFacilidade);
    EXPECT_EQ(NomeWin32(hr), caso.lpWin32);
    EXPECT_EQ(NomeHRESULT(hr), caso.lpHRESULT);
  }
}

// The system's own codes share FACILITY_ITF with others, and none of theirs may stand for one of these.
TEST(DescricaoResultado, CodigosProprios) {
  const HRESULT codigos[] = {
      codigos::kBaseMaisNova,       codigos::kSemEmpresa,       codigos::kTraNaoRenomeado,     codigos::kPosicaoZero,
      codigos::kArqPosicaoInvalida, codigos::kArqNaoEncontrado, codigos::kArqCompartilhamento, codigos::kArqOutra};
  for (const HRESULT hr : codigos) {
    EXPECT_EQ(NomeHRESULT(hr), "") << std::hex << BitsResultado(hr);
  }
}

bool Entre(std::uint32_t valor, std::uint32_t menor, std::uint32_t maior) {
  return valor >= menor && valor <= maior;
}

// Every facility number: which have a name of the SDK, which one of the suite, and which none.
TEST(DescricaoResultado, TodasAsFacilidades) {
  for (std::uint32_t n = 0; n <= 0x1FFF; ++n) {
    const HRESULT hr = CodigoResultado(0x80000000U | n << 16U | 2U);
    const CString nome = NomeFacilidade(hr);
    SCOPED_TRACE(testing::Message() << n << ' ' << nome);
    EXPECT_EQ(FacilidadeResultado(hr), static_cast<int>(n));
    if (n == 264) {
      EXPECT_EQ(nome, "QZ_FACILITY_CR_CORE");
    } else if (Entre(n, 236, 255) || n == 263 || n == 265) {
      EXPECT_EQ(nome, "QZ_FACILITY_" + std::to_string(n));
    } else if (Entre(n, 0, 4) || Entre(n, 7, 26) || Entre(n, 31, 42) || Entre(n, 48, 58) || Entre(n, 60, 61) ||
               Entre(n, 80, 84)) {
      EXPECT_EQ(nome.rfind("FACILITY_", 0), 0U);
    } else {
      EXPECT_EQ(nome, kFacilidadeDesconhecida);
    }
  }
  EXPECT_EQ(FacilidadeResultado(CodigoResultado(0xE0070005)), 7) << "the bits above are no part of it";
  EXPECT_EQ(NomeFacilidade(CodigoResultado(0xD0000022)), kFacilidadeDesconhecida);
}

TEST(DescricaoResultado, LinhaDescrita) {
  const apoio::InstalacaoFalsa instalacao;
  EXPECT_EQ(LinhaDescrita("Abre()", "hrAbre", CodigoResultado(0x80070005)),
            "hrAbre = Abre()\thrAbre = 0X80070005 \tSEVERITY = 1 SEVERITY_ERROR\tFACILITY = 7 FACILITY_WIN32\t"
            "CODE = 5 ERROR_ACCESS_DENIED\tDescri\xE7\xE3o = E_ACCESSDENIED");
  EXPECT_EQ(LinhaDescrita("f()", "hr", 0),
            "hr = f()\thr = 0 \tSEVERITY = 0 SEVERITY_SUCCESS\tFACILITY = 0 FACILITY_NULL\tCODE = 0 ERROR_SUCCESS\t"
            "Descri\xE7\xE3o = S_OK");
  instalacao.InstalaBiblioteca("primeira");
  EXPECT_EQ(LinhaDescrita("m_aFiles[idx]->Finaliza(\"%d\")", "hr", codigos::kPosicaoZero),
            "hr = m_aFiles[idx]->Finaliza(\"%d\")\thr = 0X810809D9 100% de %s %n: 810809D9\t"
            "SEVERITY = 1 SEVERITY_ERROR\tFACILITY = 264 QZ_FACILITY_CR_CORE\tCODE = 2521 \t"
            "Descri\xE7\xE3o = ");
}

}  // namespace
