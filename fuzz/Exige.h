#ifndef KALVO_FUZZ_EXIGE_H
#define KALVO_FUZZ_EXIGE_H

#include <cstdio>
#include <cstdlib>

#include "core/errors/CodigosResultado.h"

namespace fuzz {

/// Ends the run as a finding when a property does not hold.
inline void Exige(bool bVale, const char *lpPropriedade) {
  if (!bVale) {
    std::fprintf(stderr, "BROKEN: %s\n", lpPropriedade);
    std::abort();
  }
}

inline void ExigeCodigo(HRESULT hr, HRESULT hrEsperado, const char *lpPropriedade) {
  if (hr != hrEsperado) {
    std::fprintf(stderr, "0x%08X instead of 0x%08X\n", BitsResultado(hr), BitsResultado(hrEsperado));
    Exige(false, lpPropriedade);
  }
}

}  // namespace fuzz

#endif
