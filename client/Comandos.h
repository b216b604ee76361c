#ifndef KALVO_CLIENT_COMANDOS_H
#define KALVO_CLIENT_COMANDOS_H

#include <string>

#include "client/Argumentos.h"
#include "client/Programa.h"
#include "client/QZVeiculosErros.h"

// Runs the command in an apartment of its own. Usage is checked before the service is touched, and before it is asked
// for a company the registry is (EmpresaRegistrada.h). Raises CErroUso, CErroEmpresa, CQZErroVeiculos, CInterrompido,
// or another std::exception with a Windows-1252 text.
eSaida ExecutaComando(const CArgumentos &argumentos);

// A failure of the service with what to do about it, in lines.
std::string TextoDaFalha(const CQZErroVeiculos &erro);

#endif
