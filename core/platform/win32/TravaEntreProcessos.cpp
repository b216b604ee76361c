#include "core/platform/TravaEntreProcessos.h"

#include <windows.h>

#include <sddl.h>

#include "core/platform/win32/Posses.h"

namespace plataforma {
namespace {

/// Lets every signed-in account wait for the lock and give it up: two servers on one data directory may run under
/// different accounts, and the default would shut the second one out.
class DescritorAberto {
public:
  DescritorAberto() {
    const char *const sddl = "D:(A;;GA;;;SY)(A;;GA;;;OW)(A;;0x00100001;;;AU)";  // SYNCHRONIZE | MUTEX_MODIFY_STATE
    PSECURITY_DESCRIPTOR pDescritor = nullptr;
    if (::ConvertStringSecurityDescriptorToSecurityDescriptorA(sddl, SDDL_REVISION_1, &pDescritor, nullptr)) {
      m_descritor.reset(pDescritor);
    }
    m_atributos = {sizeof(m_atributos), m_descritor.get(), FALSE};
  }

  SECURITY_ATTRIBUTES *Atributos() { return &m_atributos; }

private:
  PosseLocal m_descritor;
  SECURITY_ATTRIBUTES m_atributos{};
};

PosseHandle CriaMutex(const CString &sNome) {
  DescritorAberto descritor;
  return PosseHandle(::CreateMutexExA(descritor.Atributos(), sNome.c_str(), 0, SYNCHRONIZE | MUTEX_MODIFY_STATE));
}

class TravaMutex final : public ITravaEntreProcessos {
public:
  explicit TravaMutex(const CString &sNome) : m_mutex(CriaMutex("Global\\" + sNome)) {
    if (!m_mutex) {
      m_mutex = CriaMutex("Local\\" + sNome);
    }
  }

  bool Toma(std::uint32_t limiteMs) override {
    if (!m_mutex) {
      return false;
    }
    // Abandoned: the former holder died, and the lock is ours.
    const DWORD espera = ::WaitForSingleObject(m_mutex.get(), limiteMs);
    return espera == WAIT_OBJECT_0 || espera == WAIT_ABANDONED;
  }

  void Solta() override { ::ReleaseMutex(m_mutex.get()); }

private:
  PosseHandle m_mutex;
};

}  // namespace

std::unique_ptr<ITravaEntreProcessos> CriaTravaEntreProcessos(const CString &sNome) {
  return std::make_unique<TravaMutex>(sNome);
}

}  // namespace plataforma
