#ifndef KALVO_SERVER_ESPERAPROCESSO_H
#define KALVO_SERVER_ESPERAPROCESSO_H

#include <windows.h>

#include <functional>
#include <memory>
#include <utility>

#include "core/platform/win32/Posses.h"

/// The wait for the end of a process, on a thread of the system's pool.
///
/// As long as the object lives the system gives the process's number to no other.
class CEsperaProcesso {
public:
  /// Waits for the process with this number; null when the system does not allow it. `aoTerminar` is called once, when
  /// the process ends, unless the object is destroyed before.
  static std::unique_ptr<CEsperaProcesso> Comeca(DWORD idProcesso, std::function<void()> aoTerminar);

  /// Does not wait for a call of `aoTerminar` that is under way: it may run on that very thread.
  ~CEsperaProcesso();
  CEsperaProcesso(const CEsperaProcesso &) = delete;
  CEsperaProcesso &operator=(const CEsperaProcesso &) = delete;

  DWORD IdProcesso() const { return m_idProcesso; }
  bool Terminou() const { return WaitForSingleObject(m_processo.get(), 0) == WAIT_OBJECT_0; }

private:
  struct Aviso;

  CEsperaProcesso(DWORD idProcesso, plataforma::PosseHandle processo)
      : m_idProcesso(idProcesso), m_processo(std::move(processo)) {}
  bool Registra(std::function<void()> aoTerminar);
  static void CALLBACK AoTerminar(void *pAviso, BOOLEAN bTempo);

  DWORD m_idProcesso;
  plataforma::PosseHandle m_processo;
  HANDLE m_hEspera = nullptr;
  std::shared_ptr<Aviso> m_spAviso;
};

#endif
