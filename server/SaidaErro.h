#ifndef KALVO_SERVER_SAIDAERRO_H
#define KALVO_SERVER_SAIDAERRO_H

#include <string>

#include "core/platform/Tipos.h"

/// Says one line to whoever started the program: to the redirected standard error, in Windows-1252, else to the console
/// of the parent process, else to nobody. The program has no console of its own. The text (Windows-1252) has no line
/// end.
void DizErro(const CString &sTexto);

/// The text in Windows-1252; a character without such a form becomes '?'.
CString Texto1252(const std::wstring &sTexto);

/// "0x" and the eight hexadecimal digits of a result code or system error.
CString TextoCodigo(unsigned long codigo);

#endif
