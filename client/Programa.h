#ifndef KALVO_CLIENT_PROGRAMA_H
#define KALVO_CLIENT_PROGRAMA_H

// veiculos.exe as its user knows it: commands, options, help and exit codes, and what the options stand for.

#include <cstdint>
#include <optional>
#include <string>

#include "client/Argumentos.h"
#include "client/ConteudoTexto.h"
#include "vehicles/RegVeiculoPS.h"

enum ESaida : int {
  kSucesso = 0,
  kOperacaoFalhou = 1,
  kUsoErrado = 2,
  kNaoEncontrado = 3,
  kLinhasRecusadas = 4,
  kInterrompida = 5,
};

const CProgramaConhecido &ProgramaVeiculos();

/// The user and the session on whose behalf a command works, 1 when not given; raise CErroUso.
std::uint16_t UsuarioDeArgumentos(const CArgumentos &argumentos);
std::int32_t SessaoDeArgumentos(const CArgumentos &argumentos);

/// The options given as fields of the filter; raises CErroUso.
tagREG_FILTRO_VEICULOSPS FiltroDeArgumentos(const CArgumentos &argumentos);

/// Puts the options given into the fields of the vehicle and tells whether there was any; raises CErroUso.
bool AplicaCampos(const CArgumentos &argumentos, tagREG_VEICULOPS &veiculo);

/// The character set that --codificacao names; raises CErroUso.
std::optional<ECodificacao> CodificacaoDeArgumentos(const CArgumentos &argumentos);

#endif
