#ifndef KALVO_CORE_PLATFORM_SECAOCOMPARTILHADA_H
#define KALVO_CORE_PLATFORM_SECAOCOMPARTILHADA_H

#include <atomic>
#include <cstddef>

namespace plataforma {

/// A lock within the process that many readers hold at once, or one writer alone. A writer that waits keeps new readers
/// out, so that readers never starve it. Not recursive, for readers neither: a thread that holds it and takes it again
/// waits for ever as soon as a writer waits.
///
/// The members have the standard names, so that the standard guards hold it. Where a machine fault may abandon the
/// holder's stack it is held through CQZTravaLeitura and CQZTravaEscrita (Travas.h).
class SecaoCompartilhada {
public:
  SecaoCompartilhada();
  ~SecaoCompartilhada();
  SecaoCompartilhada(const SecaoCompartilhada &) = delete;
  SecaoCompartilhada &operator=(const SecaoCompartilhada &) = delete;

  void lock();
  void unlock();
  void lock_shared();
  void unlock_shared();

  /// Lets go for a writer whose stack was abandoned: what the lock protects may be half changed.
  void AbandonaEscrita() {
    m_bSuspeita.store(true, std::memory_order_relaxed);
    unlock();
  }
  /// True from AbandonaEscrita to Confia, for whoever holds the lock.
  bool Suspeita() const { return m_bSuspeita.load(std::memory_order_relaxed); }
  /// What the lock protects has been made anew. With the lock held for writing.
  void Confia() { m_bSuspeita.store(false, std::memory_order_relaxed); }

private:
  std::atomic<bool> m_bSuspeita{false};
  alignas(16) std::byte m_area[64];
};

}  // namespace plataforma

#endif
