#ifndef KALVO_CORE_PLATFORM_TRAVAS_H
#define KALVO_CORE_PLATFORM_TRAVAS_H

#include "core/platform/SecaoCompartilhada.h"
#include "core/platform/SecaoCritica.h"

namespace plataforma {

// The guards under which the system holds its locks. Each enters its lock in the thread's ledger (LivroDaThread), from
// which the lock is released when a machine fault abandons the stack. Builds with KALVO_VERIFICA_TRAVAS end the process
// with a message where a lock is taken out of order; other builds do not look.

/// Ends the process with a message when taking `secao` now would break the lock order. The guards below call it where
/// KALVO_VERIFICA_TRAVAS is on.
void VerificaOrdem(const SecaoCritica &secao);

/// Holds a critical section for a scope. The only way in which the system takes one.
class CQZTrava {
public:
  explicit CQZTrava(SecaoCritica &secao);
  ~CQZTrava();
  CQZTrava(const CQZTrava &) = delete;
  CQZTrava &operator=(const CQZTrava &) = delete;

private:
  SecaoCritica &m_secao;
};

/// Holds a shared lock for reading for a scope. Nothing else is locked, and no file touched, meanwhile.
class CQZTravaLeitura {
public:
  explicit CQZTravaLeitura(SecaoCompartilhada &secao);
  ~CQZTravaLeitura();
  CQZTravaLeitura(const CQZTravaLeitura &) = delete;
  CQZTravaLeitura &operator=(const CQZTravaLeitura &) = delete;

private:
  SecaoCompartilhada &m_secao;
};

/// Holds a shared lock for writing for a scope; otherwise like CQZTravaLeitura. A fault meanwhile leaves the lock
/// Suspeita.
class CQZTravaEscrita {
public:
  explicit CQZTravaEscrita(SecaoCompartilhada &secao);
  ~CQZTravaEscrita();
  CQZTravaEscrita(const CQZTravaEscrita &) = delete;
  CQZTravaEscrita &operator=(const CQZTravaEscrita &) = delete;

private:
  SecaoCompartilhada &m_secao;
};

}  // namespace plataforma

#endif
