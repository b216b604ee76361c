#ifndef KALVO_CORE_PLATFORM_CODIGOESTRANGEIRO_H
#define KALVO_CORE_PLATFORM_CODIGOESTRANGEIRO_H

#include <type_traits>

namespace plataforma {

/// Runs `corpo(pContexto)`, which calls code that is not ours, and answers whether it came to its end. No exception
/// leaves it: neither one of this program's runtime nor, on Windows, a machine fault or any other structured exception,
/// those of other compilers' runtimes and a stack overflow included.
///
/// What the body held may be lost with its stack when it did not come to its end: it keeps its results in objects of
/// the caller and trusts none of them then.
bool ChamaCodigoEstrangeiro(void (*corpo)(void *pContexto), void *pContexto) noexcept;

/// The same for a callable object.
template <class Corpo>
bool ChamaCodigoEstrangeiro(Corpo &&corpo) noexcept {
  using Tipo = std::remove_reference_t<Corpo>;
  return ChamaCodigoEstrangeiro([](void *pCorpo) { (*static_cast<Tipo *>(pCorpo))(); }, &corpo);
}

}  // namespace plataforma

#endif
