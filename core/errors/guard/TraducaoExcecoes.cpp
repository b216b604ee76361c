#include "core/errors/guard/TraducaoExcecoes.h"

#include <cstddef>
#include <exception>
#include <new>

#include "core/env/QZException.h"
#include "core/errors/CodigosResultado.h"
#include "core/errors/QZExceptionEx.h"
#include "core/errors/guard/ErroCom.h"
#include "core/platform/CFileException.h"

namespace {

/// The whole error number counts, also where it reaches into the upper half of the code: readers of the log search for
/// the codes that come out. The text is not asked for; that could show a box.
HRESULT ResultadoDe(const CQZException *pExcecao) {
  const std::uint32_t uiErroSO = pExcecao != nullptr ? pExcecao->GetErroSO() : 0;
  return uiErroSO != 0 ? CodigoResultado(codigos::kBaseSistema | uiErroSO) : codigos::kExcecaoSistema;
}

/// No error number, no failure: such an exception is a success for the caller. A null pointer has not even a number to
/// say so; it counts as any framework exception.
HRESULT ResultadoDe(const CFileException *pExcecao) {
  if (pExcecao == nullptr) {
    return codigos::kExcecaoFramework;
  }
  const LONG lErroSO = pExcecao->GetErroSO();
  return lErroSO < 1 ? HRESULT{lErroSO} : CodigoWin32(static_cast<std::uint32_t>(lErroSO));
}

}  // namespace

HRESULT QZTranslateThrownExceptionToHresult() {
  HRESULT hrCom = 0;
  if (ResultadoDoErroCom(&hrCom)) {
    return hrCom;
  }
  // Most specific first: the order of the handlers is the order of the table.
  try {
    throw;
  } catch (const CQZExceptionEx &excecao) {
    return excecao.GetHR();
  } catch (std::nullptr_t) {
    // Of no type, though every handler of a pointer would take it.
    return codigos::kExcecaoDesconhecida;
  } catch (const CQZException *pExcecao) {
    return ResultadoDe(pExcecao);
  } catch (const CFileException *pExcecao) {
    return ResultadoDe(pExcecao);
  } catch (const CMemoryException *) {
    return codigos::kExcecaoMemoria;
  } catch (const CException *) {
    return codigos::kExcecaoFramework;
  } catch (HRESULT hr) {
    return hr;
  } catch (const std::bad_alloc &) {
    return codigos::kExcecaoBadAlloc;
  } catch (const std::exception &) {
    return codigos::kExcecaoPadrao;
  } catch (...) {
    return codigos::kExcecaoDesconhecida;
  }
}
