#ifndef KALVO_CORE_PLATFORM_PLATAFORMA_H
#define KALVO_CORE_PLATFORM_PLATAFORMA_H

#include "core/platform/Bibliotecas.h"
#include "core/platform/CaixaMensagem.h"
#include "core/platform/Registro.h"
#include "core/platform/Relogio.h"
#include "core/platform/Sistema.h"
#include "core/platform/SistemaArquivos.h"

namespace plataforma {

/// The services of the operating system that the layers above use, gathered so that a test can put its own in place.
/// The object does not own the services.
struct Servicos {
  ISistemaArquivos *arquivos;
  IRegistro *registro;
  IRelogio *relogio;
  IBibliotecas *bibliotecas;
  ISistema *sistema;
  ICaixaMensagem *caixa;
};

/// The operating system's own services; valid for the life of the process.
const Servicos &ServicosDoSistema();

/// The services in force: the operating system's own unless replaced.
const Servicos &ServicosEmVigor();

/// Puts `servicos` in force for the whole process, null for the system's own. Not synchronised: only while no other
/// thread uses the layers above. The object must outlive its use.
void SubstituiServicos(const Servicos *servicos);

inline ISistemaArquivos &Arquivos() {
  return *ServicosEmVigor().arquivos;
}
inline IRegistro &Registro() {
  return *ServicosEmVigor().registro;
}
inline IBibliotecas &Bibliotecas() {
  return *ServicosEmVigor().bibliotecas;
}
inline IRelogio &Relogio() {
  return *ServicosEmVigor().relogio;
}
inline ISistema &Sistema() {
  return *ServicosEmVigor().sistema;
}
inline ICaixaMensagem &Caixa() {
  return *ServicosEmVigor().caixa;
}

}  // namespace plataforma

#endif
