#ifndef KALVO_CORE_PLATFORM_SECAOCRITICA_H
#define KALVO_CORE_PLATFORM_SECAOCRITICA_H

#include <cstddef>

namespace plataforma {

/// Place of a lock in the order in which locks may be taken, outermost first. A thread that holds a lock may take only
/// locks of a higher place (or the same lock again); Temporario is the exception, since short-lived files are opened
/// while other short-lived files are held (the control file inside a copy, for example).
enum class NivelTrava : unsigned char {
  Conversao = 1,  ///< the process's conversion of stored bases, and the named lock of a data directory
  Container,      ///< creation and destruction of shared databases
  ContagemBanco,  ///< a database's record count
  ArquivoDados,   ///< a file of a shared database
  Temporario,     ///< a file opened for one piece of work
};

/// A recursive lock within the process: the system's critical section, spin count 0. Taken and released only through
/// CQZTrava, which keeps the per-thread ledger.
class SecaoCritica {
public:
  /// Throws an HRESULT (0x80070000 | error) when the system cannot create the lock.
  explicit SecaoCritica(NivelTrava eNivel);
  ~SecaoCritica();
  SecaoCritica(const SecaoCritica &) = delete;
  SecaoCritica &operator=(const SecaoCritica &) = delete;

  void Entra();
  void Sai();
  NivelTrava Nivel() const { return m_eNivel; }

private:
  NivelTrava m_eNivel;
  alignas(16) std::byte m_area[64];
};

}  // namespace plataforma

#endif
