#ifndef KALVO_TESTS_COM_APOIOSERVICO_H
#define KALVO_TESTS_COM_APOIOSERVICO_H

#include <chrono>
#include <future>
#include <utility>

#include "server/QZDF_Veiculos.h"
#include "tests/com/ApoioCom.h"

// The service object within the test's own process.

namespace apoiocom {

/// A new service object; null when it is refused.
inline Veiculos NovoServico() {
  void *pObjeto = nullptr;
  CQZDF_Veiculos::Cria(nullptr, IID_IQZDF_Veiculos, &pObjeto);
  return Veiculos(static_cast<IQZDF_Veiculos *>(pObjeto));
}

/// A new service object that works for a company; null when either step fails.
inline Veiculos ServicoPara(const Empresa &empresa) {
  Veiculos spVeiculos = NovoServico();
  return spVeiculos && SUCCEEDED(Inicializa(*spVeiculos, empresa.Codigo())) ? std::move(spVeiculos) : nullptr;
}

inline int *volatile g_nulo = nullptr;
inline volatile int g_zero = 0;

/// A way for a statement to fail, and the result code that it comes to.
struct Falha {
  void (*executa)();
  std::uint32_t hr;
};
inline constexpr Falha kFalhasDeMaquina[] = {{[] { g_zero = 10 / g_zero; }, 0x8004EAD3},
                                             {[] { *g_nulo = 1; }, 0x8004EAC5}};

/// Runs `chama` on a thread of its own. Taking more than a second is a failure; one that never comes back is left to
/// the time limit of the test.
template <class Chamada>
HRESULT EmUmSegundo(Chamada chama) {
  std::future<HRESULT> hr = std::async(std::launch::async, chama);
  EXPECT_EQ(hr.wait_for(std::chrono::seconds(1)), std::future_status::ready) << "still waiting for a lock";
  return hr.get();
}

}  // namespace apoiocom

#endif
