// Every entry of the name tables against the SDK's own macro of that name, save the complementary ones.

// clang-format off
#include <windows.h>
#include <winerror.h>
#include <wininet.h>
#include <mprerror.h>
#include <tcerror.h>
#include <olectl.h>
#include <vfwmsgs.h>
#include <oledberr.h>
#include <urlmon.h>
#include <corerror.h>
#include <wuerror.h>
#include <bitsmsg.h>
#include <sherrors.h>
#include <vsserror.h>
#include <adserr.h>
#include <mferror.h>
#include <nserror.h>
#include <d2derr.h>
#include <cierror.h>
#include <filterr.h>
#include <fltwinerror.h>
#include <fsrmerr.h>
#include <mediaerr.h>
#include <rtcerr.h>
#include <stierr.h>
#include <tapi3err.h>
#include <slerror.h>
#include <eaphosterror.h>
#include <sperror.h>
#include <dbdaoerr.h>
#include <cdosyserr.h>
#include <mdmsg.h>
#include <ntdsbmsg.h>
#include <agterr.h>
// Its types have the names of others in wininet.h.
namespace winhttp {
#include <winhttp.h>
}
// clang-format on

#include <gtest/gtest.h>

#include "core/errors/DescricaoResultado.h"

namespace {

struct Nome {
  std::uint32_t uTabela;
  std::int64_t iSdk;
  const char *lpNome;
};

#define KALVO_NOME(valor, nome) {valor, static_cast<std::int64_t>(nome), #nome},
#define KALVO_NOME_COMPLEMENTAR(valor, nome)

const Nome kWin32[] = {
#include "core/errors/nomes_win32.inc"
};

const Nome kHRESULT[] = {
#include "core/errors/nomes_hresult.inc"
};

#undef KALVO_NOME_COMPLEMENTAR
#undef KALVO_NOME

// The facilities that this SDK names, one name a number.
const Nome kFacilidades[] = {
#define X(nome) {FACILITY_##nome, FACILITY_##nome, "FACILITY_" #nome},
    // clang-format off
    X(NULL) X(RPC) X(DISPATCH) X(STORAGE) X(ITF) X(WIN32) X(WINDOWS) X(SSPI) X(CONTROL) X(CERT) X(INTERNET)
    X(MEDIASERVER) X(MSMQ) X(SETUPAPI) X(SCARD) X(COMPLUS) X(AAF) X(URT) X(ACS) X(DPLAY) X(UMI) X(SXS)
    X(WINDOWS_CE) X(HTTP) X(BACKGROUNDCOPY) X(CONFIGURATION) X(STATE_MANAGEMENT) X(METADIRECTORY) X(WINDOWSUPDATE)
    X(DIRECTORYSERVICE) X(USERMODE_FILTER_MANAGER)
// clang-format on
#undef X
};

TEST(NomesSdk, ComoNoSdk) {
  for (const Nome &nome : kWin32) {
    ASSERT_EQ(nome.uTabela, static_cast<std::uint32_t>(nome.iSdk)) << nome.lpNome;
    ASSERT_EQ(NomeWin32(CodigoResultado(0x80070000U | nome.uTabela)), nome.lpNome);
  }
  for (const Nome &nome : kHRESULT) {
    ASSERT_EQ(nome.uTabela, static_cast<std::uint32_t>(nome.iSdk)) << nome.lpNome;
    ASSERT_EQ(NomeHRESULT(CodigoResultado(nome.uTabela)), nome.lpNome);
  }
  for (const Nome &nome : kFacilidades) {
    EXPECT_EQ(NomeFacilidade(CodigoResultado(nome.uTabela << 16U)), nome.lpNome);
  }
}

}  // namespace
