#include "server/TratamentoExcecoes.h"

#include <windows.h>
//
#include <objbase.h>

namespace {

/// The platform's own; the import library does not name it.
constexpr CLSID kOpcoesGlobais = {0x0000034B, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

}  // namespace

void DesligaTratamentoDeExcecoes() {
  void *pInterface = nullptr;
  if (SUCCEEDED(CoCreateInstance(kOpcoesGlobais, nullptr, CLSCTX_INPROC_SERVER, IID_IGlobalOptions, &pInterface))) {
    auto *pOpcoes = static_cast<IGlobalOptions *>(pInterface);
    pOpcoes->Set(COMGLB_EXCEPTION_HANDLING, COMGLB_EXCEPTION_DONOT_HANDLE_ANY);
    pOpcoes->Release();
  }
}
