#ifndef KALVO_FUZZ_CRITERIOSDAENTRADA_H
#define KALVO_FUZZ_CRITERIOSDAENTRADA_H

#include "fuzz/Entrada.h"
#include "vehicles/RegVeiculo.h"

namespace fuzz {

/// Sets one criterion of a filter, mostly by what the record itself has, or hardly any record would pass.
void DefineCriterio(CEntrada *pEntrada, const RegVeiculo &reg, tagREG_FILTRO_VEICULOSPS *pFiltro);

/// What a search filter is by its description: the criteria examined one by one in their order, the first pattern among
/// the texts giving the verdict.
bool PassaPorTodos(const RegVeiculo &reg, const tagREG_FILTRO_VEICULOSPS &filtro);

}  // namespace fuzz

#endif
