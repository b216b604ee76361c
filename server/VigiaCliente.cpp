#include "server/VigiaCliente.h"

#include <objbase.h>

#include <mutex>
#include <new>

namespace {

using ConsultaPid = LONG(WINAPI *)(void *hLigacao, unsigned long *pPid);

/// Process that makes the call which this thread is serving; 0 when it serves none. Looked up by name: the routine is
/// exported by the runtime without a promise that it stays.
unsigned long PidDoCliente() {
  static const auto consulta = reinterpret_cast<ConsultaPid>(
      reinterpret_cast<void *>(GetProcAddress(GetModuleHandleA("rpcrt4.dll"), "I_RpcBindingInqLocalClientPID")));
  unsigned long pid = 0;
  return consulta != nullptr && consulta(nullptr, &pid) == RPC_S_OK ? pid : 0;
}

}  // namespace

class CEsperaCliente {
public:
  /// Takes over the handle of the process, unless it throws.
  CEsperaCliente(IObjetoVigiado &objeto, HANDLE hProcesso)
      : m_hProcesso(hProcesso), m_spEstado(std::make_shared<Estado>()), m_pReferencia(new Referencia(m_spEstado)) {
    m_spEstado->pObjeto = &objeto;
    if (!RegisterWaitForSingleObject(&m_hEspera, m_hProcesso, AoTerminar, m_pReferencia, INFINITE,
                                     WT_EXECUTEONLYONCE | WT_EXECUTELONGFUNCTION)) {
      m_hEspera = nullptr;
      delete m_pReferencia;
    }
  }

  ~CEsperaCliente() {
    {
      const std::lock_guard<std::mutex> trava(m_spEstado->mutex);
      m_spEstado->pObjeto = nullptr;
    }
    // Without waiting for the callback: it may be this very thread, or one that waits for a lock this thread holds.
    // When the answer is that no callback is outstanding, it either ran to its end or never will.
    if (m_hEspera != nullptr && UnregisterWaitEx(m_hEspera, nullptr) && !m_spEstado->bDisparou.load()) {
      delete m_pReferencia;
    }
    CloseHandle(m_hProcesso);
  }
  CEsperaCliente(const CEsperaCliente &) = delete;
  CEsperaCliente &operator=(const CEsperaCliente &) = delete;

private:
  /// Shared with the waiting thread, which may run while the wait is being destroyed.
  struct Estado {
    std::mutex mutex;
    IObjetoVigiado *pObjeto;  // null once the wait is gone
    std::atomic<bool> bDisparou{false};
  };
  using Referencia = std::shared_ptr<Estado>;

  static void CALLBACK AoTerminar(void *pReferencia, BOOLEAN /*bTempo*/) {
    const std::unique_ptr<Referencia> spReferencia(static_cast<Referencia *>(pReferencia));
    Estado &estado = **spReferencia;
    estado.bDisparou.store(true);
    IUnknown *pVivo = nullptr;
    {
      const std::lock_guard<std::mutex> trava(estado.mutex);
      pVivo = estado.pObjeto != nullptr ? estado.pObjeto->SeguraSeVivo() : nullptr;
    }
    if (pVivo != nullptr) {
      CoDisconnectObject(pVivo, 0);
      pVivo->Release();
    }
  }

  HANDLE m_hProcesso;
  HANDLE m_hEspera = nullptr;
  Referencia m_spEstado;
  Referencia *m_pReferencia;  // belongs to the callback once that has begun
};

CVigiaCliente::CVigiaCliente(IObjetoVigiado &objeto) : m_objeto(objeto) {}

CVigiaCliente::~CVigiaCliente() = default;

void CVigiaCliente::Comeca() noexcept {
  const unsigned long ulPid = PidDoCliente();
  if (ulPid == 0 || ulPid == GetCurrentProcessId() || ulPid == m_ulPid) {
    return;
  }
  m_spEspera.reset();
  m_ulPid = ulPid;
  const HANDLE hProcesso = OpenProcess(SYNCHRONIZE, FALSE, ulPid);
  if (hProcesso == nullptr) {
    return;
  }
  try {
    m_spEspera = std::make_unique<CEsperaCliente>(m_objeto, hProcesso);
  } catch (const std::bad_alloc &) {
    CloseHandle(hProcesso);
  }
}
