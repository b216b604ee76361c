#include "core/errors/guard/TraducaoExcecoes.h"

#include <exception>
#include <new>

#include "core/platform/CException.h"

namespace {

constexpr HRESULT kExcecaoMemoria = CodigoResultado(0x8004EA62);
constexpr HRESULT kExcecaoFramework = CodigoResultado(0x8004EA63);
constexpr HRESULT kExcecaoBadAlloc = CodigoResultado(0x8004EA64);
constexpr HRESULT kExcecaoPadrao = CodigoResultado(0x8004EA65);
constexpr HRESULT kExcecaoDesconhecida = CodigoResultado(0x8004EA66);

}  // namespace

HRESULT QZTranslateThrownExceptionToHresult() {
  // Most specific first: the order of the handlers is the order of the table.
  try {
    throw;
  } catch (const CMemoryException *) {
    return kExcecaoMemoria;
  } catch (const CException *) {
    return kExcecaoFramework;
  } catch (HRESULT hr) {
    return hr;
  } catch (const std::bad_alloc &) {
    return kExcecaoBadAlloc;
  } catch (const std::exception &) {
    return kExcecaoPadrao;
  } catch (...) {
    return kExcecaoDesconhecida;
  }
}
