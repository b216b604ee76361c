#ifndef KALVO_CORE_PLATFORM_LIVROTRAVAS_H
#define KALVO_CORE_PLATFORM_LIVROTRAVAS_H

#include <cstddef>

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

  /// Takes out the newest entry, which its holder has released or is about to release.
  static void Retira();

  /// Releases everything entered after `marca`, newest first. Called by the call guard on the faulting thread only.
  static void SoltaAte(std::size_t marca);

  /// Ends the process with a message when taking `secao` now would break the lock order. Debug builds only call it.
  static void VerificaOrdem(const SecaoCritica &secao);
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

}  // namespace plataforma

#endif
