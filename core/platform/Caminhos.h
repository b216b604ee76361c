#ifndef KALVO_CORE_PLATFORM_CAMINHOS_H
#define KALVO_CORE_PLATFORM_CAMINHOS_H

#include "core/platform/Tipos.h"

namespace plataforma {

/// True when a path names the same place whatever the current directory and drive are. Any thread may call.
bool EhCaminhoAbsoluto(const CString &sCaminho);

}  // namespace plataforma

#endif
