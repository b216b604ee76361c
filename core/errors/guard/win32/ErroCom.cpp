#include "core/errors/guard/ErroCom.h"

#include <windows.h>
//
#include <comdef.h>

bool ResultadoDoErroCom(HRESULT *phr) {
  try {
    throw;
  } catch (const _com_error &erro) {
    *phr = erro.Error();
    return true;
  } catch (...) {
    return false;
  }
}
