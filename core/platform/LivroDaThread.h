#ifndef KALVO_CORE_PLATFORM_LIVRODATHREAD_H
#define KALVO_CORE_PLATFORM_LIVRODATHREAD_H

#include <cstddef>
#include <span>

namespace plataforma {

/// The calling thread's ledger of what it holds, newest last. A machine fault unwinds the stack without running
/// destructors; the call guard then releases from this ledger what the destructors would have released.
///
/// Entries point to long-lived objects (the lock itself), never to guard objects on the abandoned stack.
class LivroDaThread {
public:
  using Solta = void (*)(void *pObjeto);

  /// How many entries one thread may hold; more is a programming error and ends the process.
  static constexpr std::size_t kMaximo = 64;

  /// Number of entries now: the mark to which SoltaAte returns.
  static std::size_t Marca();

  /// Enters an object that is held from now on.
  static void Anota(void *pObjeto, Solta solta);

  /// Takes out the newest entry of an object, which its holder has released or is about to release. The order of the
  /// others stays; an object without an entry is no matter.
  static void Retira(const void *pObjeto);

  /// Releases everything entered after `marca`, newest first. Called by the call guard on the faulting thread only. An
  /// entry is taken out before it is released: where a release faults itself, calling again goes on with the next one.
  static void SoltaAte(std::size_t marca);

  /// One entry.
  struct Anotacao {
    void *objeto;
    Solta solta;
  };
  /// The entries now, oldest first; valid until the next change.
  static std::span<const Anotacao> Anotacoes();
};

/// Has an object in the calling thread's ledger for a scope, which one thread opens and closes.
class CQZNoLivro {
public:
  CQZNoLivro(void *pObjeto, LivroDaThread::Solta solta) : m_objeto(pObjeto) { LivroDaThread::Anota(pObjeto, solta); }
  ~CQZNoLivro() { LivroDaThread::Retira(m_objeto); }
  CQZNoLivro(const CQZNoLivro &) = delete;
  CQZNoLivro &operator=(const CQZNoLivro &) = delete;

private:
  const void *m_objeto;
};

}  // namespace plataforma

#endif
