// The search filter, on one record of any bytes.
//
// Property: the prepared filter passes exactly the records that the criteria pass when they are examined one by one. A
// text by which an index may look for records is one that every record that passes holds, and both ways of hashing it
// agree. Among other records, of which most are passed over by their digests, a search finds those that pass.

#include "vehicles/FiltroVeiculos.h"

#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "fuzz/CriteriosDaEntrada.h"
#include "fuzz/Exige.h"

namespace {

using fuzz::PassaPorTodos;
using Filtro = tagREG_FILTRO_VEICULOSPS;

/// A run of records, here and there this one.
void ConfereBusca(fuzz::CEntrada *pEntrada, const RegVeiculo &reg, const Filtro &filtro,
                  const CFiltroVeiculos &preparado) {
  const std::size_t uiInicio = pEntrada->Ate(40);
  const std::size_t uiQtd = uiInicio + 1 + pEntrada->Ate(40);
  const std::size_t uiUmEm = 1 + pEntrada->Ate(9);
  CQZBlocosRegistros<RegVeiculo> registros;
  registros.DefineTamanho(uiQtd);
  for (std::size_t i = 0; i < uiQtd; ++i) {
    RegVeiculo outro{};
    outro.iAno = static_cast<std::uint32_t>(i);
    registros.Copia(i, i % uiUmEm == 0 ? &reg : &outro, 1);
  }
  registros.Abrange(0, uiQtd);
  std::size_t uiProximo = uiInicio;
  const auto pula = [&](std::size_t uiAte) {
    for (; uiProximo < uiAte; ++uiProximo) {
      fuzz::Exige(!PassaPorTodos(registros[uiProximo], filtro), "a record that is passed over");
    }
  };
  preparado.Procura(std::as_const(registros).TrechoEm(uiInicio, uiQtd), [&](std::size_t i) {
    pula(uiInicio + i);
    fuzz::Exige(PassaPorTodos(registros[uiProximo++], filtro), "a record that is found");
    return true;
  });
  pula(uiQtd);
}

}  // namespace

void fuzz::Executa(CEntrada *pEntrada) {
  Filtro filtro{};
  const std::string sCriterios = pEntrada->Bytes(pEntrada->Ate(std::numeric_limits<std::uint8_t>::max()));
  CEntrada criterios(sCriterios);
  // Alone on the heap, so that a read past the record is seen.
  const auto reg = std::make_unique<RegVeiculo>(pEntrada->Valor<RegVeiculo>());
  while (!criterios.Acabou()) {
    DefineCriterio(&criterios, *reg, &filtro);
  }
  const CFiltroVeiculos preparado(filtro);
  ConfereBusca(pEntrada, *reg, filtro, preparado);
  const bool bPassa = preparado.Atende(*reg);
  Exige(bPassa == PassaPorTodos(*reg, filtro), "the verdict on a record");
  Exige(bPassa || !preparado.PassaTudo(), "a filter of no criterion");
  if (const auto chave = preparado.ChaveExata()) {
    const std::string sCampo = chave->uiCampo == 0 ? AteOZero({reg->szCodigo, sizeof(reg->szCodigo)})
                                                   : AteOZero({reg->szPlaca, sizeof(reg->szPlaca)});
    Exige(!bPassa || sCampo == chave->sTexto, "the text to look for");
    using Indices = CQZIndices<RegVeiculo>;
    Exige(sCampo != chave->sTexto ||
              Indices::Hash(chave->uiCampo, *reg) == Indices::HashDoTexto(chave->uiCampo, chave->sTexto),
          "the hash of a text");
  }
}
