#ifndef KALVO_SERVER_REGISTROSERVIDOR_H
#define KALVO_SERVER_REGISTROSERVIDOR_H

#include "core/platform/Tipos.h"
#include "server/LinhaComando.h"

/// Registers or removes the server as `eComando` says: application identity, class, type library, and the proxy/stub
/// DLLs that lie beside the executable, for 64-bit and in "x86" for 32-bit programs, in one step. Needs COM to be
/// initialised; for the whole machine it needs the rights of an administrator. A failure is said on the error output,
/// with the key or file and the error, and is the result; a registration that fails leaves the keys as they were, a
/// removal removes what it can. Both directions may be repeated; a removal needs nothing but the executable.
HRESULT ExecutaRegistro(EComando eComando);

#endif
