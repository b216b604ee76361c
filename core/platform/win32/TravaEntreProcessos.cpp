#include "core/platform/TravaEntreProcessos.h"

#include <windows.h>

#include <sddl.h>

namespace plataforma {
namespace {

/// Lets every signed-in account wait for the lock and give it up: two servers on one data directory may run under
/// different accounts, and the default would shut the second one out.
class DescritorAberto {
public:
  DescritorAberto() {
    const char *const sddl = "D:(A;;GA;;;SY)(A;;GA;;;OW)(A;;0x00100001;;;AU)";  // SYNCHRONIZE | MUTEX_MODIFY_STATE
    if (!::ConvertStringSecurityDescriptorToSecurityDescriptorA(sddl, SDDL_REVISION_1, &m_descritor, nullptr)) {
      m_descritor = nullptr;
    }
    m_atributos = {sizeof(m_atributos), m_descritor, FALSE};
  }
  ~DescritorAberto() { ::LocalFree(m_descritor); }
  DescritorAberto(const DescritorAberto &) = delete;
  DescritorAberto &operator=(const DescritorAberto &) = delete;

  SECURITY_ATTRIBUTES *Atributos() { return &m_atributos; }

private:
  PSECURITY_DESCRIPTOR m_descritor = nullptr;
  SECURITY_ATTRIBUTES m_atributos{};
};

HANDLE CriaMutex(const CString &nome) {
  DescritorAberto descritor;
  return ::CreateMutexExA(descritor.Atributos(), nome.c_str(), 0, SYNCHRONIZE | MUTEX_MODIFY_STATE);
}

class TravaMutex final : public ITravaEntreProcessos {
public:
  explicit TravaMutex(const CString &nome) : m_hMutex(CriaMutex("Global\\" + nome)) {
    if (m_hMutex == nullptr) {
      m_hMutex = CriaMutex("Local\\" + nome);
    }
  }
  ~TravaMutex() override {
    if (m_hMutex != nullptr) {
      ::CloseHandle(m_hMutex);
    }
  }
  TravaMutex(const TravaMutex &) = delete;
  TravaMutex &operator=(const TravaMutex &) = delete;

  bool Toma(std::uint32_t limiteMs) override {
    if (m_hMutex == nullptr) {
      return false;
    }
    // Abandoned: the former holder died, and the lock is ours.
    const DWORD espera = ::WaitForSingleObject(m_hMutex, limiteMs);
    return espera == WAIT_OBJECT_0 || espera == WAIT_ABANDONED;
  }

  void Solta() override { ::ReleaseMutex(m_hMutex); }

private:
  HANDLE m_hMutex;
};

}  // namespace

std::unique_ptr<ITravaEntreProcessos> CriaTravaEntreProcessos(const CString &nome) {
  return std::make_unique<TravaMutex>(nome);
}

}  // namespace plataforma
