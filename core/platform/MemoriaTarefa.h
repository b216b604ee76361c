#ifndef KALVO_CORE_PLATFORM_MEMORIATAREFA_H
#define KALVO_CORE_PLATFORM_MEMORIATAREFA_H

#include <cstddef>

namespace plataforma {

/// Memory that crosses the interface: from the component platform's task allocator, so that a client in another module
/// or process frees it. Null when there is none. Any thread may call.
void *AlocaTarefa(std::size_t bytes);

/// Frees what AlocaTarefa gave; null does nothing.
void LiberaTarefa(void *pMemoria);

}  // namespace plataforma

#endif
