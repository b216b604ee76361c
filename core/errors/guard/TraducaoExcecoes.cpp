#include "core/errors/guard/TraducaoExcecoes.h"

#include <cstddef>
#include <exception>
#include <new>

#include "core/env/QZException.h"
#include "core/errors/QZExceptionEx.h"
#include "core/errors/guard/ErroCom.h"
#include "core/platform/CFileException.h"

namespace {

constexpr HRESULT kExcecaoSistema = CodigoResultado(0x8004EA61);
constexpr HRESULT kExcecaoMemoria = CodigoResultado(0x8004EA62);
constexpr HRESULT kExcecaoFramework = CodigoResultado(0x8004EA63);
constexpr HRESULT kExcecaoBadAlloc = CodigoResultado(0x8004EA64);
constexpr HRESULT kExcecaoPadrao = CodigoResultado(0x8004EA65);
constexpr HRESULT kExcecaoDesconhecida = CodigoResultado(0x8004EA66);

/// The whole error number counts, also where it reaches into the upper half of the code: readers of the log search for
/// the codes that come out. The text is not asked for; that could show a box.
HRESULT ResultadoDe(const CQZException *pExcecao) {
  const std::uint32_t uiErroSO = pExcecao != nullptr ? pExcecao->GetErroSO() : 0;
  return uiErroSO != 0 ? CodigoResultado(0x80040000U | uiErroSO) : kExcecaoSistema;
}

/// No error number, no failure: such an exception is a success for the caller. A null pointer has not even a number to
/// say so; it counts as any framework exception.
HRESULT ResultadoDe(const CFileException *pExcecao) {
  if (pExcecao == nullptr) {
    return kExcecaoFramework;
  }
  const LONG lErroSO = pExcecao->GetErroSO();
  return lErroSO < 1 ? HRESULT{lErroSO}
                     : CodigoResultado(0x80070000U | (static_cast<std::uint32_t>(lErroSO) & 0xFFFFU));
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
    return kExcecaoDesconhecida;
  } catch (const CQZException *pExcecao) {
    return ResultadoDe(pExcecao);
  } catch (const CFileException *pExcecao) {
    return ResultadoDe(pExcecao);
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
