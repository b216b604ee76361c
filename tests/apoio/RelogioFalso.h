#ifndef KALVO_TESTS_APOIO_RELOGIOFALSO_H
#define KALVO_TESTS_APOIO_RELOGIOFALSO_H

#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "core/platform/Relogio.h"

namespace apoio {

/// A clock on which every wait is over at once. Any thread may call, several at once.
class RelogioFalso final : public plataforma::IRelogio {
public:
  /// `aoEsperar`, when given, is called on the waiting thread at each wait with its length.
  explicit RelogioFalso(std::function<void(std::uint32_t)> aoEsperar = {}) : m_aoEsperar(std::move(aoEsperar)) {}

  void Espera(std::uint32_t milissegundos) override {
    {
      const std::lock_guard<std::mutex> guarda(m_mutex);
      m_esperas.push_back(milissegundos);
    }
    if (m_aoEsperar) {
      m_aoEsperar(milissegundos);
    }
  }

  /// The waits asked for so far, oldest first.
  std::vector<std::uint32_t> Esperas() const {
    const std::lock_guard<std::mutex> guarda(m_mutex);
    return m_esperas;
  }

private:
  std::function<void(std::uint32_t)> m_aoEsperar;
  mutable std::mutex m_mutex;
  std::vector<std::uint32_t> m_esperas;
};

}  // namespace apoio

#endif
