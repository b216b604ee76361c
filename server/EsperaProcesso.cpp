#include "server/EsperaProcesso.h"

#include <atomic>
#include <utility>

/// Shared with the waiting thread, which may run while the wait is being destroyed.
struct CEsperaProcesso::Aviso {
  std::function<void()> aoTerminar;
  std::atomic<bool> bDisparou{false};
};

std::unique_ptr<CEsperaProcesso> CEsperaProcesso::Comeca(DWORD idProcesso, std::function<void()> aoTerminar) {
  const HANDLE hProcesso = OpenProcess(SYNCHRONIZE, FALSE, idProcesso);
  if (hProcesso == nullptr) {
    return nullptr;
  }
  std::unique_ptr<CEsperaProcesso> spEspera(new CEsperaProcesso(idProcesso, hProcesso));
  return spEspera->Registra(std::move(aoTerminar)) ? std::move(spEspera) : nullptr;
}

CEsperaProcesso::~CEsperaProcesso() {
  // When the answer is that no callback is outstanding, it either ran to its end or never will.
  if (m_hEspera != nullptr && UnregisterWaitEx(m_hEspera, nullptr) && !m_spAviso->bDisparou.load()) {
    delete m_pReferencia;
  }
  CloseHandle(m_hProcesso);
}

bool CEsperaProcesso::Registra(std::function<void()> aoTerminar) {
  m_spAviso = std::make_shared<Aviso>();
  m_spAviso->aoTerminar = std::move(aoTerminar);
  m_pReferencia = new std::shared_ptr<Aviso>(m_spAviso);
  if (!RegisterWaitForSingleObject(&m_hEspera, m_hProcesso, AoTerminar, m_pReferencia, INFINITE,
                                   WT_EXECUTEONLYONCE | WT_EXECUTELONGFUNCTION)) {
    m_hEspera = nullptr;
    delete m_pReferencia;
  }
  return m_hEspera != nullptr;
}

void CALLBACK CEsperaProcesso::AoTerminar(void *pReferencia, BOOLEAN /*bTempo*/) {
  const std::unique_ptr<std::shared_ptr<Aviso>> spReferencia(static_cast<std::shared_ptr<Aviso> *>(pReferencia));
  (*spReferencia)->bDisparou.store(true);
  (*spReferencia)->aoTerminar();
}
