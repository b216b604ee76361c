#ifndef KALVO_CORE_PLATFORM_TRAVAENTREPROCESSOS_H
#define KALVO_CORE_PLATFORM_TRAVAENTREPROCESSOS_H

#include <cstdint>
#include <memory>

#include "core/platform/Tipos.h"

namespace plataforma {

/// A lock by name among the processes of this machine. A holder that dies gives it up. Not recursive between objects:
/// each object is used by one thread.
class ITravaEntreProcessos {
public:
  virtual ~ITravaEntreProcessos() = default;

  /// Waits at most `limiteMs`; false when another process (or thread) still holds it then, or when the lock cannot be
  /// had at all.
  virtual bool Toma(std::uint32_t limiteMs) = 0;

  /// Gives the lock up; only after a successful Toma, on the same thread.
  virtual void Solta() = 0;

protected:
  ITravaEntreProcessos() = default;
  ITravaEntreProcessos(const ITravaEntreProcessos &) = default;
  ITravaEntreProcessos &operator=(const ITravaEntreProcessos &) = default;
};

/// Makes the lock known under `sNome` (letters, digits and '-'), visible to all sessions of the machine where the
/// account may create such names, else to this session.
std::unique_ptr<ITravaEntreProcessos> CriaTravaEntreProcessos(const CString &sNome);

/// Holds a lock between processes for a scope, known to the thread's ledger like every other lock. The lock object must
/// outlive a machine fault inside the scope: it lives on the heap.
class CQZTravaDeProcesso {
public:
  CQZTravaDeProcesso(ITravaEntreProcessos &trava, std::uint32_t limiteMs);
  ~CQZTravaDeProcesso();
  CQZTravaDeProcesso(const CQZTravaDeProcesso &) = delete;
  CQZTravaDeProcesso &operator=(const CQZTravaDeProcesso &) = delete;

  /// False when the lock could not be had in time.
  bool Tomada() const { return m_bTomada; }

private:
  ITravaEntreProcessos &m_trava;
  bool m_bTomada;
};

}  // namespace plataforma

#endif
