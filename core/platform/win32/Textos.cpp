#include "core/platform/Textos.h"

#include <windows.h>

#include <shlwapi.h>

namespace plataforma {

CString Maiusculas(const CString &texto) {
  CString maiusculas(texto);
  ::CharUpperBuffA(maiusculas.data(), static_cast<DWORD>(maiusculas.size()));
  return maiusculas;
}

bool CasaCuringa(const char *texto, const char *padrao) {
  return ::PathMatchSpecA(texto, padrao) != FALSE;
}

bool PaginaDeUmByte() {
  CPINFO pagina{};
  return ::GetCPInfo(CP_ACP, &pagina) != FALSE && pagina.MaxCharSize == 1;
}

}  // namespace plataforma
