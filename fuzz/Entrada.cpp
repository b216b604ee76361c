#include "fuzz/Entrada.h"

/// What libFuzzer calls, and whoever repeats an input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *pBytes, std::size_t qtd) {
  fuzz::CEntrada entrada({reinterpret_cast<const char *>(pBytes), qtd});
  fuzz::Executa(&entrada);
  return 0;
}
