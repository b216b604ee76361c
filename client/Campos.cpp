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

using enum ECampo;
using V = tagREG_VEICULOPS;
using F = tagREG_FILTRO_VEICULOSPS;

/// In the order in which they are shown.
constexpr std::array kCamposVeiculo{
    CCampo{"codigo", Texto, offsetof(V, szCodigo), sizeof(V::szCodigo), "Código"},
    CCampo{"placa", Texto, offsetof(V, szPlaca), sizeof(V::szPlaca), "Placa"},
    CCampo{"uf", Texto, offsetof(V, szUF), sizeof(V::szUF), "UF"},
    CCampo{"descricao", Texto, offsetof(V, szDescricao), sizeof(V::szDescricao), "Descrição"},
    CCampo{"ano", Numero, offsetof(V, iAno), sizeof(V::iAno), "Ano"},
    CCampo{"antt", Texto, offsetof(V, szCodigoANTT), sizeof(V::szCodigoANTT), "Código ANTT"},
    CCampo{"carroceria", Numero, offsetof(V, iTipoCarroceria), sizeof(V::iTipoCarroceria), "Tipo de carroceria"},
    CCampo{"rodado", Numero, offsetof(V, iTipoRodado), sizeof(V::iTipoRodado), "Tipo de rodado"},
    CCampo{"tipo", Numero, offsetof(V, iTipoVeiculo), sizeof(V::iTipoVeiculo), "Tipo de veículo"},
    CCampo{"tara", Moeda, offsetof(V, vTara), sizeof(V::vTara), "Tara (kg)"},
    CCampo{"kg", Moeda, offsetof(V, vCapacidadeKg), sizeof(V::vCapacidadeKg), "Capacidade (kg)"},
    CCampo{"m3", Moeda, offsetof(V, vCapacidadeM3), sizeof(V::vCapacidadeM3), "Capacidade (m³)"},
    CCampo{"renavam", Texto, offsetof(V, szRENAVAM), sizeof(V::szRENAVAM), "RENAVAM"},
    CCampo{"cliente", Numero, offsetof(V, iPonteiroCliente), sizeof(V::iPonteiroCliente), "Cliente"},
    CCampo{"transporte", Numero, offsetof(V, iTipoTransporte), sizeof(V::iTipoTransporte), "Tipo de transporte"},
};

constexpr std::array kCamposFiltro{
    CCampo{"tara-min", Limite, offsetof(F, vTaraInicial), sizeof(F::vTaraInicial), "menor tara (kg)"},
    CCampo{"tara-max", Limite, offsetof(F, vTaraFinal), sizeof(F::vTaraFinal), "maior tara (kg)"},
    CCampo{"kg-min", Limite, offsetof(F, vCapacidadeKgInicial), sizeof(F::vCapacidadeKgInicial),
           "menor capacidade em kg"},
    CCampo{"kg-max", Limite, offsetof(F, vCapacidadeKgFinal), sizeof(F::vCapacidadeKgFinal), "maior capacidade em kg"},
    CCampo{"m3-min", Limite, offsetof(F, vCapacidadeM3Inicial), sizeof(F::vCapacidadeM3Inicial),
           "menor capacidade em m³"},
    CCampo{"m3-max", Limite, offsetof(F, vCapacidadeM3Final), sizeof(F::vCapacidadeM3Final), "maior capacidade em m³"},
    CCampo{"ano-min", Numero, offsetof(F, iAnoInicial), sizeof(F::iAnoInicial), "menor ano"},
    CCampo{"ano-max", Numero, offsetof(F, iAnoFinal), sizeof(F::iAnoFinal), "maior ano"},
    CCampo{"cliente", Numero, offsetof(F, iPonteiroCliente), sizeof(F::iPonteiroCliente), "cliente"},
    CCampo{"descricao", Texto, offsetof(F, szDescricao), sizeof(F::szDescricao), "descrição"},
    CCampo{"antt", Texto, offsetof(F, szCodigoANTT), sizeof(F::szCodigoANTT), "código ANTT"},
    CCampo{"codigo", Texto, offsetof(F, szCodigo), sizeof(F::szCodigo), "código"},
    CCampo{"renavam", Texto, offsetof(F, szRENAVAM), sizeof(F::szRENAVAM), "RENAVAM"},
    CCampo{"placa", Texto, offsetof(F, szPlaca), sizeof(F::szPlaca), "placa"},
    CCampo{"uf", Texto, offsetof(F, szUF), sizeof(F::szUF), "UF, sem * nem ?"},
    // Body types count from 0 and wheel-set types from 1. Of the two kinds only zero or not matters.
    CCampo{"carrocerias", Mascara, offsetof(F, iTipoCarroceria), sizeof(F::iTipoCarroceria),
           "tipos de carroceria aceitos, 0 a 5", 0, 5},
    CCampo{"rodados", Mascara, offsetof(F, iTipoRodado), sizeof(F::iTipoRodado), "tipos de rodado aceitos, 1 a 6", 1,
           6},
    CCampo{"tipos", Mascara, offsetof(F, iTipoVeiculo), sizeof(F::iTipoVeiculo),
           "tipos de veículo aceitos (1: qualquer um menos 0)", 0, 1},
    CCampo{"transportes", Mascara, offsetof(F, iTipoTransporte), sizeof(F::iTipoTransporte),
           "tipos de transporte aceitos (1: qualquer um menos 0)", 0, 1},
};

/// The machine is little-endian, so the low bytes of the value are the field.
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
    case Texto:
      if (!TextoSemZero(sValor)) {
        throw CErroCampo("o texto contém um byte zero"_pt);
      }
      if (!CopiaCampo(static_cast<char *>(pRegistro) + campo.uiPosicao, campo.uiLargura, sValor)) {
        throw CErroCampo("o texto tem "_pt + std::to_string(sValor.size()) + " caracteres e o campo aceita até "_pt +
                         std::to_string(campo.uiLargura));
      }
      return;
    case Moeda:
      GravaInteiro(campo, static_cast<std::uint64_t>(MoedaDoCampo(sValor)), pRegistro);
      return;
    case Limite: {
      const std::int64_t vLimite = MoedaDoCampo(sValor);
      if (vLimite < 0) {
        throw CErroCampo("o valor não pode ser negativo"_pt);
      }
      GravaInteiro(campo, static_cast<std::uint64_t>(vLimite), pRegistro);
      return;
    }
    case Numero:
      GravaInteiro(campo, NumeroDeTexto(sValor, MaximoDaLargura(campo.uiLargura)), pRegistro);
      return;
    case Mascara:
      GravaInteiro(campo, MascaraDeTexto(campo, sValor), pRegistro);
      return;
  }
}

std::string TextoCampo(const CCampo &campo, const void *pRegistro) {
  if (campo.eTipo == Texto) {
    return LeCampo(static_cast<const char *>(pRegistro) + campo.uiPosicao, campo.uiLargura);
  }
  const std::uint64_t uiValor = LeInteiro(campo, pRegistro);
  return campo.eTipo == Moeda ? TextoDeMoeda(static_cast<std::int64_t>(uiValor)) : std::to_string(uiValor);
}
