#include "fuzz/CriteriosDaEntrada.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "core/platform/Textos.h"

namespace fuzz {
namespace {

using Filtro = tagREG_FILTRO_VEICULOSPS;

template <std::size_t N>
std::string Texto(const char (&campo)[N]) {
  return std::string(campo, strnlen(campo, N));
}

/// A text criterion: a piece of the record's own text, with a wildcard planted now and then, or any bytes.
template <std::size_t N>
void DefineTexto(CEntrada *pEntrada, const char (&doRegistro)[N], char (&criterio)[N]) {
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
std::int64_t Limite(CEntrada *pEntrada, std::int64_t vDoRegistro) {
  const unsigned uiEscolha = pEntrada->Byte();
  if (uiEscolha % 4 == 3) {
    return pEntrada->Valor<std::int64_t>();
  }
  const std::uint64_t uiBits = static_cast<std::uint64_t>(vDoRegistro) + uiEscolha % 4 - 1;
  return static_cast<std::int64_t>(uiBits);
}

bool NaFaixa(std::int64_t v, std::int64_t vInicial, std::int64_t vFinal) {
  return !(vInicial > 0 && v < vInicial) && !(vFinal > 0 && v > vFinal);
}

bool NaMascara(unsigned uiMascara, bool bTemBit, unsigned uiBit) {
  return uiMascara == 0 || !bTemBit || (uiMascara & (1U << uiBit)) != 0;
}

}  // namespace

void DefineCriterio(CEntrada *pEntrada, const RegVeiculo &reg, Filtro *pFiltro) {
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

bool PassaPorTodos(const RegVeiculo &reg, const Filtro &filtro) {
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

}  // namespace fuzz
