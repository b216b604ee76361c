#include "core/platform/MemoriaMapeada.h"

namespace plataforma {

bool TocaMemoriaMapeada(void (*corpo)(void *pContexto), void *pContexto) noexcept {
  corpo(pContexto);
  return true;
}

}  // namespace plataforma
