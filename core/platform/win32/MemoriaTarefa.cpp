#include "core/platform/MemoriaTarefa.h"

#include <windows.h>
//
#include <objbase.h>

namespace plataforma {

void *AlocaTarefa(std::size_t bytes) {
  return CoTaskMemAlloc(bytes);
}

void LiberaTarefa(void *pMemoria) {
  CoTaskMemFree(pMemoria);
}

}  // namespace plataforma
