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

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *pBytes, std::size_t qtd) {
  fuzz::CEntrada entrada(pBytes, qtd);
  Filtro filtro{};
  const std::string sCriterios = entrada.Bytes(entrada.Ate(std::numeric_limits<std::uint8_t>::max()));
  fuzz::CEntrada criterios(reinterpret_cast<const std::uint8_t *>(sCriterios.data()), sCriterios.size());
  // Alone on the heap, so that a read past the record is seen.
  const auto reg = std::make_unique<RegVeiculo>(entrada.Valor<RegVeiculo>());
  while (!criterios.Acabou()) {
    fuzz::DefineCriterio(&criterios, *reg, &filtro);
  }
  const CFiltroVeiculos preparado(filtro);
  ConfereBusca(&entrada, *reg, filtro, preparado);
  const bool bPassa = preparado.Atende(*reg);
  fuzz::Exige(bPassa == PassaPorTodos(*reg, filtro), "the verdict on a record");
  fuzz::Exige(bPassa || !preparado.PassaTudo(), "a filter of no criterion");
  if (const auto chave = preparado.ChaveExata()) {
    const std::string_view sLargo = chave->uiCampo == 0 ? std::string_view(reg->szCodigo, sizeof(reg->szCodigo))
                                                        : std::string_view(reg->szPlaca, sizeof(reg->szPlaca));
    const std::string_view sCampo = sLargo.substr(0, sLargo.find('\0'));
    fuzz::Exige(!bPassa || sCampo == chave->sTexto, "the text to look for");
    using Indices = CQZIndices<RegVeiculo>;
    fuzz::Exige(sCampo != chave->sTexto ||
                    Indices::Hash(chave->uiCampo, *reg) == Indices::HashDoTexto(chave->uiCampo, chave->sTexto),
                "the hash of a text");
  }
  return 0;
}
