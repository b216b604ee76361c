// The search filter, on one record of any bytes.
//
// Property: the prepared filter passes exactly the records that the criteria pass when they are examined one by one in
// their order, the first pattern among the texts giving the verdict. Criteria are mostly taken from the record itself,
// or hardly any record would get past the first. A text by which an index may look for records is one that every record
// that passes holds, and both ways of hashing it agree. Among other records, of which most are passed over by their
// digests, a search finds those that pass.

#include "vehicles/FiltroVeiculos.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "core/platform/Textos.h"
#include "fuzz/Entrada.h"
#include "fuzz/Exige.h"

namespace {

using Filtro = tagREG_FILTRO_VEICULOSPS;

template <std::size_t N>
std::string Texto(const char (&campo)[N]) {
  return std::string(campo, strnlen(campo, N));
}

/// A text criterion: a piece of the record's own text, with a wildcard planted now and then, or any bytes.
template <std::size_t N>
void DefineTexto(fuzz::CEntrada *pEntrada, const char (&doRegistro)[N], char (&criterio)[N]) {
  const unsigned uiEscolha = pEntrada->Byte();
  std::string sTexto = Texto(doRegistro);
  if ((uiEscolha & 1) != 0) {
    sTexto = pEntrada->Bytes(pEntrada->Ate(N));
  }
  if ((uiEscolha & 2) != 0) {
    sTexto.resize(std::min(sTexto.size(), pEntrada->Ate(N)));
  }
  for (unsigned uiPlanta = uiEscolha >> 4; uiPlanta != 0 && !sTexto.empty(); uiPlanta >>= 1) {
    const std::size_t uiOnde = pEntrada->Ate(sTexto.size() - 1);
    sTexto.replace(uiOnde, pEntrada->Ate(3), (uiPlanta & 1) != 0 ? "*" : "?");
  }
  std::memset(criterio, 0, N);
  sTexto.copy(criterio, N);
}

/// A bound at the record's value or beside it, or anywhere.
std::int64_t Limite(fuzz::CEntrada *pEntrada, std::int64_t vDoRegistro) {
  const unsigned uiEscolha = pEntrada->Byte();
  if (uiEscolha % 4 == 3) {
    return pEntrada->Valor<std::int64_t>();
  }
  const std::uint64_t uiBits = static_cast<std::uint64_t>(vDoRegistro) + uiEscolha % 4 - 1;
  return static_cast<std::int64_t>(uiBits);
}

void DefineCriterio(fuzz::CEntrada *pEntrada, const RegVeiculo &reg, Filtro *pFiltro) {
  const auto ano = [&] { return static_cast<std::uint32_t>(Limite(pEntrada, reg.iAno)); };
  switch (pEntrada->Ate(19)) {
    case 0:
      return DefineTexto(pEntrada, reg.szDescricao, pFiltro->szDescricao);
    case 1:
      return DefineTexto(pEntrada, reg.szCodigoANTT, pFiltro->szCodigoANTT);
    case 2:
      return DefineTexto(pEntrada, reg.szCodigo, pFiltro->szCodigo);
    case 3:
      return DefineTexto(pEntrada, reg.szRENAVAM, pFiltro->szRENAVAM);
    case 4:
      return DefineTexto(pEntrada, reg.szPlaca, pFiltro->szPlaca);
    case 5:
      return DefineTexto(pEntrada, reg.szUF, pFiltro->szUF);
    case 6:
      pFiltro->vTaraInicial = Limite(pEntrada, reg.vTara);
      return;
    case 7:
      pFiltro->vTaraFinal = Limite(pEntrada, reg.vTara);
      return;
    case 8:
      pFiltro->vCapacidadeKgInicial = Limite(pEntrada, reg.vCapacidadeKg);
      return;
    case 9:
      pFiltro->vCapacidadeKgFinal = Limite(pEntrada, reg.vCapacidadeKg);
      return;
    case 10:
      pFiltro->vCapacidadeM3Inicial = Limite(pEntrada, reg.vCapacidadeM3);
      return;
    case 11:
      pFiltro->vCapacidadeM3Final = Limite(pEntrada, reg.vCapacidadeM3);
      return;
    case 12:
      pFiltro->iAnoInicial = ano();
      return;
    case 13:
      pFiltro->iAnoFinal = ano();
      return;
    case 14:
      pFiltro->iPonteiroCliente = static_cast<std::uint16_t>(Limite(pEntrada, reg.iPonteiroCliente));
      return;
    case 15:
      pFiltro->iTipoCarroceria = pEntrada->Byte();
      return;
    case 16:
      pFiltro->iTipoRodado = pEntrada->Byte();
      return;
    case 17:
      pFiltro->iTipoVeiculo = pEntrada->Byte();
      return;
    case 18:
      pFiltro->iTipoTransporte = pEntrada->Byte();
      return;
    default:
      // What no criterion reads.
      std::memset(pFiltro->cFiller, pEntrada->Byte(), sizeof(pFiltro->cFiller));
      pFiltro->lPosicao = pEntrada->Byte();
      return;
  }
}

bool NaFaixa(std::int64_t v, std::int64_t vInicial, std::int64_t vFinal) {
  return !(vInicial > 0 && v < vInicial) && !(vFinal > 0 && v > vFinal);
}

bool NaMascara(unsigned uiMascara, bool bTemBit, unsigned uiBit) {
  return uiMascara == 0 || !bTemBit || (uiMascara & (1U << uiBit)) != 0;
}

bool Referencia(const RegVeiculo &reg, const Filtro &filtro) {
  if (!NaFaixa(reg.vTara, filtro.vTaraInicial, filtro.vTaraFinal) ||
      !NaFaixa(reg.vCapacidadeKg, filtro.vCapacidadeKgInicial, filtro.vCapacidadeKgFinal) ||
      !NaFaixa(reg.vCapacidadeM3, filtro.vCapacidadeM3Inicial, filtro.vCapacidadeM3Final) ||
      (filtro.iAnoInicial != 0 && reg.iAno < filtro.iAnoInicial) ||
      (filtro.iAnoFinal != 0 && reg.iAno > filtro.iAnoFinal) ||
      (filtro.iPonteiroCliente != 0 && reg.iPonteiroCliente != filtro.iPonteiroCliente)) {
    return false;
  }
  const std::pair<std::string, std::string> textos[] = {{Texto(reg.szDescricao), Texto(filtro.szDescricao)},
                                                        {Texto(reg.szCodigoANTT), Texto(filtro.szCodigoANTT)},
                                                        {Texto(reg.szCodigo), Texto(filtro.szCodigo)},
                                                        {Texto(reg.szRENAVAM), Texto(filtro.szRENAVAM)},
                                                        {Texto(reg.szPlaca), Texto(filtro.szPlaca)}};
  for (const auto &[sCampo, sCriterio] : textos) {
    if (sCriterio.find_first_of("*?") != std::string::npos) {
      return plataforma::CasaCuringa(sCampo.c_str(), sCriterio.c_str());
    }
    if (!sCriterio.empty() && sCampo != sCriterio) {
      return false;
    }
  }
  const std::string sUF = Texto(filtro.szUF);
  return (sUF.empty() || sUF == Texto(reg.szUF)) &&
         NaMascara(filtro.iTipoCarroceria, reg.iTipoCarroceria <= 5, reg.iTipoCarroceria) &&
         NaMascara(filtro.iTipoRodado, reg.iTipoRodado >= 1 && reg.iTipoRodado <= 6, reg.iTipoRodado - 1U) &&
         NaMascara(filtro.iTipoVeiculo, true, reg.iTipoVeiculo == 0 ? 0 : 1) &&
         NaMascara(filtro.iTipoTransporte, true, reg.iTipoTransporte == 0 ? 0 : 1);
}

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
      fuzz::Exige(!Referencia(registros[uiProximo], filtro), "a record that is passed over");
    }
  };
  preparado.Procura(std::as_const(registros).TrechoEm(uiInicio, uiQtd), [&](std::size_t i) {
    pula(uiInicio + i);
    fuzz::Exige(Referencia(registros[uiProximo++], filtro), "a record that is found");
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
    DefineCriterio(&criterios, *reg, &filtro);
  }
  const CFiltroVeiculos preparado(filtro);
  ConfereBusca(&entrada, *reg, filtro, preparado);
  const bool bPassa = preparado.Atende(*reg);
  fuzz::Exige(bPassa == Referencia(*reg, filtro), "the verdict on a record");
  fuzz::Exige(bPassa || !preparado.PassaTudo(), "a filter of no criterion");
  if (const auto chave = preparado.ChaveExata()) {
    const std::string sCampo = chave->uiCampo == 0 ? Texto(reg->szCodigo) : Texto(reg->szPlaca);
    fuzz::Exige(!bPassa || sCampo == chave->sTexto, "the text to look for");
    using Indices = CQZIndices<RegVeiculo>;
    fuzz::Exige(sCampo != chave->sTexto ||
                    Indices::Hash(chave->uiCampo, *reg) == Indices::HashDoTexto(chave->uiCampo, chave->sTexto),
                "the hash of a text");
  }
  return 0;
}
