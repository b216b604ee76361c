#ifndef KALVO_CORE_ERRORS_GUARD_WIN32_CHAMADASEH_H
#define KALVO_CORE_ERRORS_GUARD_WIN32_CHAMADASEH_H

#include "core/platform/Tipos.h"

// The inner layer of the call guard: machine faults become result codes. Thrown C++ exceptions pass through; the layer
// around it turns them into codes (TraducaoExcecoes.h).

struct _EXCEPTION_RECORD;  // NOLINT(bugprone-reserved-identifier): the platform's name

/// What runs under the frame. It must not hold objects whose destructors matter across a fault: the stack is abandoned
/// without running them. Locks taken through CQZTrava are the exception, the guard releases them.
using CorpoSEH = HRESULT (*)(void *pContexto);

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

/// Runs `corpo(pContexto)` and returns its result, or the result code of the machine fault that it met. After a fault
/// everything that this thread took since entry and noted in its ledger is released before the function returns, each
/// entry even when releasing another one faults. Frames nest, and a stack overflow may be met any number of times on
/// one thread. Any thread may call.
HRESULT ChamaSEH(CorpoSEH corpo, void *pContexto);

/// The same for a callable object that returns HRESULT.
template <class Corpo>
HRESULT ChamaSEH(Corpo &corpo) {
  return ChamaSEH([](void *pContexto) -> HRESULT { return (*static_cast<Corpo *>(pContexto))(); }, &corpo);
}

#endif
