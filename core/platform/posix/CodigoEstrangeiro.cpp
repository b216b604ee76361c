#include "core/platform/CodigoEstrangeiro.h"

namespace plataforma {

bool ChamaCodigoEstrangeiro(void (*corpo)(void *pContexto), void *pContexto) noexcept {
  try {
    corpo(pContexto);
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace plataforma
