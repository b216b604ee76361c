#ifndef KALVO_CORE_PLATFORM_PLATAFORMA_H
#define KALVO_CORE_PLATFORM_PLATAFORMA_H

#include "core/platform/Arquivos.h"
#include "core/platform/ArquivosIni.h"
#include "core/platform/Bibliotecas.h"
#include "core/platform/CaixaMensagem.h"
#include "core/platform/Informacoes.h"
#include "core/platform/Registro.h"
#include "core/platform/Relogio.h"

namespace plataforma {

/// The services of the operating system that the layers above use, gathered so that a test can put its own in place.
/// The object does not own the services.
struct Servicos {
  IArquivos *arquivos;
  IRegistro *registro;
  IRelogio *relogio;
  IBibliotecas *bibliotecas;
  IInformacoes *informacoes;
  IArquivosIni *arquivosIni;
  ICaixaMensagem *caixaMensagem;
};

/// The operating system's own services; valid for the life of the process.
const Servicos &ServicosDoSistema();

/// The services in force: the operating system's own unless replaced.
const Servicos &ServicosEmVigor();

/// Puts `pServicos` in force for the whole process, null for the system's own. Not synchronised: only while no other
/// thread uses the layers above. The object must outlive its use.
void SubstituiServicos(const Servicos *pServicos);

inline IArquivos &Arquivos() {
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
inline IInformacoes &Informacoes() {
  return *ServicosEmVigor().informacoes;
}
inline IArquivosIni &ArquivosIni() {
  return *ServicosEmVigor().arquivosIni;
}
inline ICaixaMensagem &CaixaMensagem() {
  return *ServicosEmVigor().caixaMensagem;
}

}  // namespace plataforma

#endif
