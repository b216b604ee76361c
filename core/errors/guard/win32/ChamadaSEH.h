#ifndef KALVO_CORE_ERRORS_GUARD_WIN32_CHAMADASEH_H
#define KALVO_CORE_ERRORS_GUARD_WIN32_CHAMADASEH_H

#include "core/platform/win32/QuadroSEH.h"

// The inner layer of the call guard: machine faults become result codes. Thrown C++ exceptions pass through; the layer
// around it turns them into codes (TraducaoExcecoes.h).

using plataforma::CorpoSEH;

/// Decides over one structured exception: stores its code for UltimoCodigoExcecao and answers 1 (handle) for the faults
/// of the result table, 0 (continue the search) for all others, thrown C++ exceptions among them. 0x80000029 has a
/// result but is never handled: it is the system's own unwinding.
LONG FiltraExcecaoEstruturada(const _EXCEPTION_RECORD &excecao);

/// Code of the last structured exception that any thread of the process met, 0 for none; for diagnosis only.
DWORD UltimoCodigoExcecao();

/// Result code of a structured exception; 0x8004EE47 for a code without a result of its own.
HRESULT TraduzCodigoExcecao(DWORD codigo);

/// True for the results of TraduzCodigoExcecao: the call met a machine fault and its objects can no longer be trusted.
bool EhErroSEH(HRESULT hr);

/// Runs `corpo(pContexto)` and returns its result, or the result code of the machine fault that it met. Other
/// exceptions pass on; `abandono` is for the case that somebody further out takes one and the process goes on. What
/// becomes of the thread's ledger: see QuadroSEH.h.
HRESULT ChamaSEH(CorpoSEH corpo, void *pContexto, const plataforma::AbandonoSEH &abandono = {});

/// The same for a callable object that returns HRESULT.
template <class Corpo>
HRESULT ChamaSEH(Corpo &corpo) {
  return ChamaSEH([](void *pContexto) -> HRESULT { return (*static_cast<Corpo *>(pContexto))(); }, &corpo);
}

#endif
