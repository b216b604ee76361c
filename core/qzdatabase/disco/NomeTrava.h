#ifndef KALVO_CORE_QZDATABASE_DISCO_NOMETRAVA_H
#define KALVO_CORE_QZDATABASE_DISCO_NOMETRAVA_H

#include "core/platform/Tipos.h"

/// Name of the lock that the server processes of this machine share for one kind of work on a file or directory; letter
/// case of the path does not matter. Directories on the network that several machines use are not covered.
CString NomeTravaDoCaminho(const char *lpTrabalho, const CString &sCaminho);

#endif
