#ifndef KALVO_SERVER_REGISTROSERVIDOR_H
#define KALVO_SERVER_REGISTROSERVIDOR_H

#include "core/platform/Tipos.h"
#include "server/LinhaComando.h"

/// Registers or removes the server as `eComando` says: application identity, class, type library, and the proxy/stub
/// DLL that lies beside the executable, in one step. Needs COM to be initialised; for the whole machine it needs the
/// rights of an administrator. A failure is said on the error output, with the key or file and the error, and is the
/// result; what was written before it stays. Both directions may be repeated.
HRESULT ExecutaRegistro(Comando eComando);

#endif
