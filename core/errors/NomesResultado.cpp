#include "core/errors/NomesResultado.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

/// Readers of the names copy them into buffers of this size, terminator included.
constexpr std::size_t kTamanhoBufferNome = 400;

struct Nome {
  template <std::size_t N>
  constexpr Nome(std::uint32_t uValorDoNome, const char (&nome)[N]) : uValor(uValorDoNome), lpNome(nome) {
    static_assert(N <= kTamanhoBufferNome);
  }

  std::uint32_t uValor;
  const char *lpNome;
};

#define KALVO_NOME(valor, nome) {valor, #nome},

constexpr Nome kWin32[] = {
#include "core/errors/nomes_win32.inc"
};

constexpr Nome kHRESULT[] = {
#include "core/errors/nomes_hresult.inc"
};

#undef KALVO_NOME

/// Where the SDK has several names for a number, the one its header lists first; 84 is FACILITY_MBN.
constexpr Nome kFacilidades[] = {{0, "FACILITY_NULL"},
                                 {1, "FACILITY_RPC"},
                                 {2, "FACILITY_DISPATCH"},
                                 {3, "FACILITY_STORAGE"},
                                 {4, "FACILITY_ITF"},
                                 {7, "FACILITY_WIN32"},
                                 {8, "FACILITY_WINDOWS"},
                                 {9, "FACILITY_SSPI"},
                                 {10, "FACILITY_CONTROL"},
                                 {11, "FACILITY_CERT"},
                                 {12, "FACILITY_INTERNET"},
                                 {13, "FACILITY_MEDIASERVER"},
                                 {14, "FACILITY_MSMQ"},
                                 {15, "FACILITY_SETUPAPI"},
                                 {16, "FACILITY_SCARD"},
                                 {17, "FACILITY_COMPLUS"},
                                 {18, "FACILITY_AAF"},
                                 {19, "FACILITY_URT"},
                                 {20, "FACILITY_ACS"},
                                 {21, "FACILITY_DPLAY"},
                                 {22, "FACILITY_UMI"},
                                 {23, "FACILITY_SXS"},
                                 {24, "FACILITY_WINDOWS_CE"},
                                 {25, "FACILITY_HTTP"},
                                 {26, "FACILITY_USERMODE_COMMONLOG"},
                                 {31, "FACILITY_USERMODE_FILTER_MANAGER"},
                                 {32, "FACILITY_BACKGROUNDCOPY"},
                                 {33, "FACILITY_CONFIGURATION"},
                                 {34, "FACILITY_STATE_MANAGEMENT"},
                                 {35, "FACILITY_METADIRECTORY"},
                                 {36, "FACILITY_WINDOWSUPDATE"},
                                 {37, "FACILITY_DIRECTORYSERVICE"},
                                 {38, "FACILITY_GRAPHICS"},
                                 {39, "FACILITY_SHELL"},
                                 {40, "FACILITY_TPM_SERVICES"},
                                 {41, "FACILITY_TPM_SOFTWARE"},
                                 {42, "FACILITY_UI"},
                                 {48, "FACILITY_PLA"},
                                 {49, "FACILITY_FVE"},
                                 {50, "FACILITY_FWP"},
                                 {51, "FACILITY_WINRM"},
                                 {52, "FACILITY_NDIS"},
                                 {53, "FACILITY_USERMODE_HYPERVISOR"},
                                 {54, "FACILITY_CMI"},
                                 {55, "FACILITY_USERMODE_VIRTUALIZATION"},
                                 {56, "FACILITY_USERMODE_VOLMGR"},
                                 {57, "FACILITY_BCD"},
                                 {58, "FACILITY_USERMODE_VHD"},
                                 {60, "FACILITY_SDIAG"},
                                 {61, "FACILITY_WEBSERVICES"},
                                 {80, "FACILITY_WINDOWS_DEFENDER"},
                                 {81, "FACILITY_OPC"},
                                 {82, "FACILITY_XPS"},
                                 {83, "FACILITY_RAS"},
                                 {84, "FACILITY_MBN"},
                                 {264, "QZ_FACILITY_CR_CORE"}};

template <std::size_t N>
constexpr bool Ascendente(const Nome (&tabela)[N]) {
  const Nome *pAnterior = nullptr;
  for (const Nome &nome : tabela) {
    if (pAnterior != nullptr && pAnterior->uValor >= nome.uValor) {
      return false;
    }
    pAnterior = &nome;
  }
  return true;
}

static_assert(Ascendente(kWin32) && Ascendente(kHRESULT) && Ascendente(kFacilidades));

template <std::size_t N>
const char *Procura(const Nome (&tabela)[N], std::uint32_t uValor) {
  const Nome *pAchado = std::lower_bound(std::begin(tabela), std::end(tabela), uValor,
                                         [](const Nome &nome, std::uint32_t valor) { return nome.uValor < valor; });
  return pAchado != std::end(tabela) && pAchado->uValor == uValor ? pAchado->lpNome : nullptr;
}

}  // namespace

const char *nomes::DeWin32(std::uint32_t uCodigo) {
  return Procura(kWin32, uCodigo);
}

const char *nomes::DeHRESULT(std::uint32_t uValor) {
  return Procura(kHRESULT, uValor);
}

const char *nomes::DeFacilidade(std::uint32_t uFacilidade) {
  return Procura(kFacilidades, uFacilidade);
}
