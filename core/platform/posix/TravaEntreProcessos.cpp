#include "core/platform/TravaEntreProcessos.h"

#include <fcntl.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <thread>

#include "core/platform/posix/UsoArquivo.h"

namespace plataforma {
namespace {

std::string ArquivoDasTravas() {
  const char *const temp = std::getenv("TMPDIR");
  return std::string(temp != nullptr && *temp != '\0' ? temp : "/tmp") + "/kalvo.travas";
}

/// The kernel's lock on one byte of a file that all locks of the machine share; the name chooses the byte. The file is
/// never removed: removing it would let two holders lock two files of one name.
class TravaDeByte final : public ITravaEntreProcessos {
public:
  explicit TravaDeByte(const CString &sNome)
      : m_descritor(::open(ArquivoDasTravas().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)),
        m_byte(static_cast<off_t>(std::hash<CString>()(sNome) >> 2)) {}

  bool Toma(std::uint32_t limiteMs) override {
    if (!m_descritor.Valido()) {
      return false;
    }
    // The kernel's wait knows no limit, hence the polling.
    const auto fim = std::chrono::steady_clock::now() + std::chrono::milliseconds(limiteMs);
    while (!Pede(F_WRLCK)) {
      if (std::chrono::steady_clock::now() >= fim) {
        return false;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
  }

  void Solta() override { Pede(F_UNLCK); }

private:
  bool Pede(short tipo) {
    struct flock faixa {};
    faixa.l_type = tipo;
    faixa.l_whence = SEEK_SET;
    faixa.l_start = m_byte;
    faixa.l_len = 1;
    return ::fcntl(m_descritor.Numero(), F_OFD_SETLK, &faixa) == 0;
  }

  Descritor m_descritor;
  off_t m_byte;
};

}  // namespace

std::unique_ptr<ITravaEntreProcessos> CriaTravaEntreProcessos(const CString &sNome) {
  return std::make_unique<TravaDeByte>(sNome);
}

}  // namespace plataforma
