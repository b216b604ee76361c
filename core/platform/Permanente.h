#ifndef KALVO_CORE_PLATFORM_PERMANENTE_H
#define KALVO_CORE_PLATFORM_PERMANENTE_H

#include <cstddef>
#include <new>

namespace plataforma {

/// The one object of its type, made at first use and never destroyed, so that code that runs late at process exit may
/// still use it. Needs no memory from the heap and so cannot fail for want of it.
template <class T>
T &Permanente() {
  alignas(T) static std::byte area[sizeof(T)];
  static T *const objeto = new (area) T;
  return *objeto;
}

}  // namespace plataforma

#endif
