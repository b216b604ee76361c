#ifndef KALVO_CLIENT_COMANDOS_H
#define KALVO_CLIENT_COMANDOS_H

#include "client/Argumentos.h"
#include "client/Programa.h"

/// Runs the command in an apartment of its own. Usage is checked before the service is touched, and before it is asked
/// for a company the registry is (EmpresaRegistrada.h). Raises CErroUso, CErroEmpresa, CQZErroVeiculos, CInterrompido,
/// or another std::exception with a Windows-1252 text.
ESaida ExecutaComando(const CArgumentos &argumentos);

#endif
