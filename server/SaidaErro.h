#ifndef KALVO_SERVER_SAIDAERRO_H
#define KALVO_SERVER_SAIDAERRO_H

#include "core/platform/Tipos.h"

/// Says one line to whoever started the program: to the redirected standard error, else to the console of the parent
/// process, else to nobody. The program has no console of its own. The text is plain ASCII without a line end.
void DizErro(const CString &texto);

/// "0x" and the eight hexadecimal digits of a result code or system error.
CString TextoCodigo(unsigned long codigo);

#endif
