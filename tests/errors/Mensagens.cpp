// A message library for the tests, in the variant that the build names.

#include <cstdio>
#include <stdexcept>

#include "core/platform/Tipos.h"

#ifdef _WIN32
#define EXPORTA extern "C" __declspec(dllexport)
#else
#define EXPORTA extern "C" __attribute__((visibility("default")))
#endif

#ifdef VARIANTE_sem_exportacao
#define QZGetDescricaoHRESULT QZGetDescricao
#endif

EXPORTA const char *QZGetDescricaoHRESULT(HRESULT hr);

// The text lies in the library's own memory: gone as soon as the library is freed.
const char *QZGetDescricaoHRESULT([[maybe_unused]] HRESULT hr) {
  [[maybe_unused]] static char s_texto[64] = "segunda";
#if defined(VARIANTE_excecao)
  throw std::runtime_error("x");
#elif defined(VARIANTE_sem_texto)
  return nullptr;
#elif defined(VARIANTE_primeira)
  std::snprintf(s_texto, sizeof(s_texto), "100%% de %%s %%n: %08X", static_cast<unsigned>(hr));
#endif
  return s_texto;
}
