#include "client/Campos.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#include "client/Codificacao.h"
#include "client/QZVeiculosCampos.h"
#include "client/QZVeiculosMoeda.h"
#include "vehicles/RegVeiculoPS.h"

namespace {

using enum eCampo;
using V = tagREG_VEICULOPS;
using F = tagREG_FILTRO_VEICULOSPS;

// In the order in which they are shown.
constexpr std::array kCamposVeiculo{
    CCampo{"codigo", texto, offsetof(V, szCodigo), sizeof(V::szCodigo)},
    CCampo{"placa", texto, offsetof(V, szPlaca), sizeof(V::szPlaca)},
    CCampo{"uf", texto, offsetof(V, szUF), sizeof(V::szUF)},
    CCampo{"descricao", texto, offsetof(V, szDescricao), sizeof(V::szDescricao)},
    CCampo{"ano", numero, offsetof(V, iAno), sizeof(V::iAno)},
    CCampo{"antt", texto, offsetof(V, szCodigoANTT), sizeof(V::szCodigoANTT)},
    CCampo{"carroceria", numero, offsetof(V, iTipoCarroceria), sizeof(V::iTipoCarroceria)},
    CCampo{"rodado", numero, offsetof(V, iTipoRodado), sizeof(V::iTipoRodado)},
    CCampo{"tipo", numero, offsetof(V, iTipoVeiculo), sizeof(V::iTipoVeiculo)},
    CCampo{"tara", moeda, offsetof(V, vTara), sizeof(V::vTara)},
    CCampo{"kg", moeda, offsetof(V, vCapacidadeKg), sizeof(V::vCapacidadeKg)},
    CCampo{"m3", moeda, offsetof(V, vCapacidadeM3), sizeof(V::vCapacidadeM3)},
    CCampo{"renavam", texto, offsetof(V, szRENAVAM), sizeof(V::szRENAVAM)},
    CCampo{"cliente", numero, offsetof(V, iPonteiroCliente), sizeof(V::iPonteiroCliente)},
    CCampo{"transporte", numero, offsetof(V, iTipoTransporte), sizeof(V::iTipoTransporte)},
};

constexpr std::array kCamposFiltro{
    CCampo{"tara-min", moeda, offsetof(F, vTaraInicial), sizeof(F::vTaraInicial)},
    CCampo{"tara-max", moeda, offsetof(F, vTaraFinal), sizeof(F::vTaraFinal)},
    CCampo{"kg-min", moeda, offsetof(F, vCapacidadeKgInicial), sizeof(F::vCapacidadeKgInicial)},
    CCampo{"kg-max", moeda, offsetof(F, vCapacidadeKgFinal), sizeof(F::vCapacidadeKgFinal)},
    CCampo{"m3-min", moeda, offsetof(F, vCapacidadeM3Inicial), sizeof(F::vCapacidadeM3Inicial)},
    CCampo{"m3-max", moeda, offsetof(F, vCapacidadeM3Final), sizeof(F::vCapacidadeM3Final)},
    CCampo{"ano-min", numero, offsetof(F, iAnoInicial), sizeof(F::iAnoInicial)},
    CCampo{"ano-max", numero, offsetof(F, iAnoFinal), sizeof(F::iAnoFinal)},
    CCampo{"cliente", numero, offsetof(F, iPonteiroCliente), sizeof(F::iPonteiroCliente)},
    CCampo{"descricao", texto, offsetof(F, szDescricao), sizeof(F::szDescricao)},
    CCampo{"antt", texto, offsetof(F, szCodigoANTT), sizeof(F::szCodigoANTT)},
    CCampo{"codigo", texto, offsetof(F, szCodigo), sizeof(F::szCodigo)},
    CCampo{"renavam", texto, offsetof(F, szRENAVAM), sizeof(F::szRENAVAM)},
    CCampo{"placa", texto, offsetof(F, szPlaca), sizeof(F::szPlaca)},
    CCampo{"uf", texto, offsetof(F, szUF), sizeof(F::szUF)},
    // Body types count from 0 and wheel-set types from 1. Of the two kinds only zero or not matters.
    CCampo{"carrocerias", mascara, offsetof(F, iTipoCarroceria), sizeof(F::iTipoCarroceria), 0, 5},
    CCampo{"rodados", mascara, offsetof(F, iTipoRodado), sizeof(F::iTipoRodado), 1, 6},
    CCampo{"tipos", mascara, offsetof(F, iTipoVeiculo), sizeof(F::iTipoVeiculo), 0, 1},
    CCampo{"transportes", mascara, offsetof(F, iTipoTransporte), sizeof(F::iTipoTransporte), 0, 1},
};

// The machine is little-endian, so the low bytes of the value are the field.
void GravaInteiro(const CCampo &campo, std::uint64_t uiValor, void *pRegistro) {
  std::memcpy(static_cast<char *>(pRegistro) + campo.uiPosicao, &uiValor, campo.uiLargura);
}

std::uint64_t LeInteiro(const CCampo &campo, const void *pRegistro) {
  std::uint64_t uiValor = 0;
  std::memcpy(&uiValor, static_cast<const char *>(pRegistro) + campo.uiPosicao, campo.uiLargura);
  return uiValor;
}

std::uint64_t MaximoDaLargura(std::size_t uiLargura) {
  return (std::uint64_t{1} << (8 * uiLargura)) - 1;
}

std::uint64_t MascaraDeTexto(const CCampo &campo, std::string_view sLista) {
  std::uint64_t uiMascara = 0;
  for (std::size_t uiInicio = 0; uiInicio <= sLista.size();) {
    const std::size_t uiFim = std::min(sLista.find(',', uiInicio), sLista.size());
    const std::uint64_t uiValor = NumeroDeTexto(sLista.substr(uiInicio, uiFim - uiInicio), campo.uiUltimoValor);
    if (uiValor < campo.uiPrimeiroValor) {
      throw CErroCampo("o menor valor aceito é "_pt + std::to_string(campo.uiPrimeiroValor));
    }
    uiMascara |= std::uint64_t{1} << (uiValor - campo.uiPrimeiroValor);
    uiInicio = uiFim + 1;
  }
  return uiMascara;
}

std::int64_t MoedaDoCampo(std::string_view sValor) {
  std::int64_t vValor = 0;
  if (!MoedaDeTexto(sValor, vValor)) {
    throw CErroCampo("\"" + std::string(sValor) + "\" não é um valor com até 4 casas decimais"_pt);
  }
  if (vValor < 0) {
    throw CErroCampo("o valor não pode ser negativo"_pt);
  }
  return vValor;
}

}  // namespace

