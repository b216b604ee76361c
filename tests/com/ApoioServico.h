#ifndef KALVO_TESTS_COM_APOIOSERVICO_H
#define KALVO_TESTS_COM_APOIOSERVICO_H

#include <gtest/gtest.h>

#include <functional>
#include <thread>
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

/// A second caller of the service. All its calls come from one thread: of the tens of thousands that a series of faults
/// would need, Wine and the compiler's runtime lose one now and then, and with it the whole test.
class OutroChamador {
public:
  OutroChamador() : m_thread([this] { Atende(); }) {}
  ~OutroChamador() {
    m_chamada = nullptr;
    SetEvent(m_hPedido.get());
    m_thread.join();
  }
  OutroChamador(const OutroChamador &) = delete;
  OutroChamador &operator=(const OutroChamador &) = delete;

  /// Runs `chamada` there and returns its result. Taking more than a second is a failure; one that does not come back
  /// within the time limit ends the test program, which could not end by itself any more.
  HRESULT EmUmSegundo(std::function<HRESULT()> chamada) {
    m_chamada = std::move(chamada);
    SetEvent(m_hPedido.get());
    if (WaitForSingleObject(m_hFeito.get(), 1000) != WAIT_OBJECT_0) {
      ADD_FAILURE() << "still waiting for a lock";
      if (WaitForSingleObject(m_hFeito.get(), kPrazo) != WAIT_OBJECT_0) {
        TerminateProcess(GetCurrentProcess(), 1);
      }
    }
    return m_hr;
  }

private:
  void Atende() {
    while (WaitForSingleObject(m_hPedido.get(), INFINITE) == WAIT_OBJECT_0 && m_chamada) {
      m_hr = m_chamada();
      SetEvent(m_hFeito.get());
    }
  }

  Handle m_hPedido{CreateEventA(nullptr, FALSE, FALSE, nullptr)};
  Handle m_hFeito{CreateEventA(nullptr, FALSE, FALSE, nullptr)};
  std::function<HRESULT()> m_chamada;
  HRESULT m_hr = S_OK;
  std::thread m_thread;
};

}  // namespace apoiocom

#endif
