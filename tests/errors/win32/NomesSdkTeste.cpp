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
#define KALVO_FACILIDADE(nome) \
  { nome, nome, #nome }

const Nome kFacilidades[] = {KALVO_FACILIDADE(FACILITY_NULL),
                             KALVO_FACILIDADE(FACILITY_RPC),
                             KALVO_FACILIDADE(FACILITY_DISPATCH),
                             KALVO_FACILIDADE(FACILITY_STORAGE),
                             KALVO_FACILIDADE(FACILITY_ITF),
                             KALVO_FACILIDADE(FACILITY_WIN32),
                             KALVO_FACILIDADE(FACILITY_WINDOWS),
                             KALVO_FACILIDADE(FACILITY_SSPI),
                             KALVO_FACILIDADE(FACILITY_CONTROL),
                             KALVO_FACILIDADE(FACILITY_CERT),
                             KALVO_FACILIDADE(FACILITY_INTERNET),
                             KALVO_FACILIDADE(FACILITY_MEDIASERVER),
                             KALVO_FACILIDADE(FACILITY_MSMQ),
                             KALVO_FACILIDADE(FACILITY_SETUPAPI),
                             KALVO_FACILIDADE(FACILITY_SCARD),
                             KALVO_FACILIDADE(FACILITY_COMPLUS),
                             KALVO_FACILIDADE(FACILITY_AAF),
                             KALVO_FACILIDADE(FACILITY_URT),
                             KALVO_FACILIDADE(FACILITY_ACS),
                             KALVO_FACILIDADE(FACILITY_DPLAY),
                             KALVO_FACILIDADE(FACILITY_UMI),
                             KALVO_FACILIDADE(FACILITY_SXS),
                             KALVO_FACILIDADE(FACILITY_WINDOWS_CE),
                             KALVO_FACILIDADE(FACILITY_HTTP),
                             KALVO_FACILIDADE(FACILITY_BACKGROUNDCOPY),
                             KALVO_FACILIDADE(FACILITY_CONFIGURATION),
                             KALVO_FACILIDADE(FACILITY_STATE_MANAGEMENT),
                             KALVO_FACILIDADE(FACILITY_METADIRECTORY),
                             KALVO_FACILIDADE(FACILITY_WINDOWSUPDATE),
                             KALVO_FACILIDADE(FACILITY_DIRECTORYSERVICE),
                             KALVO_FACILIDADE(FACILITY_USERMODE_FILTER_MANAGER)};

#undef KALVO_FACILIDADE

TEST(NomesSdk, Win32) {
  for (const Nome &nome : kWin32) {
    ASSERT_EQ(nome.uTabela, static_cast<std::uint32_t>(nome.iSdk)) << nome.lpNome;
    ASSERT_EQ(NomeWin32(CodigoResultado(0x80070000U | nome.uTabela)), nome.lpNome);
  }
}

TEST(NomesSdk, HRESULT) {
  for (const Nome &nome : kHRESULT) {
    ASSERT_EQ(nome.uTabela, static_cast<std::uint32_t>(nome.iSdk)) << nome.lpNome;
    ASSERT_EQ(NomeHRESULT(CodigoResultado(nome.uTabela)), nome.lpNome);
  }
}

TEST(NomesSdk, Facilidades) {
  for (const Nome &nome : kFacilidades) {
    EXPECT_EQ(NomeFacilidade(CodigoResultado(nome.uTabela << 16U)), nome.lpNome);
  }
}

}  // namespace
