#include "server/VigiaCliente.h"

#include <objbase.h>

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

CVigiaCliente::CVigiaCliente(IObjetoVigiado &objeto) : m_spEstado(std::make_shared<Estado>()) {
  m_spEstado->pObjeto = &objeto;
}

CVigiaCliente::~CVigiaCliente() {
  {
    const std::lock_guard<std::mutex> trava(m_spEstado->mutex);
    m_spEstado->pObjeto = nullptr;
  }
  // Without waiting for the callback: it may be this very thread, or one that waits for a lock this thread holds. When
  // the answer is that no callback is outstanding, it either ran to its end or never will.
  if (m_hEspera != nullptr && UnregisterWaitEx(m_hEspera, nullptr) && !m_spEstado->bDisparou.load()) {
    delete m_pReferenciaEspera;
  }
  if (m_hProcesso != nullptr) {
    CloseHandle(m_hProcesso);
  }
}

void CALLBACK CVigiaCliente::AoTerminarCliente(void *pReferencia, BOOLEAN /*bTempo*/) {
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

void CVigiaCliente::Comeca() {
  const unsigned long pid = PidDoCliente();
  if (pid == 0 || pid == GetCurrentProcessId()) {
    return;
  }
  m_hProcesso = OpenProcess(SYNCHRONIZE, FALSE, pid);
  if (m_hProcesso == nullptr) {
    return;
  }
  m_pReferenciaEspera = new Referencia(m_spEstado);
  if (!RegisterWaitForSingleObject(&m_hEspera, m_hProcesso, AoTerminarCliente, m_pReferenciaEspera, INFINITE,
                                   WT_EXECUTEONLYONCE | WT_EXECUTELONGFUNCTION)) {
    m_hEspera = nullptr;
    delete m_pReferenciaEspera;
  }
}
