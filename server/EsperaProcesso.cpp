#include "server/EsperaProcesso.h"

#include <atomic>
#include <utility>

/// Shared with the waiting thread, which may run while the wait is being destroyed.
struct CEsperaProcesso::Aviso {
  std::function<void()> aoTerminar;
  std::atomic<bool> bDisparou{false};
  /// The system's share: taken over by the callback when it begins, given back where it never will.
  std::shared_ptr<Aviso> spDoSistema;
};

std::unique_ptr<CEsperaProcesso> CEsperaProcesso::Comeca(DWORD idProcesso, std::function<void()> aoTerminar) {
  plataforma::PosseHandle processo(OpenProcess(SYNCHRONIZE, FALSE, idProcesso));
  if (!processo) {
    return nullptr;
  }
  std::unique_ptr<CEsperaProcesso> spEspera(new CEsperaProcesso(idProcesso, std::move(processo)));
  return spEspera->Registra(std::move(aoTerminar)) ? std::move(spEspera) : nullptr;
}

CEsperaProcesso::~CEsperaProcesso() {
  // When the answer is that no callback is outstanding, it either ran to its end or never will.
  if (m_hEspera != nullptr && UnregisterWaitEx(m_hEspera, nullptr) && !m_spAviso->bDisparou.load()) {
    m_spAviso->spDoSistema.reset();
  }
}

bool CEsperaProcesso::Registra(std::function<void()> aoTerminar) {
  m_spAviso = std::make_shared<Aviso>();
  m_spAviso->aoTerminar = std::move(aoTerminar);
  m_spAviso->spDoSistema = m_spAviso;
  if (!RegisterWaitForSingleObject(&m_hEspera, m_processo.get(), AoTerminar, m_spAviso.get(), INFINITE,
                                   WT_EXECUTEONLYONCE | WT_EXECUTELONGFUNCTION)) {
    m_hEspera = nullptr;
    m_spAviso->spDoSistema.reset();
  }
  return m_hEspera != nullptr;
}

void CALLBACK CEsperaProcesso::AoTerminar(void *pAviso, BOOLEAN /*bTempo*/) {
  const std::shared_ptr<Aviso> spAviso = std::move(static_cast<Aviso *>(pAviso)->spDoSistema);
  spAviso->bDisparou.store(true);
  spAviso->aoTerminar();
}
