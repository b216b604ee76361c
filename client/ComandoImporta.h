#ifndef KALVO_CLIENT_COMANDOIMPORTA_H
#define KALVO_CLIENT_COMANDOIMPORTA_H

#include "client/Argumentos.h"
#include "client/Programa.h"

/// The command "importa", from the file to the summary. What stops it half way, the user or a failure of the service,
/// is told here, with where to go on; raises what keeps it from beginning.
ESaida Importa(const CArgumentos &argumentos);

#endif
