#include "core/platform/Textos.h"

#include <windows.h>

#include <shlwapi.h>

namespace plataforma {

CString Maiusculas(const CString &sTexto) {
  CString sMaiusculas(sTexto);
  ::CharUpperBuffA(sMaiusculas.data(), static_cast<DWORD>(sMaiusculas.size()));
  return sMaiusculas;
}

bool CasaCuringa(const char *lpTexto, const char *lpPadrao) {
  return ::PathMatchSpecA(lpTexto, lpPadrao) != FALSE;
}

bool PaginaDeUmByte() {
  CPINFO pagina{};
  return ::GetCPInfo(CP_ACP, &pagina) != FALSE && pagina.MaxCharSize == 1;
}

}  // namespace plataforma
