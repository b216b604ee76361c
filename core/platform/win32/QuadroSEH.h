#ifndef KALVO_CORE_PLATFORM_WIN32_QUADROSEH_H
#define KALVO_CORE_PLATFORM_WIN32_QUADROSEH_H

#include "core/platform/Tipos.h"

struct _EXCEPTION_RECORD;  // NOLINT(clang-diagnostic-reserved-identifier): the platform's name

namespace plataforma {

/// What runs under a structured-exception frame. It must not hold objects whose destructors matter across a fault: the
/// stack is abandoned without running them. What is in the thread's ledger (LivroDaThread) is the exception, the frame
/// releases it.
using CorpoSEH = HRESULT (*)(void *pContexto);

/// Decides over an exception that nobody nearer to its origin handles: 1 takes it, 0 lets it pass on.
using FiltroSEH = LONG (*)(const _EXCEPTION_RECORD &excecao);

/// What else has to be let go when the frame is abandoned to somebody further out; null for nothing.
struct AbandonoSEH {
  void (*funcao)(void *pContexto) = nullptr;
  void *pContexto = nullptr;
};

/// How the body ended: with its result, or in an exception that the filter took.
struct SaidaSEH {
  bool bExcecao;
  HRESULT hr;    ///< of a body that came back
  DWORD codigo;  ///< of the exception
};

/// Runs `corpo(pContexto)` under a frame with this filter. Frames nest, any thread may call, and a stack overflow may
/// be met any number of times on one thread.
///
/// After an exception that the filter took, everything that this thread entered in its ledger since is released before
/// the function returns, each entry even when releasing another one faults.
///
/// An exception that the filter refuses may be taken by whoever called this program, such as the component platform,
/// which unwinds the stack and goes on. The ledger is then released in the same way while that happens, and `abandono`
/// is called after it, on a stack whose outer frames still stand; it must not throw. A C++ exception of this program's
/// own compiler is no such case: it runs destructors.
SaidaSEH ChamaEmQuadroSEH(CorpoSEH corpo, void *pContexto, FiltroSEH filtro, const AbandonoSEH &abandono = {});

}  // namespace plataforma

#endif
