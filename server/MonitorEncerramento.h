#ifndef KALVO_SERVER_MONITORENCERRAMENTO_H
#define KALVO_SERVER_MONITORENCERRAMENTO_H

#include <windows.h>

#include <thread>

#include "core/platform/win32/Posses.h"
#include "server/ContagemModulo.h"

/// Time without use after which the process ends, in milliseconds.
inline constexpr DWORD kTempoSemUso = 5000;

/// Time within which a process that was started for a client must have its first object, in milliseconds. The client
/// may have died meanwhile, or another process have served it.
inline constexpr DWORD kTempoPrimeiroUso = 30000;

/// Ends the message loop of a thread once the process has been out of use for a while. Runs on a thread of its own from
/// construction to destruction; destruction stops and joins it.
///
/// It begins by waiting for the count to fall to zero, for a limited time or for ever.
class CMonitorEncerramento {
public:
  /// Watches `contagem`; posts the quit message to thread `idPrincipal`, which must have a message queue. A process
  /// that is never used is ended after `msPrimeiroUso`, with INFINITE never. Throws HRESULT or std::system_error when
  /// the system cannot provide the event or the thread.
  CMonitorEncerramento(CContagemModulo &contagem, DWORD idPrincipal, DWORD msPrimeiroUso);
  ~CMonitorEncerramento();
  CMonitorEncerramento(const CMonitorEncerramento &) = delete;
  CMonitorEncerramento &operator=(const CMonitorEncerramento &) = delete;

private:
  enum class Espera { Zerou, Tempo, Parar };

  Espera EsperaZerar(DWORD ms) const;
  bool EsperaSemUso(DWORD msZerar) const;
  void Executa() const;

  CContagemModulo &m_contagem;
  DWORD m_idPrincipal;
  DWORD m_msPrimeiroUso;
  plataforma::PosseHandle m_parar;
  std::thread m_thread;
};

#endif
