/* A message library for the tests. Plain C, as a library by another compiler would be. VARIANTE says which one. */

#include <stdio.h>

#ifdef _WIN32
typedef long HRESULT;
#define EXPORTA __declspec(dllexport)
#else
typedef int HRESULT;
#define EXPORTA __attribute__((visibility("default")))
#endif

#define PRIMEIRA 1
#define SEGUNDA 2
#define SEM_EXPORTACAO 3
#define SEM_TEXTO 4

#if VARIANTE == PRIMEIRA
/* In the library's own memory: gone as soon as the library is freed. */
static char g_texto[64];

EXPORTA const char *QZGetDescricaoHRESULT(HRESULT hr) {
  snprintf(g_texto, sizeof g_texto, "100%% de %%s %%n: %08X", (unsigned int)hr);
  return g_texto;
}
#elif VARIANTE == SEGUNDA
EXPORTA const char *QZGetDescricaoHRESULT(HRESULT hr) {
  (void)hr;
  return "segunda";
}
#elif VARIANTE == SEM_EXPORTACAO
EXPORTA const char *QZGetDescricao(HRESULT hr) {
  (void)hr;
  return "outra";
}
#elif VARIANTE == SEM_TEXTO
EXPORTA const char *QZGetDescricaoHRESULT(HRESULT hr) {
  (void)hr;
  return NULL;
}
#endif