std::span<const CCampo> CamposVeiculo() {
  return kCamposVeiculo;
}
std::span<const CCampo> CamposFiltro() {
  return kCamposFiltro;
}

const CCampo *ProcuraCampo(std::span<const CCampo> aCampos, std::string_view sNome) {
  for (const CCampo &campo : aCampos) {
    if (campo.sNome == sNome) {
      return &campo;
    }
  }
  return nullptr;
}

std::uint64_t NumeroDeTexto(std::string_view sTexto, std::uint64_t uiMaximo) {
  std::uint64_t uiValor = 0;
  const char *const pFim = sTexto.data() + sTexto.size();
  const auto [pParada, eErro] = std::from_chars(sTexto.data(), pFim, uiValor);
  if (eErro == std::errc::invalid_argument || pParada != pFim) {
    throw CErroCampo("\"" + std::string(sTexto) + "\" não é um número inteiro sem sinal"_pt);
  }
  if (eErro != std::errc() || uiValor > uiMaximo) {
    throw CErroCampo("\"" + std::string(sTexto) + "\" passa do maior valor, "_pt + std::to_string(uiMaximo));
  }
  return uiValor;
}

void DefineCampo(const CCampo &campo, std::string_view sValor, void *pRegistro) {
  switch (campo.eTipo) {
    case texto:
      if (!TextoSemZero(sValor)) {
        throw CErroCampo("o texto contém um byte zero"_pt);
      }
      if (!CopiaCampo(static_cast<char *>(pRegistro) + campo.uiPosicao, campo.uiLargura, sValor)) {
        throw CErroCampo("o texto tem "_pt + std::to_string(sValor.size()) + " caracteres e o campo aceita até "_pt +
                         std::to_string(campo.uiLargura));
      }
      return;
    case moeda:
      GravaInteiro(campo, static_cast<std::uint64_t>(MoedaDoCampo(sValor)), pRegistro);
      return;
    case numero:
      GravaInteiro(campo, NumeroDeTexto(sValor, MaximoDaLargura(campo.uiLargura)), pRegistro);
      return;
    case mascara:
      GravaInteiro(campo, MascaraDeTexto(campo, sValor), pRegistro);
      return;
  }
}

std::string TextoCampo(const CCampo &campo, const void *pRegistro) {
  if (campo.eTipo == texto) {
    return LeCampo(static_cast<const char *>(pRegistro) + campo.uiPosicao, campo.uiLargura);
  }
  const std::uint64_t uiValor = LeInteiro(campo, pRegistro);
  return campo.eTipo == moeda ? TextoDeMoeda(static_cast<std::int64_t>(uiValor)) : std::to_string(uiValor);
}
