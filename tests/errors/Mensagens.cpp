// A message library for the tests, in the variant that the build names.

#include <cstdint>
#include <cstdio>
#include <stdexcept>

#include "core/platform/Tipos.h"

#ifdef _WIN32
#include <windows.h>
#define EXPORTA extern "C" __declspec(dllexport)
#else
#define EXPORTA extern "C" __attribute__((visibility("default")))
#endif

#ifdef VARIANTE_sem_exportacao
#define QZGetDescricaoHRESULT QZGetDescricao
#endif

EXPORTA const char *QZGetDescricaoHRESULT(HRESULT hr);

#ifdef _WIN32
namespace {

[[maybe_unused]] volatile int g_zero = 0;

/// Uses up the stack.
[[maybe_unused, gnu::noinline]] int Recorre(int iProfundidade) {
  volatile char area[256];
  area[0] = static_cast<char>(iProfundidade);
  return g_zero != 0 ? 0 : Recorre(iProfundidade + 1) + area[0];
}

}  // namespace
#endif

#ifdef VARIANTE_inicio
BOOL WINAPI DllMain(HINSTANCE /*hBiblioteca*/, DWORD dwMotivo, LPVOID /*pReservado*/) {
  return dwMotivo != DLL_PROCESS_ATTACH || Recorre(0) != 0;
}
#endif

// The text lies in the library's own memory: gone as soon as the library is freed.
const char *QZGetDescricaoHRESULT([[maybe_unused]] HRESULT hr) {
  [[maybe_unused]] static char s_texto[64] = "segunda";
#if defined(VARIANTE_excecao)
  throw std::runtime_error("x");
#elif defined(VARIANTE_sem_texto)
  return nullptr;
#elif defined(VARIANTE_primeira)
  std::snprintf(s_texto, sizeof(s_texto), "100%% de %%s %%n: %08X", static_cast<unsigned>(hr));
#elif defined(VARIANTE_falha)
  return s_texto + 10 / g_zero;
#elif defined(VARIANTE_ponteiro_ruim)
  return reinterpret_cast<const char *>(std::uintptr_t{16});
#elif defined(VARIANTE_throw_alheio)  // as another compiler's runtime throws
  RaiseException(0xE06D7363, EXCEPTION_NONCONTINUABLE, 0, nullptr);
#elif defined(VARIANTE_pilha)
  s_texto[0] = static_cast<char>(Recorre(0));
#endif
  return s_texto;
}
