#ifndef KALVO_SERVER_CONTAGEMMODULO_H
#define KALVO_SERVER_CONTAGEMMODULO_H

#include <windows.h>

#include <atomic>

#include "core/platform/win32/Posses.h"

/// What keeps the process alive: the service objects in use, the locks that clients put on the class object and the
/// creations under way. Any thread may call.
class CContagemModulo {
public:
  /// The count of this process.
  static CContagemModulo &DoProcesso();

  CContagemModulo();
  CContagemModulo(const CContagemModulo &) = delete;
  CContagemModulo &operator=(const CContagemModulo &) = delete;

  /// False when the system could not create the event; the process cannot serve then.
  bool Pronta() const { return m_zerou != nullptr; }

  void Trava();
  void Destrava();

  /// How many hold the process now.
  LONG Quantidade() const { return m_lQuantidade.load(); }

  /// True when something holds the process or held it since the last LimpaAtividade.
  bool EmUso() const { return m_bAtividade.load() || m_lQuantidade.load() != 0; }

  void LimpaAtividade() { m_bAtividade.store(false); }

  /// Auto-reset event, signalled whenever the count falls to zero.
  HANDLE EventoZerou() const { return m_zerou.get(); }

private:
  std::atomic<LONG> m_lQuantidade{0};
  std::atomic<bool> m_bAtividade{false};
  plataforma::PosseHandle m_zerou;
};

/// Holds the process for a scope.
class CUsoDoModulo {
public:
  CUsoDoModulo() { CContagemModulo::DoProcesso().Trava(); }
  ~CUsoDoModulo() { CContagemModulo::DoProcesso().Destrava(); }
  CUsoDoModulo(const CUsoDoModulo &) = delete;
  CUsoDoModulo &operator=(const CUsoDoModulo &) = delete;
};

#endif
