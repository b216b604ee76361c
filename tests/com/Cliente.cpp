#include "tests/com/Cliente.h"

#include <shlwapi.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <iterator>
#include <numeric>
#include <sstream>
#include <thread>

namespace apoiocom {
namespace {

/// The number of a vehicle; 0 when it is not byte for byte the one of its number.
std::uint32_t NumeroDe(const tagREG_VEICULOPS &veiculo) {
  const auto uiNumero = static_cast<std::uint32_t>(std::strtoul(CodigoDe(veiculo).c_str(), nullptr, 10));
  const tagREG_VEICULOPS inteiro = VeiculoNumerado(uiNumero);
  return std::memcmp(&veiculo, &inteiro, sizeof(inteiro)) == 0 ? uiNumero : 0;
}

HRESULT LeTudo(IQZDF_Veiculos &veiculos, std::vector<std::uint32_t> *pNumeros) {
  UINT uiQtd = 0;
  const HRESULT hr = veiculos.GetQuantidadeRegistros(&uiQtd);
  std::vector<LONG> posicoes(uiQtd);
  std::iota(posicoes.begin(), posicoes.end(), 1);
  std::vector<tagREG_VEICULOPS> lidos(uiQtd);
  const HRESULT hrLe = uiQtd != 0 ? veiculos.LePonteiros(uiQtd, posicoes.data(), lidos.data()) : hr;
  std::transform(lidos.begin(), lidos.end(), std::back_inserter(*pNumeros), NumeroDe);
  return hrLe;
}

Ponteiro<IStream> FluxoDe(const std::string &sArquivo, DWORD dwModo) {
  IStream *pFluxo = nullptr;
  SHCreateStreamOnFileA(sArquivo.c_str(), dwModo, &pFluxo);
  return Ponteiro<IStream>(pFluxo);
}

HRESULT Entrega(IQZDF_Veiculos &veiculos, const std::string &sArquivo) {
  return CoMarshalInterface(FluxoDe(sArquivo, STGM_CREATE | STGM_WRITE).get(), IID_IQZDF_Veiculos, &veiculos,
                            MSHCTX_LOCAL, nullptr, MSHLFLAGS_NORMAL);
}

HRESULT Recebe(const std::string &sArquivo, Veiculos *pspVeiculos) {
  void *pObjeto = nullptr;
  const HRESULT hr = CoUnmarshalInterface(FluxoDe(sArquivo, STGM_READ).get(), IID_IQZDF_Veiculos, &pObjeto);
  pspVeiculos->reset(static_cast<IQZDF_Veiculos *>(pObjeto));
  return hr;
}

void Diz(const Resposta &resposta) {
  std::cout << resposta.hr;
  for (const std::uint32_t uiNumero : resposta.numeros) {
    std::cout << " " << uiNumero;
  }
  std::cout << std::endl;
}

Resposta Grava(IQZDF_Veiculos &veiculos, LONG lPos, std::uint32_t uiNumero) {
  const HRESULT hr = veiculos.Grava(&lPos, VeiculoNumerado(uiNumero));
  return {hr, {static_cast<std::uint32_t>(lPos)}};
}

/// The client's side.
int Obedece(const std::vector<std::string> &argumentos) {
  std::thread([dwPrazoMs = static_cast<DWORD>(std::stoul(argumentos[0]))] {
    Sleep(dwPrazoMs);
    TerminateProcess(GetCurrentProcess(), CCliente::kNaoVoltou);
  }).detach();
  const Apartamento apartamento;
  Veiculos spVeiculos;
  const auto texto = [] {
    std::string sTexto;
    std::getline(std::cin >> std::ws, sTexto);
    return sTexto;
  };
  for (std::string sPedido; std::cin >> sPedido;) {
    Resposta resposta{S_OK, {}};
    if (sPedido == "cria") {
      spVeiculos = Cria(&resposta.hr);
    } else if (sPedido == "solta") {
      spVeiculos.reset();
    } else if (sPedido == "entrega") {
      resposta.hr = Entrega(*spVeiculos, texto());
    } else if (sPedido == "recebe") {
      resposta.hr = Recebe(texto(), &spVeiculos);
    } else if (sPedido == "abre") {
      resposta.hr = Inicializa(*spVeiculos, texto());
    } else if (sPedido == "grava") {
      LONG lPos = 0;
      std::uint32_t uiNumero = 0;
      std::cin >> lPos >> uiNumero;
      resposta = Grava(*spVeiculos, lPos, uiNumero);
    } else if (sPedido == "acrescenta") {
      for (std::uint32_t uiNumero = 1; (resposta = Grava(*spVeiculos, 0, uiNumero)).hr == S_OK; ++uiNumero) {
        Diz(resposta);
      }
    } else if (sPedido == "le") {
      resposta.hr = LeTudo(*spVeiculos, &resposta.numeros);
    }
    Diz(resposta);
  }
  return 0;
}
const apoio::RegistraFilha kObedece("cliente", Obedece);

}  // namespace

tagREG_VEICULOPS VeiculoNumerado(std::uint32_t uiNumero) {
  tagREG_VEICULOPS veiculo{};
  std::memset(&veiculo, static_cast<int>('A' + uiNumero % 26), offsetof(tagREG_VEICULOPS, iFiller));
  veiculo.vTara = uiNumero * std::int64_t{0x0101010101};
  veiculo.vCapacidadeKg = ~veiculo.vTara;
  veiculo.vCapacidadeM3 = -veiculo.vTara;
  veiculo.iAno = uiNumero;
  veiculo.iPonteiroCliente = static_cast<std::uint16_t>(uiNumero);
  std::fill(std::begin(veiculo.szCodigo), std::end(veiculo.szCodigo), '\0');
  Preenche(veiculo.szCodigo, std::to_string(uiNumero));
  return veiculo;
}

CCliente::CCliente(DWORD dwPrazoMs) : ProcessoFilho("cliente", {std::to_string(dwPrazoMs)}) {}

Resposta CCliente::Ouve() {
  std::istringstream linha(LeLinha());
  Resposta resposta;
  if (HRESULT hr = S_OK; linha >> hr) {
    resposta.hr = hr;
  }
  for (std::uint32_t uiNumero = 0; linha >> uiNumero;) {
    resposta.numeros.push_back(uiNumero);
  }
  return resposta;
}

Resposta CCliente::Pede(const std::string &sPedido) {
  EnviaLinha(sPedido);
  return Ouve();
}

}  // namespace apoiocom
