#include "core/platform/MemoriaMapeada.h"

#include <windows.h>

#include "core/platform/win32/QuadroSEH.h"

namespace plataforma {
namespace {

struct Chamada {
  void (*corpo)(void *pContexto);
  void *pContexto;
};

HRESULT Executa(void *pChamada) {
  const Chamada &chamada = *static_cast<const Chamada *>(pChamada);
  chamada.corpo(chamada.pContexto);
  return S_OK;
}

LONG TomaFalhaDoDispositivo(const EXCEPTION_RECORD &excecao) {
  return excecao.ExceptionCode == static_cast<DWORD>(EXCEPTION_IN_PAGE_ERROR) ? EXCEPTION_EXECUTE_HANDLER
                                                                              : EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

bool TocaMemoriaMapeada(void (*corpo)(void *pContexto), void *pContexto) noexcept {
  Chamada chamada{corpo, pContexto};
  return !ChamaEmQuadroSEH(Executa, &chamada, TomaFalhaDoDispositivo).bExcecao;
}

}  // namespace plataforma
