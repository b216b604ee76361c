#ifndef KALVO_CORE_PLATFORM_POSSENOLIVRO_H
#define KALVO_CORE_PLATFORM_POSSENOLIVRO_H

#include <memory>
#include <utility>

#include "core/platform/LivroDaThread.h"

namespace plataforma {

/// Owns an object for a scope and has it in the thread's ledger meanwhile: a machine fault that abandons the stack
/// destroys it all the same, so that no file stays open, and everybody else shut out, for the life of the process.
template <class T>
class CQZPosseNoLivro {
public:
  explicit CQZPosseNoLivro(std::unique_ptr<T> objeto)
      : m_objeto(std::move(objeto)), m_noLivro(m_objeto.get(), [](void *pObjeto) {
          const std::unique_ptr<T> abandonado(static_cast<T *>(pObjeto));
        }) {}

  T *operator->() const { return m_objeto.get(); }
  T &operator*() const { return *m_objeto; }

private:
  std::unique_ptr<T> m_objeto;
  CQZNoLivro m_noLivro;  ///< behind the object, so that it goes before it
};

}  // namespace plataforma

#endif
