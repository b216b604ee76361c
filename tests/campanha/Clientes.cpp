#include "tests/campanha/Clientes.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <iostream>
#include <numeric>
#include <sstream>

using namespace apoiocom;

namespace campanha {
namespace {

/// A writer that has this position appends no more: companies stay small.
constexpr LONG kMaiorPosicao = 400;

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

/// A client's side.
int Obedece(const std::vector<std::string> &argumentos) {
  std::thread([dwPrazoMs = static_cast<DWORD>(std::stoul(argumentos[0]))] {
    Sleep(dwPrazoMs);
    TerminateProcess(GetCurrentProcess(), CCliente::kNaoVoltou);
  }).detach();
  const Apartamento apartamento;
  const auto diz = [](const Resposta &resposta) {
    std::ostringstream linha;
    linha << resposta.hr;
    for (const std::uint32_t uiNumero : resposta.numeros) {
      linha << " " << uiNumero;
    }
    std::cout << linha.str() << std::endl;
  };
  HRESULT hr = S_OK;
  const Veiculos spVeiculos = Cria(&hr);
  diz({hr, {}});
  std::string sPedido;
  std::string sEmpresa;
  LONG lPos = 0;
  std::uint32_t uiNumero = 0;
  while (std::cin >> sPedido) {
    Resposta resposta{E_FAIL, {}};
    if (sPedido == "abre" && std::cin >> sEmpresa) {
      resposta.hr = Inicializa(*spVeiculos, sEmpresa);
    } else if (sPedido == "grava" && std::cin >> lPos >> uiNumero) {
      resposta.hr = spVeiculos->Grava(&lPos, VeiculoNumerado(uiNumero));
      resposta.numeros = {static_cast<std::uint32_t>(lPos)};
    } else if (sPedido == "le") {
      resposta.hr = LeTudo(*spVeiculos, &resposta.numeros);
    }
    diz(resposta);
  }
  return 0;
}
const apoio::RegistraFilha kObedece("campanha-cliente", Obedece);

/// A writer's side. Tells each write, and as a write of no vehicle each opening that failed.
int Escreve(const std::vector<std::string> &argumentos) {
  unsigned uiSemente = 0;
  std::uint32_t uiNumero = 0;
  LONG lVeiculos = 0;
  LONG lPrimeira = 0;
  CEscritores::Modo modo;
  std::istringstream(argumentos[1]) >> uiSemente >> uiNumero >> lVeiculos >> lPrimeira >> modo.uiQtd >>
      modo.uiGravacoesPorObjeto >> modo.uiSegundos;
  std::mt19937 gerador(uiSemente);
  // The others divide what is there in the same way, and what is added belongs to who adds it.
  std::vector<LONG> minhas;
  for (LONG lPos = lPrimeira; lPos <= lVeiculos; lPos += static_cast<LONG>(modo.uiQtd)) {
    minhas.push_back(lPos);
  }
  const auto diz = [](const Gravacao &gravacao) {
    std::cout << gravacao.lPos << " " << gravacao.uiNumero << " " << gravacao.hr << std::endl;
  };
  const Apartamento apartamento;
  HRESULT hr = S_OK;
  Veiculos spVeiculos = Cria(&hr);
  diz({.hr = hr});
  std::string sLinha;
  std::getline(std::cin, sLinha);
  const ULONGLONG ullFim = GetTickCount64() + modo.uiSegundos * 1000;
  unsigned uiRestam = 0;  // writes with this object
  while (!ServidorSeFoi(hr) && GetTickCount64() < ullFim) {
    if (!spVeiculos) {
      Sleep(gerador() % 20);
      spVeiculos = Cria(&hr);
      uiRestam = 0;
    } else if (uiRestam == 0) {
      hr = Inicializa(*spVeiculos, argumentos[0]);
      uiRestam = modo.uiGravacoesPorObjeto != 0 ? 1 + gerador() % (2 * modo.uiGravacoesPorObjeto) : UINT_MAX;
      if (hr != S_OK) {
        diz({.hr = hr});
        spVeiculos.reset();
      }
    } else {
      const bool bCabe = minhas.empty() || minhas.back() < kMaiorPosicao;
      const bool bNovo = bCabe && (minhas.empty() || gerador() % 2 == 0);
      Gravacao gravacao{bNovo ? 0 : minhas[gerador() % minhas.size()], uiNumero++};
      LONG lOnde = gravacao.lPos;
      hr = gravacao.hr = spVeiculos->Grava(&lOnde, VeiculoNumerado(gravacao.uiNumero));
      if (bNovo && hr == S_OK) {
        gravacao.lPos = minhas.emplace_back(lOnde);
      }
      diz(gravacao);
      if (--uiRestam == 0 || (FAILED(hr) && gerador() % 2 == 0)) {
        spVeiculos.reset();
      }
    }
  }
  return 0;
}
const apoio::RegistraFilha kEscreve("campanha-escritor", Escreve);

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

CEscritores::CEscritores(const std::string &sEmpresa, const Modo &modo, const CLivro &livro, std::mt19937 &gerador) {
  constexpr std::uint32_t kNumerosDeCadaUm = 100000;
  static std::uint32_t s_uiNumero = 1;
  for (unsigned i = 1; i <= modo.uiQtd; ++i, s_uiNumero += kNumerosDeCadaUm) {
    std::ostringstream numeros;
    numeros << gerador() << " " << s_uiNumero << " " << livro.Veiculos() << " " << i << " " << modo.uiQtd << " "
            << modo.uiGravacoesPorObjeto << " " << modo.uiSegundos;
    m_escritores.emplace_back(std::vector<std::string>{sEmpresa, numeros.str()});
    // One after another: several that activate at once each start a server under Wine.
    EXPECT_EQ(m_escritores.back().processo.LeLinha(), "0 0 0") << "an object";
  }
}

void CEscritores::Comeca() {
  for (Escritor &escritor : m_escritores) {
    escritor.processo.EnviaLinha("vai");
    escritor.ouvinte = std::jthread([this, &escritor] {
      constexpr unsigned kMaisQueTodas = 1 << 20;
      for (Gravacao lida; std::istringstream(escritor.processo.LeLinha()) >> lida.lPos >> lida.uiNumero >> lida.hr;) {
        escritor.gravacoes.push_back(lida);
        ++m_uiGravacoes;
        m_uiGravacoes.notify_one();
      }
      m_uiGravacoes += kMaisQueTodas;
      m_uiGravacoes.notify_one();
    });
  }
}

void CEscritores::EsperaGravacoes(unsigned uiQtd) {
  for (unsigned uiVistas = 0; (uiVistas = m_uiGravacoes) < uiQtd;) {
    m_uiGravacoes.wait(uiVistas);
  }
}

void CEscritores::Termina(CLivro *pLivro) {
  for (Escritor &escritor : m_escritores) {
    escritor.ouvinte.join();
    EXPECT_EQ(escritor.processo.Espera(), 0);
    for (const Gravacao &gravacao : escritor.gravacoes) {
      pLivro->Anota(gravacao);
    }
  }
}

}  // namespace campanha
