#ifndef KALVO_CLIENT_SAIDA_H
#define KALVO_CLIENT_SAIDA_H

// Vehicles as text, Windows-1252.

#include <cstdint>
#include <string>

#include "vehicles/RegVeiculoPS.h"

/// A text of at least this width, filled up with blanks.
std::string Ajusta(const std::string &sTexto, std::size_t uiLargura, bool bADireita);

/// Control characters, which would break lines or drive the terminal, as '.'.
std::string Visivel(std::string sTexto);

/// A field of a CSV line, quoted where it must be.
std::string CampoCsv(const std::string &sTexto);

/// One vehicle, a line per field: "Descrição .: Caminhão baú".
std::string FichaVeiculo(std::int64_t iPosicao, const tagREG_VEICULOPS &veiculo);

/// One vehicle per line under the titles; without line ends.
std::string TituloLista();
std::string LinhaLista(std::int64_t iPosicao, const tagREG_VEICULOPS &veiculo);

/// CSV that the program imports again; without line ends.
std::string TituloCsv();
std::string LinhaCsv(std::int64_t iPosicao, const tagREG_VEICULOPS &veiculo);

/// One vehicle as a JSON object without a line end: texts as strings, values as numbers with a decimal point.
std::string JsonVeiculo(std::int64_t iPosicao, const tagREG_VEICULOPS &veiculo);

#endif
