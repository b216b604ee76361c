#ifndef KALVO_CORE_PLATFORM_LIVROTRAVAS_H
#define KALVO_CORE_PLATFORM_LIVROTRAVAS_H

#include <cstddef>

#include "core/platform/SecaoCompartilhada.h"
#include "core/platform/SecaoCritica.h"

namespace plataforma {

/// The calling thread's ledger of what it holds, newest last. A machine fault unwinds the stack without running
/// destructors; the call guard then releases from this ledger what the destructors would have released.
///
/// Entries point to long-lived objects (the lock itself), never to guard objects on the abandoned stack.
class LivroTravas {
public:
  using Solta = void (*)(void *objeto);

  /// How many entries one thread may hold; more is a programming error and ends the process.
  static constexpr std::size_t kMaximo = 64;

  /// Number of entries now: the mark to which SoltaAte returns.
  static std::size_t Marca();

  /// Enters an object that is held from now on.
  static void Anota(void *objeto, Solta solta);

  /// Takes out the newest entry of an object, which its holder has released or is about to release. The order of the
  /// others stays; an object without an entry is no matter.
  static void Retira(const void *objeto);

  /// Releases everything entered after `marca`, newest first. Called by the call guard on the faulting thread only. An
  /// entry is taken out before it is released: where a release faults itself, calling again goes on with the next one.
  static void SoltaAte(std::size_t marca);

  /// Ends the process with a message when taking `secao` now would break the lock order. Debug builds only call it.
  static void VerificaOrdem(const SecaoCritica &secao);
  /// The same for a shared lock, which is innermost: nothing is taken under it, no other shared lock either.
  static void VerificaOrdemCompartilhada();
};

/// Has an object in the calling thread's ledger for a scope, which one thread opens and closes.
class CQZNoLivro {
public:
  CQZNoLivro(void *objeto, LivroTravas::Solta solta) : m_objeto(objeto) { LivroTravas::Anota(objeto, solta); }
  ~CQZNoLivro() { LivroTravas::Retira(m_objeto); }
  CQZNoLivro(const CQZNoLivro &) = delete;
  CQZNoLivro &operator=(const CQZNoLivro &) = delete;

private:
  const void *m_objeto;
};

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
