#include "core/platform/SecaoCompartilhada.h"

#include <cstdint>
#include <mutex>
#include <new>

namespace plataforma {
namespace {

/// The system's own shared mutex prefers readers: two of them that search without end keep a writer out for seconds.
struct Trava {
  std::mutex escritores;                   ///< held by the writer that has or waits for the lock
  std::atomic<std::uint32_t> leitores{0};  ///< how many readers have it, and kEscritor
};

/// A writer has the lock or waits for the readers to leave.
constexpr std::uint32_t kEscritor = 0x80000000;

/// A holder is mostly gone within so many looks at it; the thread sleeps after that.
constexpr int kOlhadas = 64;

Trava &Em(std::byte *area) {
  return *std::launder(reinterpret_cast<Trava *>(area));
}

/// Waits until `leitores` may have another value than `visto`.
void Aguarda(Trava &trava, std::uint32_t visto, int *piOlhadas) {
  if (++*piOlhadas < kOlhadas) {
    __builtin_ia32_pause();
  } else {
    trava.leitores.wait(visto, std::memory_order_relaxed);
  }
}

}  // namespace

SecaoCompartilhada::SecaoCompartilhada() {
  static_assert(sizeof(Trava) <= sizeof(m_area) && alignof(Trava) <= 16);
  new (m_area) Trava;
}

SecaoCompartilhada::~SecaoCompartilhada() {
  Em(m_area).~Trava();
}

void SecaoCompartilhada::lock() {
  Trava &trava = Em(m_area);
  trava.escritores.lock();
  int iOlhadas = 0;
  for (std::uint32_t visto = trava.leitores.fetch_or(kEscritor, std::memory_order_acquire) | kEscritor;
       visto != kEscritor; visto = trava.leitores.load(std::memory_order_acquire)) {
    Aguarda(trava, visto, &iOlhadas);
  }
}

void SecaoCompartilhada::unlock() {
  Trava &trava = Em(m_area);
  trava.leitores.fetch_and(~kEscritor, std::memory_order_release);
  trava.leitores.notify_all();
  trava.escritores.unlock();
}

void SecaoCompartilhada::lock_shared() {
  Trava &trava = Em(m_area);
  int iOlhadas = 0;
  for (std::uint32_t visto = trava.leitores.load(std::memory_order_relaxed);;) {
    if ((visto & kEscritor) != 0) {
      Aguarda(trava, visto, &iOlhadas);
      visto = trava.leitores.load(std::memory_order_relaxed);
    } else if (trava.leitores.compare_exchange_weak(visto, visto + 1, std::memory_order_acquire,
                                                    std::memory_order_relaxed)) {
      return;
    }
  }
}

void SecaoCompartilhada::unlock_shared() {
  Trava &trava = Em(m_area);
  if (trava.leitores.fetch_sub(1, std::memory_order_release) == (kEscritor | 1)) {
    trava.leitores.notify_all();
  }
}

}  // namespace plataforma
