#include "core/errors/guard/ErroCom.h"

bool ResultadoDoErroCom(HRESULT * /*phr*/) {
  return false;
}
