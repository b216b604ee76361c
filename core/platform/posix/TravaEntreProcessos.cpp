#include "core/platform/TravaEntreProcessos.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace plataforma {
namespace {

std::string ArquivoDaTrava(const CString &nome) {
  const char *const temp = std::getenv("TMPDIR");
  return std::string(temp != nullptr && *temp != '\0' ? temp : "/tmp") + "/kalvo-" + nome + ".trava";
}

/// The kernel's lock on a file that is never removed: removing it would let two holders lock two files of one name.
class TravaFlock final : public ITravaEntreProcessos {
public:
  explicit TravaFlock(const CString &nome)
      : m_fd(::open(ArquivoDaTrava(nome).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {}
  ~TravaFlock() override {
    if (m_fd >= 0) {
      ::close(m_fd);
    }
  }
  TravaFlock(const TravaFlock &) = delete;
  TravaFlock &operator=(const TravaFlock &) = delete;

  bool Toma(std::uint32_t limiteMs) override {
    if (m_fd < 0) {
      return false;
    }
    // The kernel's wait knows no limit, hence the polling.
    const auto fim = std::chrono::steady_clock::now() + std::chrono::milliseconds(limiteMs);
    while (::flock(m_fd, LOCK_EX | LOCK_NB) != 0) {
      if (std::chrono::steady_clock::now() >= fim) {
        return false;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
  }

  void Solta() override { ::flock(m_fd, LOCK_UN); }

private:
  int m_fd;
};

}  // namespace

std::unique_ptr<ITravaEntreProcessos> CriaTravaEntreProcessos(const CString &nome) {
  return std::make_unique<TravaFlock>(nome);
}

}  // namespace plataforma
