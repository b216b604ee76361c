#include "core/platform/MemoriaMapeada.h"

#include <windows.h>

#include "core/platform/win32/QuadroSEH.h"

namespace plataforma {
namespace {

struct Toque {
  void (*corpo)(void *pContexto);
  void *pContexto;
};

HRESULT Toca(void *pToque) {
  const Toque &toque = *static_cast<const Toque *>(pToque);
  toque.corpo(toque.pContexto);
  return S_OK;
}

LONG TomaFalhaDoDispositivo(const EXCEPTION_RECORD &excecao) {
  return excecao.ExceptionCode == static_cast<DWORD>(EXCEPTION_IN_PAGE_ERROR) ? EXCEPTION_EXECUTE_HANDLER
                                                                              : EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

bool TocaMemoriaMapeada(void (*corpo)(void *pContexto), void *pContexto) noexcept {
  Toque toque{corpo, pContexto};
  return !ChamaEmQuadroSEH(Toca, &toque, TomaFalhaDoDispositivo).bExcecao;
}

}  // namespace plataforma
