#ifndef KALVO_CORE_ERRORS_GUARD_TRADUCAOEXCECOES_H
#define KALVO_CORE_ERRORS_GUARD_TRADUCAOEXCECOES_H

#include "core/platform/Tipos.h"

/// Turns the exception in hand into a result code. Only inside a catch-all handler:
///
///   } catch (...) {
///     hr = QZTranslateThrownExceptionToHresult();
///   }
///
/// A thrown result code comes back as it is, even when it is a success. Exceptions thrown by pointer are not deleted:
/// their owner may have been a static object.
HRESULT QZTranslateThrownExceptionToHresult();

#endif
