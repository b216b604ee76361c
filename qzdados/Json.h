#ifndef KALVO_QZDADOS_JSON_H
#define KALVO_QZDADOS_JSON_H

#include <string_view>

#include "core/platform/Tipos.h"

/// A Windows-1252 text as a JSON string, quotes included, in ASCII alone.
CString TextoJson(std::string_view sTexto);

#endif
