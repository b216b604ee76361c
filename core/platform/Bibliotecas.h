#ifndef KALVO_CORE_PLATFORM_BIBLIOTECAS_H
#define KALVO_CORE_PLATFORM_BIBLIOTECAS_H

#include <memory>

#include "core/platform/Tipos.h"

namespace plataforma {

/// A library loaded into the process; destruction frees it. Any thread may use it.
class IBiblioteca {
public:
  virtual ~IBiblioteca() = default;

  /// Address of an exported function, valid until the library is freed; null when it has none of that name.
  virtual void *Funcao(const char *lpNome) = 0;

protected:
  IBiblioteca() = default;
  IBiblioteca(const IBiblioteca &) = default;
  IBiblioteca &operator=(const IBiblioteca &) = default;
};

/// Loading libraries. Any thread may call, several at once.
class IBibliotecas {
public:
  virtual ~IBibliotecas() = default;

  /// Loads a library by its absolute path, looking for what it needs in its own directory first; null when that fails.
  /// Never shows a message box.
  virtual std::unique_ptr<IBiblioteca> Carrega(const CString &sCaminho) = 0;

protected:
  IBibliotecas() = default;
  IBibliotecas(const IBibliotecas &) = default;
  IBibliotecas &operator=(const IBibliotecas &) = default;
};

}  // namespace plataforma

#endif
