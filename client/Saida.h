#ifndef KALVO_CLIENT_SAIDA_H
#define KALVO_CLIENT_SAIDA_H

// Vehicles as text, Windows-1252.

#include <cstdint>
#include <string>

#include "vehicles/RegVeiculoPS.h"

// One vehicle, a line per field: "Descrição .: Caminhão baú".
std::string FichaVeiculo(std::int32_t lPosicao, const tagREG_VEICULOPS &veiculo);

// One vehicle per line under the titles.
std::string TituloLista();
std::string LinhaLista(std::int32_t lPosicao, const tagREG_VEICULOPS &veiculo);

// CSV that the program imports again.
std::string TituloCsv();
std::string LinhaCsv(std::int32_t lPosicao, const tagREG_VEICULOPS &veiculo);

#endif
