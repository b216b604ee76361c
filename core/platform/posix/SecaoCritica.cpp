#include "core/platform/SecaoCritica.h"

#include <pthread.h>

#include <new>

#include "core/platform/Tipos.h"
#include "core/platform/posix/ErrosPosix.h"

namespace plataforma {
namespace {

pthread_mutex_t *Mutex(std::byte *area) {
  return std::launder(reinterpret_cast<pthread_mutex_t *>(area));
}

}  // namespace

SecaoCritica::SecaoCritica(NivelTrava eNivel) : m_eNivel(eNivel) {
  static_assert(sizeof(pthread_mutex_t) <= sizeof(m_area) && alignof(pthread_mutex_t) <= 16);
  pthread_mutexattr_t atributos;
  ::pthread_mutexattr_init(&atributos);
  ::pthread_mutexattr_settype(&atributos, PTHREAD_MUTEX_RECURSIVE);
  const int erro = ::pthread_mutex_init(new (m_area) pthread_mutex_t, &atributos);
  ::pthread_mutexattr_destroy(&atributos);
  if (erro != 0) {
    throw CodigoWin32(ErroWin32DeErrno(erro));
  }
}

SecaoCritica::~SecaoCritica() {
  ::pthread_mutex_destroy(Mutex(m_area));
}

void SecaoCritica::Entra() {
  ::pthread_mutex_lock(Mutex(m_area));
}

void SecaoCritica::Sai() {
  ::pthread_mutex_unlock(Mutex(m_area));
}

}  // namespace plataforma
