#ifndef KALVO_TESTS_APOIO_RELOGIOFALSO_H
#define KALVO_TESTS_APOIO_RELOGIOFALSO_H

#include <atomic>
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

  std::uint32_t Ticks() override { return m_ticks += m_passo; }
  plataforma::CamposData HoraLocal() override { return m_horaLocal; }
  bool LocalParaUtc(std::uint64_t local, std::uint64_t *puiUtc, std::uint32_t *puiErroSO) override {
    *puiErroSO = 87;
    *puiUtc = local + m_deslocamentoUtc;
    return m_bLocalParaUtc;
  }

  /// What the clock shows; to be set while no other thread uses it.
  std::atomic<std::uint32_t> m_ticks = 1000;
  std::uint32_t m_passo = 0;  ///< between two looks at the clock
  plataforma::CamposData m_horaLocal{2025, 11, 5, 21, 9, 5, 7, 42};
  std::uint64_t m_deslocamentoUtc = std::uint64_t{3} * 3600 * 10000000;
  bool m_bLocalParaUtc = true;

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
