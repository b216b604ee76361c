#include "core/platform/SecaoCompartilhada.h"

#include <windows.h>

#include <memory>
#include <new>

namespace plataforma {
namespace {

SRWLOCK *Trava(std::byte *area) {
  return std::launder(reinterpret_cast<SRWLOCK *>(area));
}

}  // namespace

SecaoCompartilhada::SecaoCompartilhada() {
  static_assert(sizeof(SRWLOCK) <= sizeof(m_area) && alignof(SRWLOCK) <= 16);
  ::InitializeSRWLock(new (m_area) SRWLOCK);
}

SecaoCompartilhada::~SecaoCompartilhada() {
  std::destroy_at(Trava(m_area));
}

void SecaoCompartilhada::lock() {
  ::AcquireSRWLockExclusive(Trava(m_area));
}

void SecaoCompartilhada::unlock() {
  ::ReleaseSRWLockExclusive(Trava(m_area));
}

void SecaoCompartilhada::lock_shared() {
  ::AcquireSRWLockShared(Trava(m_area));
}

void SecaoCompartilhada::unlock_shared() {
  ::ReleaseSRWLockShared(Trava(m_area));
}

}  // namespace plataforma
