// Clients that work for long on many companies: what the server uses stays the same, and so does the time of its calls.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <iostream>
#include <sstream>

#include "tests/apoio/ProcessoFilho.h"
#include "tests/campanha/Clientes.h"
#include "tests/campanha/ParteDaCampanha.h"
#include "tests/campanha/Servidores.h"
#include "tests/campanha/VeiculoNumerado.h"

using namespace apoiocom;

namespace campanha {
namespace {

constexpr unsigned kClientes = 8;
constexpr unsigned kEmpresas = 20;
constexpr LONG kVeiculos = 100;   ///< of each company
constexpr unsigned kFatias = 10;  ///< of the time; the first warms everything up
constexpr unsigned kChamadasPorObjeto = 100;
constexpr double kMaisDemora = 1.2;
/// Below this the time of calls is the machine's other business.
constexpr unsigned kSegundosDeDemora = 120;

/// One call of many kinds; all must work. Half of them write, over what is there.
HRESULT Chama(IQZDF_Veiculos &veiculos, std::mt19937 &gerador) {
  const auto lPos = static_cast<LONG>(1 + gerador() % kVeiculos);
  LONG lOnde = lPos;
  UINT uiQtd = 0;
  HRESULT hr = S_OK;
  tagREG_VEICULOPS veiculo{};
  switch (gerador() % 10) {
    case 0:
    case 1:
      return veiculos.Le(lPos, &veiculo);
    case 2:
      return veiculos.Existe(Texto(std::to_string(lPos)).Ponteiro(), &lOnde, &veiculo);
    case 3: {
      tagREG_FILTRO_VEICULOSPS filtro{};
      Preenche(filtro.szDescricao, "*" + std::string(2, static_cast<char>('A' + gerador() % 26)) + "*");
      Busca(veiculos, filtro, &hr);
      return hr;
    }
    case 4: {
      std::vector<LONG> posicoes(50, lPos);
      std::vector<tagREG_VEICULOPS> lidos(posicoes.size());
      return veiculos.LePonteiros(static_cast<UINT>(posicoes.size()), posicoes.data(), lidos.data());
    }
    case 5:
      return veiculos.GetQuantidadeRegistros(&uiQtd);
    default:
      return veiculos.Grava(&lOnde, VeiculoNumerado(static_cast<std::uint32_t>(lPos)));
  }
}

/// For each slice of the time prints the calls that it made, their time in microseconds, and the calls that failed;
/// then keeps its object until its input ends.
int Mistura(const std::vector<std::string> &argumentos) {
  const Apartamento apartamento;
  std::mt19937 gerador(static_cast<unsigned>(std::stoul(argumentos[0])));
  const std::chrono::duration<double> fatia(std::stod(argumentos[1]));
  const std::vector<std::string> empresas(argumentos.begin() + 2, argumentos.end());
  Veiculos spVeiculos;
  std::cout << "pronto" << std::endl;
  std::string sLinha;
  std::getline(std::cin, sLinha);
  const auto inicio = std::chrono::steady_clock::now();
  for (unsigned uiFatia = 1; uiFatia <= kFatias; ++uiFatia) {
    unsigned uiChamadas = 0;
    unsigned uiFalhas = 0;
    std::chrono::duration<double, std::micro> tempo(0);
    while (std::chrono::steady_clock::now() - inicio < uiFatia * fatia) {
      if (!spVeiculos || gerador() % kChamadasPorObjeto == 0) {
        spVeiculos = Abre(empresas[gerador() % empresas.size()]);
      }
      const auto antes = std::chrono::steady_clock::now();
      uiFalhas += spVeiculos && SUCCEEDED(Chama(*spVeiculos, gerador)) ? 0U : 1U;
      tempo += std::chrono::steady_clock::now() - antes;
      ++uiChamadas;
    }
    std::cout << uiChamadas << " " << tempo.count() << " " << uiFalhas << std::endl;
  }
  std::getline(std::cin, sLinha);
  return 0;
}
const apoio::RegistraFilha kMistura("campanha-mistura", Mistura);

class Resistencia : public ParteDaCampanha {
protected:
  static void Povoa(const std::vector<std::string> &empresas) {
    CCliente cliente;
    for (const std::string &sEmpresa : empresas) {
      ASSERT_EQ(cliente.Pede("cria").hr, S_OK);
      ASSERT_EQ(cliente.Pede("abre " + sEmpresa).hr, S_OK);
      for (LONG lPos = 0, i = 1; i <= kVeiculos; ++i, lPos = 0) {
        ASSERT_EQ(cliente.Grava(&lPos, static_cast<std::uint32_t>(i)), S_OK);
      }
    }
    ASSERT_EQ(cliente.Termina(), 0);
  }
};

TEST_F(Resistencia, MemoriaHandlesThreadsEDemoraNaoCrescem) {
  std::vector<std::string> empresas;
  while (empresas.size() < kEmpresas) {
    empresas.push_back(MaisUmaEmpresa().Codigo());
  }
  ASSERT_NO_FATAL_FAILURE(Povoa(empresas));
  const std::vector<Handle> servidores = Servidores();
  ASSERT_EQ(servidores.size(), 1U);

  const unsigned uiSegundos = Segundos(6);
  std::vector<std::string> argumentos{"", std::to_string(static_cast<double>(uiSegundos) / kFatias)};
  argumentos.insert(argumentos.end(), empresas.begin(), empresas.end());
  std::deque<apoio::ProcessoFilho> clientes;
  for (unsigned i = 0; i < kClientes; ++i) {
    argumentos[0] = std::to_string(m_gerador());
    ASSERT_EQ(clientes.emplace_back("campanha-mistura", argumentos).LeLinha(), "pronto");
  }
  for (apoio::ProcessoFilho &cliente : clientes) {
    cliente.EnviaLinha("vai");
  }
  std::vector<Recursos> recursos;
  std::vector<double> demoras;
  std::size_t uiTotal = 0;
  std::size_t uiTotalFalhas = 0;
  for (unsigned uiFatia = 0; uiFatia < kFatias; ++uiFatia) {
    unsigned uiChamadas = 0;
    double dTempo = 0;
    for (apoio::ProcessoFilho &cliente : clientes) {
      unsigned uiDele = 0;
      unsigned uiFalhas = 1;
      double dDele = 0;
      std::istringstream(cliente.LeLinha()) >> uiDele >> dDele >> uiFalhas;
      uiTotalFalhas += uiFalhas;
      uiChamadas += uiDele;
      dTempo += dDele;
    }
    uiTotal += uiChamadas;
    recursos.push_back(RecursosDe(servidores[0].get()));
    demoras.push_back(dTempo / std::max(uiChamadas, 1U));
    std::printf("%6.1f s: %7u calls, %7.0f us each; server %6.1f MB, %4zu handles, %3zu threads\n",
                static_cast<double>(uiSegundos * (uiFatia + 1)) / kFatias, uiChamadas, demoras.back(),
                recursos.back().dMemoriaMB, recursos.back().uiHandles, recursos.back().uiThreads);
    std::fflush(stdout);
  }
  for (apoio::ProcessoFilho &cliente : clientes) {
    EXPECT_EQ(cliente.Espera(), 0);
  }
  EXPECT_EQ(WaitForSingleObject(servidores[0].get(), 0), static_cast<DWORD>(WAIT_TIMEOUT)) << "the server has ended";
  std::cout << uiTotal << " calls of " << kClientes << " clients on " << kEmpresas << " companies, " << uiTotalFalhas
            << " failed" << std::endl;
  EXPECT_EQ(uiTotalFalhas, 0U);
  // Companies come and go, and threads with them: from the second slice on the most that was in use is looked at.
  const auto maior = [&](auto membro, unsigned uiDe, unsigned uiAte) {
    auto valor = recursos[uiDe].*membro;
    for (unsigned i = uiDe; i < uiAte; ++i) {
      valor = std::max(valor, recursos[i].*membro);
    }
    return valor;
  };
  EXPECT_LE(maior(&Recursos::dMemoriaMB, 7, 10), maior(&Recursos::dMemoriaMB, 1, 4) * 1.05 + 1);
  EXPECT_LE(maior(&Recursos::uiHandles, 7, 10), maior(&Recursos::uiHandles, 1, 4) + 10);
  EXPECT_LE(maior(&Recursos::uiThreads, 7, 10), maior(&Recursos::uiThreads, 1, 4) + 4);
  if (uiSegundos >= kSegundosDeDemora) {
    EXPECT_LE(demoras.back(), demoras[1] * kMaisDemora) << "the last calls against those of the second slice";
  }
}

}  // namespace
}  // namespace campanha
