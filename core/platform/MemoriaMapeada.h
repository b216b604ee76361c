#ifndef KALVO_CORE_PLATFORM_MEMORIAMAPEADA_H
#define KALVO_CORE_PLATFORM_MEMORIAMAPEADA_H

#include <type_traits>

namespace plataforma {

/// Runs `corpo(pContexto)`, which touches memory shared with a file (IArquivoAberto::Mapeia), and answers whether it
/// came to its end: the file's device may fail under it, as a network share does. On Windows that is a fault of the
/// machine, which ends here; any other passes. No system call. The body throws nothing and holds nothing.
bool TocaMemoriaMapeada(void (*corpo)(void *pContexto), void *pContexto) noexcept;

/// The same for a callable object.
template <class Corpo>
bool TocaMemoriaMapeada(Corpo &&corpo) noexcept {
  using Tipo = std::remove_reference_t<Corpo>;
  return TocaMemoriaMapeada([](void *pCorpo) { (*static_cast<Tipo *>(pCorpo))(); }, &corpo);
}

}  // namespace plataforma

#endif
