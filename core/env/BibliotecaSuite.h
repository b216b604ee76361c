#ifndef KALVO_CORE_ENV_BIBLIOTECASUITE_H
#define KALVO_CORE_ENV_BIBLIOTECASUITE_H

#include <memory>

#include "core/env/QZPath.h"
#include "core/platform/Bibliotecas.h"

/// Loads a library of the suite by its file name: from the folder "x64" of the installation directory of a module's
/// product, looking for what it needs in that folder first. Null when it cannot be loaded, and when the installation
/// directory is not an absolute path: a relative one would be searched for in whatever directory is current. Any thread
/// may call.
std::unique_ptr<plataforma::IBiblioteca> CarregaBibliotecaSuite(ModuloQZ eModulo, const CString &sNomeArquivo);

#endif
