#include "server/MonitorEncerramento.h"

#include <objbase.h>

CMonitorEncerramento::CMonitorEncerramento(CContagemModulo &contagem, DWORD idPrincipal, DWORD msPrimeiroUso)
    : m_contagem(contagem),
      m_idPrincipal(idPrincipal),
      m_msPrimeiroUso(msPrimeiroUso),
      m_parar(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {
  if (!m_parar) {
    throw HRESULT_FROM_WIN32(GetLastError());
  }
  m_thread = std::thread([this] { Executa(); });
}

CMonitorEncerramento::~CMonitorEncerramento() {
  SetEvent(m_parar.get());
  m_thread.join();
}

CMonitorEncerramento::Espera CMonitorEncerramento::EsperaZerar(DWORD ms) const {
  const HANDLE eventos[] = {m_parar.get(), m_contagem.EventoZerou()};
  switch (WaitForMultipleObjects(2, eventos, FALSE, ms)) {
    case WAIT_OBJECT_0 + 1:
      return Espera::Zerou;
    case WAIT_TIMEOUT:
      return Espera::Tempo;
    default:
      return Espera::Parar;
  }
}

/// Waits until the count fell to zero and kTempoSemUso passed without its falling again, or until it did not fall
/// within `msZerar`; false when told to stop.
bool CMonitorEncerramento::EsperaSemUso(DWORD msZerar) const {
  Espera resultado = EsperaZerar(msZerar);
  while (resultado == Espera::Zerou) {
    m_contagem.LimpaAtividade();
    resultado = EsperaZerar(kTempoSemUso);
  }
  return resultado == Espera::Tempo;
}

void CMonitorEncerramento::Executa() const {
  for (DWORD msZerar = m_msPrimeiroUso; EsperaSemUso(msZerar); msZerar = INFINITE) {
    if (m_contagem.EmUso()) {
      continue;
    }
    // An activation may fall between the test and the suspension; once suspended, none can, so the second test counts.
    CoSuspendClassObjects();
    if (!m_contagem.EmUso()) {
      PostThreadMessageA(m_idPrincipal, WM_QUIT, 0, 0);
      return;
    }
    // A class left suspended would make the next client start a second process, which finds the files taken.
    CoResumeClassObjects();
  }
}
