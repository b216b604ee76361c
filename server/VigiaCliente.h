#ifndef KALVO_SERVER_VIGIACLIENTE_H
#define KALVO_SERVER_VIGIACLIENTE_H

#include <windows.h>
//
#include <unknwn.h>

#include <atomic>
#include <memory>

/// A component object whose client is watched.
class IObjetoVigiado {
public:
  /// A new reference to the object, or null when its last reference has already gone. Any thread may call.
  virtual IUnknown *SeguraSeVivo() = 0;

protected:
  ~IObjetoVigiado() = default;
};

/// The wait for the end of one process, after which all references that other processes hold on an object are released.
class CEsperaCliente;

/// Releases the references that a client process held on an object when that process ends without releasing them. The
/// component platform finds such clients late or not at all, and the server would stay for ever.
///
/// The process that has the object created is taken for its client until the first call shows who the client is: the
/// platform may create objects through a process of its own. Other processes to which the client hands the object lose
/// their references with it. A watch that the system cannot provide is done without.
class CVigiaCliente {
public:
  explicit CVigiaCliente(IObjetoVigiado &objeto);
  /// After destruction the object is not touched again. May run on the thread that releases the references.
  ~CVigiaCliente();
  CVigiaCliente(const CVigiaCliente &) = delete;
  CVigiaCliente &operator=(const CVigiaCliente &) = delete;

  /// Called while the object is being created, before anybody else can reach it.
  void ObservaCriacao() noexcept { Comeca(); }

  /// Called at the start of each call from a client; the first call settles whom to watch. Calls from within the
  /// server's own process are not watched.
  void Observa() noexcept {
    if (!m_bObservado.load(std::memory_order_relaxed) && !m_bObservado.exchange(true)) {
      Comeca();
    }
  }

private:
  void Comeca() noexcept;

  IObjetoVigiado &m_objeto;
  std::atomic<bool> m_bObservado{false};
  unsigned long m_ulPid = 0;
  std::unique_ptr<CEsperaCliente> m_spEspera;
};

#endif
