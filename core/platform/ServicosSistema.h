#ifndef KALVO_CORE_PLATFORM_SERVICOSSISTEMA_H
#define KALVO_CORE_PLATFORM_SERVICOSSISTEMA_H

#include "core/platform/Arquivos.h"
#include "core/platform/ArquivosIni.h"
#include "core/platform/Bibliotecas.h"
#include "core/platform/CaixaMensagem.h"
#include "core/platform/Informacoes.h"
#include "core/platform/Registro.h"
#include "core/platform/Relogio.h"

namespace plataforma {

// The implementations of the platform this build is for; each lives in the platform's own folder. The objects are never
// destroyed, so that code that runs late at process exit may still use them. Layers above ask for the services in force
// (Plataforma.h) instead.

IArquivos &ArquivosDoSistema();
IRegistro &RegistroDoSistema();
IRelogio &RelogioDoSistema();
IBibliotecas &BibliotecasDoSistema();
IInformacoes &InformacoesDoSistema();
IArquivosIni &ArquivosIniDoSistema();
ICaixaMensagem &CaixaMensagemDoSistema();

}  // namespace plataforma

#endif
