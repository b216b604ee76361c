#include <gtest/gtest.h>
#include <windows.h>

#include "core/errors/DescricaoResultado.h"

namespace {

// The facilities that this SDK names, one name a number.
const struct {
  std::uint32_t uNumero;
  const char *lpNome;
} kFacilidades[] = {
#define X(nome) {FACILITY_##nome, "FACILITY_" #nome},
    // clang-format off
    X(NULL) X(RPC) X(DISPATCH) X(STORAGE) X(ITF) X(WIN32) X(WINDOWS) X(SSPI) X(CONTROL) X(CERT) X(INTERNET)
    X(MEDIASERVER) X(MSMQ) X(SETUPAPI) X(SCARD) X(COMPLUS) X(AAF) X(URT) X(ACS) X(DPLAY) X(UMI) X(SXS)
    X(WINDOWS_CE) X(HTTP) X(BACKGROUNDCOPY) X(CONFIGURATION) X(STATE_MANAGEMENT) X(METADIRECTORY) X(WINDOWSUPDATE)
    X(DIRECTORYSERVICE) X(USERMODE_FILTER_MANAGER)
// clang-format on
#undef X
};

TEST(FacilidadesSdk, ComoNoSdk) {
  for (const auto &facilidade : kFacilidades) {
    EXPECT_EQ(NomeFacilidade(CodigoResultado(facilidade.uNumero << 16U)), facilidade.lpNome);
  }
}

}  // namespace
