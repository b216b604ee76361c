#ifndef KALVO_CORE_ERRORS_NOMESRESULTADO_H
#define KALVO_CORE_ERRORS_NOMESRESULTADO_H

#include <cstdint>

/// The platform SDK's symbolic names by value, found by binary search. Null for a value without a name. Any thread.
namespace nomes {

/// Name of a Win32 error constant ("ERROR_FILE_NOT_FOUND", "EPT_S_INVALID_ENTRY", ...).
const char *DeWin32(std::uint32_t uCodigo);

/// Name of an HRESULT constant ("E_FAIL", ...), by all its 32 bits.
const char *DeHRESULT(std::uint32_t uValor);

/// Name of a facility constant: the platform's ("FACILITY_WIN32") or this system's own ("QZ_FACILITY_CR_CORE").
const char *DeFacilidade(std::uint32_t uFacilidade);

}  // namespace nomes

#endif
