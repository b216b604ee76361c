#include "core/platform/CodigoEstrangeiro.h"

#include <windows.h>
//
#include <malloc.h>

#include "core/platform/win32/QuadroSEH.h"

namespace plataforma {
namespace {

struct Chamada {
  void (*corpo)(void *pContexto);
  void *pContexto;
};

/// An exception of this program's runtime must end here, inside the frame: its type and its destructor may live in the
/// foreign library, and the runtime does not let others take what it throws.
HRESULT Executa(void *pChamada) {
  const Chamada &chamada = *static_cast<const Chamada *>(pChamada);
  try {
    chamada.corpo(chamada.pContexto);
    return S_OK;
  } catch (...) {
    return E_FAIL;
  }
}

LONG TomaTudo(const EXCEPTION_RECORD & /*excecao*/) {
  return EXCEPTION_EXECUTE_HANDLER;
}

}  // namespace

bool ChamaCodigoEstrangeiro(void (*corpo)(void *pContexto), void *pContexto) noexcept {
  Chamada chamada{corpo, pContexto};
  const SaidaSEH saida = ChamaEmQuadroSEH(Executa, &chamada, TomaTudo);
  // The system's loader keeps to itself what the start of a library meets, a stack overflow too.
  _resetstkoflw();
  return !saida.bExcecao && SUCCEEDED(saida.hr);
}

}  // namespace plataforma
