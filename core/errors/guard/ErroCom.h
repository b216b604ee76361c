#ifndef KALVO_CORE_ERRORS_GUARD_ERROCOM_H
#define KALVO_CORE_ERRORS_GUARD_ERROCOM_H

#include "core/platform/Tipos.h"

/// True with its result code in `*phr` when the exception in hand is a `_com_error`; the platforms without the
/// component platform know none. Only inside a handler. Other exceptions are not consumed.
bool ResultadoDoErroCom(HRESULT *phr);

#endif
