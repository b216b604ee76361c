#ifndef KALVO_SERVER_VIGIACLIENTE_H
#define KALVO_SERVER_VIGIACLIENTE_H

#include <windows.h>
//
#include <unknwn.h>

#include <atomic>
#include <memory>
#include <mutex>

/// A component object whose client is watched.
class IObjetoVigiado {
public:
  /// A new reference to the object, or null when its last reference has already gone. Any thread may call.
  virtual IUnknown *SeguraSeVivo() = 0;

protected:
  ~IObjetoVigiado() = default;
};

/// Releases the references that a client process held on an object when that process ends without releasing them. The
/// component platform finds such clients late or not at all, and the server would stay for ever.
///
/// The process of the first call is taken for the object's client. Other processes to which it hands the object lose
/// their references with it.
class CVigiaCliente {
public:
  explicit CVigiaCliente(IObjetoVigiado &objeto);
  /// After destruction the object is not touched again. May run on the thread that releases the references.
  ~CVigiaCliente();
  CVigiaCliente(const CVigiaCliente &) = delete;
  CVigiaCliente &operator=(const CVigiaCliente &) = delete;

  /// Called at the start of each call from a client; the first call begins the watch. Calls from within the server's
  /// own process are not watched.
  void Observa() {
    if (!m_bObservado.load(std::memory_order_relaxed) && !m_bObservado.exchange(true)) {
      Comeca();
    }
  }

private:
  /// Shared with the waiting thread, which may run while the watcher is being destroyed.
  struct Estado {
    std::mutex mutex;
    IObjetoVigiado *pObjeto;  // null once the watcher is gone
    std::atomic<bool> bDisparou{false};
  };
  using Referencia = std::shared_ptr<Estado>;

  static void CALLBACK AoTerminarCliente(void *pReferencia, BOOLEAN bTempo);
  void Comeca();

  Referencia m_spEstado;
  Referencia *m_pReferenciaEspera = nullptr;  // belongs to the callback once that has begun
  std::atomic<bool> m_bObservado{false};
  HANDLE m_hProcesso = nullptr;
  HANDLE m_hEspera = nullptr;
};

#endif
