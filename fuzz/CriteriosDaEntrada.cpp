#include "fuzz/CriteriosDaEntrada.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <type_traits>
#include <utility>

#include "core/platform/Textos.h"

namespace fuzz {
namespace {

using Filtro = tagREG_FILTRO_VEICULOSPS;

template <std::size_t N>
std::string Texto(const char (&campo)[N]) {
  return AteOZero({campo, N});
}

/// A text criterion: a piece of the record's own text, with a wildcard planted now and then, or any bytes.
template <auto kDoRegistro, auto kDoFiltro>
void DefineTexto(CEntrada *pEntrada, const RegVeiculo &reg, Filtro *pFiltro) {
  constexpr std::size_t kLargura = sizeof(reg.*kDoRegistro);
  const unsigned uiEscolha = pEntrada->Byte();
  std::string sTexto = Texto(reg.*kDoRegistro);
  if ((uiEscolha & 1) != 0) {
    sTexto = pEntrada->Bytes(pEntrada->Ate(kLargura));
  }
  if ((uiEscolha & 2) != 0) {
    sTexto.resize(std::min(sTexto.size(), pEntrada->Ate(kLargura)));
  }
  for (unsigned uiPlanta = uiEscolha >> 4; uiPlanta != 0 && !sTexto.empty(); uiPlanta >>= 1) {
    const std::size_t uiOnde = pEntrada->Ate(sTexto.size() - 1);
    sTexto.replace(uiOnde, pEntrada->Ate(3), (uiPlanta & 1) != 0 ? "*" : "?");
  }
  std::memset(pFiltro->*kDoFiltro, 0, kLargura);
  sTexto.copy(pFiltro->*kDoFiltro, kLargura);
}

/// A bound at the record's value or beside it, or anywhere.
template <auto kDoRegistro, auto kDoFiltro>
void DefineLimite(CEntrada *pEntrada, const RegVeiculo &reg, Filtro *pFiltro) {
  const unsigned uiEscolha = pEntrada->Byte();
  const std::uint64_t uiPerto = static_cast<std::uint64_t>(reg.*kDoRegistro) + uiEscolha % 4 - 1;
  const std::uint64_t uiBits = uiEscolha % 4 == 3 ? pEntrada->Valor<std::uint64_t>() : uiPerto;
  auto &limite = pFiltro->*kDoFiltro;
  limite = static_cast<std::remove_reference_t<decltype(limite)>>(uiBits);
}

template <auto kDoFiltro>
void DefineMascara(CEntrada *pEntrada, const RegVeiculo & /*reg*/, Filtro *pFiltro) {
  pFiltro->*kDoFiltro = pEntrada->Byte();
}

/// What no criterion reads.
void DefineResto(CEntrada *pEntrada, const RegVeiculo & /*reg*/, Filtro *pFiltro) {
  std::memset(pFiltro->cFiller, pEntrada->Byte(), sizeof(pFiltro->cFiller));
  pFiltro->lPosicao = pEntrada->Byte();
}

using Reg = RegVeiculo;
constexpr void (*kCriterios[])(CEntrada *, const RegVeiculo &, Filtro *) = {
    DefineTexto<&Reg::szDescricao, &Filtro::szDescricao>,
    DefineTexto<&Reg::szCodigoANTT, &Filtro::szCodigoANTT>,
    DefineTexto<&Reg::szCodigo, &Filtro::szCodigo>,
    DefineTexto<&Reg::szRENAVAM, &Filtro::szRENAVAM>,
    DefineTexto<&Reg::szPlaca, &Filtro::szPlaca>,
    DefineTexto<&Reg::szUF, &Filtro::szUF>,
    DefineLimite<&Reg::vTara, &Filtro::vTaraInicial>,
    DefineLimite<&Reg::vTara, &Filtro::vTaraFinal>,
    DefineLimite<&Reg::vCapacidadeKg, &Filtro::vCapacidadeKgInicial>,
    DefineLimite<&Reg::vCapacidadeKg, &Filtro::vCapacidadeKgFinal>,
    DefineLimite<&Reg::vCapacidadeM3, &Filtro::vCapacidadeM3Inicial>,
    DefineLimite<&Reg::vCapacidadeM3, &Filtro::vCapacidadeM3Final>,
    DefineLimite<&Reg::iAno, &Filtro::iAnoInicial>,
    DefineLimite<&Reg::iAno, &Filtro::iAnoFinal>,
    DefineLimite<&Reg::iPonteiroCliente, &Filtro::iPonteiroCliente>,
    DefineMascara<&Filtro::iTipoCarroceria>,
    DefineMascara<&Filtro::iTipoRodado>,
    DefineMascara<&Filtro::iTipoVeiculo>,
    DefineMascara<&Filtro::iTipoTransporte>,
    DefineResto,
};

bool NaFaixa(std::int64_t v, std::int64_t vInicial, std::int64_t vFinal) {
  return !(vInicial > 0 && v < vInicial) && !(vFinal > 0 && v > vFinal);
}

bool NaMascara(unsigned uiMascara, bool bTemBit, unsigned uiBit) {
  return uiMascara == 0 || !bTemBit || (uiMascara & (1U << uiBit)) != 0;
}

}  // namespace

void DefineCriterio(CEntrada *pEntrada, const RegVeiculo &reg, Filtro *pFiltro) {
  kCriterios[pEntrada->Ate(std::size(kCriterios) - 1)](pEntrada, reg, pFiltro);
}

bool PassaPorTodos(const RegVeiculo &reg, const Filtro &filtro) {
  if (!NaFaixa(reg.vTara, filtro.vTaraInicial, filtro.vTaraFinal) ||
      !NaFaixa(reg.vCapacidadeKg, filtro.vCapacidadeKgInicial, filtro.vCapacidadeKgFinal) ||
      !NaFaixa(reg.vCapacidadeM3, filtro.vCapacidadeM3Inicial, filtro.vCapacidadeM3Final) ||
      !NaFaixa(reg.iAno, filtro.iAnoInicial, filtro.iAnoFinal) ||
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

}  // namespace fuzz
