// A message library whose function throws.

#include <stdexcept>

#include "core/platform/Tipos.h"

#ifdef _WIN32
#define EXPORTA extern "C" __declspec(dllexport)
#else
#define EXPORTA extern "C" __attribute__((visibility("default")))
#endif

EXPORTA const char *QZGetDescricaoHRESULT(HRESULT hr);

const char *QZGetDescricaoHRESULT(HRESULT hr) {
  throw std::runtime_error(std::to_string(hr));
}
