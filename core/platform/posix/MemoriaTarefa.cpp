#include "core/platform/MemoriaTarefa.h"

#include <cstdlib>

namespace plataforma {

void *AlocaTarefa(std::size_t bytes) {
  return std::malloc(bytes);
}

void LiberaTarefa(void *pMemoria) {
  std::free(pMemoria);
}

}  // namespace plataforma
