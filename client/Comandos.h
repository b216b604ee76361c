#ifndef KALVO_CLIENT_COMANDOS_H
#define KALVO_CLIENT_COMANDOS_H

#include <cstdint>
#include <span>

#include "client/Argumentos.h"
#include "vehicles/RegVeiculoPS.h"

enum eSaida : int {
  kSucesso = 0,
  kOperacaoFalhou = 1,
  kUsoErrado = 2,
  kNaoEncontrado = 3,
  kLinhasRecusadas = 4,
};

std::span<const CComandoConhecido> ComandosConhecidos();

// The user and the session on whose behalf a command works, 1 when not given; raise CErroUso.
std::uint16_t UsuarioDeArgumentos(const CArgumentos &argumentos);
std::int32_t SessaoDeArgumentos(const CArgumentos &argumentos);

// The options given as fields of the filter; raises CErroUso.
tagREG_FILTRO_VEICULOSPS FiltroDeArgumentos(const CArgumentos &argumentos);

// Puts the options given into the fields of the vehicle and tells whether there was any; raises CErroUso.
bool AplicaCampos(const CArgumentos &argumentos, tagREG_VEICULOPS &veiculo);

// Runs the command in an apartment of its own. Usage is checked before the service is touched. Raises CErroUso,
// CQZErroVeiculos, or another std::exception with a Windows-1252 text.
eSaida ExecutaComando(const CArgumentos &argumentos);

#endif
