#ifndef KALVO_TESTS_APOIO_NATIVO_H
#define KALVO_TESTS_APOIO_NATIVO_H

#include <string>

#include "core/platform/Tipos.h"

namespace apoio {

/// A path with `\` as the C library of this platform takes it.
std::string CaminhoDoSistema(const CString &caminho);

}  // namespace apoio

#endif
