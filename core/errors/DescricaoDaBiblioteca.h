#ifndef KALVO_CORE_ERRORS_DESCRICAODABIBLIOTECA_H
#define KALVO_CORE_ERRORS_DESCRICAODABIBLIOTECA_H

#include "core/platform/Tipos.h"

/// The text that the suite's message library, `x64\QZLMensagem.dll` below the installation directory, has for a code.
/// The library is loaded and freed at each call, so that it can be replaced while the server runs. Empty when it or its
/// export is missing, when it has no text, and when the installation directory is not an absolute path: a relative one
/// would be searched for in whatever directory is current. Empty also when the library fails, in whatever way: nothing
/// that it raises or throws gets past this function.
CString DescricaoDaBiblioteca(HRESULT hr) noexcept;

#endif
