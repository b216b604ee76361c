#ifndef KALVO_SERVER_VIGIACLIENTE_H
#define KALVO_SERVER_VIGIACLIENTE_H

#include <windows.h>
//
#include <unknwn.h>

#include <atomic>
#include <memory>

/// A component object whose clients are watched.
class IObjetoVigiado {
public:
  /// A new reference to the object, or null when its last reference has already gone. Any thread may call.
  virtual IUnknown *SeguraSeVivo() = 0;

protected:
  ~IObjetoVigiado() = default;
};

/// Releases the references on an object that client processes left behind by ending without a release, on a component
/// platform that never does so itself (Wine's): the server would stay for ever. On Windows it does nothing, because the
/// platform knows better: it sees every process that holds a reference, this class only those that call.
///
/// References cannot be released for one process alone, so nothing happens before every process that ever called the
/// object has ended. A process to which the object was handed and that has not called it yet is given a moment for its
/// first call; one that holds it silently for longer than the last caller lives loses it. When a caller's process
/// cannot be told or watched, the object is not watched any more.
class CVigiaCliente {
public:
  explicit CVigiaCliente(IObjetoVigiado &objeto) : m_objeto(objeto) {}
  /// After destruction the object is not touched again. May run on the thread that releases the references.
  ~CVigiaCliente();
  CVigiaCliente(const CVigiaCliente &) = delete;
  CVigiaCliente &operator=(const CVigiaCliente &) = delete;

  /// Begins the watch; before anybody else can reach the object. Until then, and for want of memory, nobody is watched.
  void Comeca() noexcept;

  /// Called on the thread of each call from a client, the creation included, before the call does anything.
  void Observa() noexcept {
    if (m_bVigia.load(std::memory_order_relaxed)) {
      Observa(ProcessoQueChama());
    }
  }

  /// The same for a call from this process; 0 when that is not known. The watch must have begun.
  void Observa(DWORD idProcesso) noexcept {
    if (idProcesso != m_idUltimo.load(std::memory_order_relaxed)) {
      Conhece(idProcesso);
    }
  }

private:
  struct Estado;

  static DWORD ProcessoQueChama() noexcept;
  void Conhece(DWORD idProcesso) noexcept;

  /// Not the number of any process.
  static constexpr DWORD kNenhum = 0xFFFFFFFF;

  IObjetoVigiado &m_objeto;
  std::shared_ptr<Estado> m_spEstado;  ///< null when the watch has never begun
  std::atomic<bool> m_bVigia{false};
  std::atomic<DWORD> m_idUltimo{kNenhum};
};

#endif
