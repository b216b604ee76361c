#include "core/platform/SecaoCritica.h"

#include <windows.h>

#include <new>

#include "core/platform/Tipos.h"

namespace plataforma {
namespace {

CRITICAL_SECTION *Secao(std::byte *area) {
  return std::launder(reinterpret_cast<CRITICAL_SECTION *>(area));
}

}  // namespace

SecaoCritica::SecaoCritica(NivelTrava eNivel) : m_eNivel(eNivel) {
  static_assert(sizeof(CRITICAL_SECTION) <= sizeof(m_area) && alignof(CRITICAL_SECTION) <= 16);
  if (!::InitializeCriticalSectionAndSpinCount(new (m_area) CRITICAL_SECTION, 0)) {
    throw CodigoWin32(::GetLastError());
  }
}

SecaoCritica::~SecaoCritica() {
  ::DeleteCriticalSection(Secao(m_area));
}

void SecaoCritica::Entra() {
  ::EnterCriticalSection(Secao(m_area));
}

void SecaoCritica::Sai() {
  ::LeaveCriticalSection(Secao(m_area));
}

}  // namespace plataforma
