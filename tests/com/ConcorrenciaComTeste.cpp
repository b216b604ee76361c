#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/apoio/ProcessoFilho.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

constexpr int kProcessos = 8;
constexpr int kThreads = 3;
constexpr int kPorThread = 25;

std::string CodigoGravado(const std::string &sPrefixo, int iThread, int i) {
  return sPrefixo + std::to_string(iThread) + "-" + std::to_string(i);
}

/// Writes and reads back on several threads over one object; the exit code is the number of calls that went wrong.
int GravaEConfere(const std::vector<std::string> &argumentos) {
  const Apartamento apartamento;
  const Veiculos spVeiculos = Abre(argumentos[0]);
  if (!spVeiculos) {
    return 255;
  }
  std::vector<int> erradas(kThreads, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      const Apartamento apartamentoDaThread;
      for (int i = 0; i < kPorThread; ++i) {
        const std::string sCodigo = CodigoGravado(argumentos[1], t, i);
        LONG lPos = 0;
        LONG lAchado = 0;
        tagREG_VEICULOPS lido{};
        const bool bCerto = SUCCEEDED(spVeiculos->Grava(&lPos, Veiculo(sCodigo))) &&
                            SUCCEEDED(spVeiculos->Le(lPos, &lido)) && CodigoDe(lido) == sCodigo &&
                            SUCCEEDED(spVeiculos->Existe(Texto(sCodigo).Ponteiro(), &lAchado, &lido)) &&
                            lAchado == lPos;
        erradas[static_cast<std::size_t>(t)] += bCerto ? 0 : 1;
      }
    });
  }
  int iErradas = 0;
  for (std::size_t t = 0; t < threads.size(); ++t) {
    threads[t].join();
    iErradas += erradas[t];
  }
  return iErradas;
}

const apoio::RegistraFilha g_grava("grava_e_confere", GravaEConfere);

std::string Prefixo(int iProcesso) {
  return "P" + std::to_string(iProcesso) + "T";
}

std::vector<std::string> CodigosDe(int iProcesso) {
  std::vector<std::string> codigos;
  for (int t = 0; t < kThreads; ++t) {
    for (int i = 0; i < kPorThread; ++i) {
      codigos.push_back(CodigoGravado(Prefixo(iProcesso), t, i));
    }
  }
  return codigos;
}

/// Starts all clients, each on the company it is given, and waits for them.
void ExecutaClientes(const std::vector<std::string> &empresas) {
  std::vector<std::unique_ptr<apoio::ProcessoFilho>> clientes;
  for (int p = 0; p < kProcessos; ++p) {
    clientes.push_back(std::make_unique<apoio::ProcessoFilho>(
        "grava_e_confere", std::vector<std::string>{empresas[static_cast<std::size_t>(p)], Prefixo(p)}));
  }
  for (auto &spCliente : clientes) {
    EXPECT_EQ(spCliente->Espera(), 0);
  }
}

}  // namespace

TEST(ConcorrenciaCom, OitoProcessosNaMesmaEmpresa) {
  const Empresa empresa;
  const Veiculos spAquece = Cria();  // several clients that start a server at once get several under Wine
  ASSERT_TRUE(spAquece);
  ExecutaClientes(std::vector<std::string>(kProcessos, empresa.Codigo()));
  std::vector<std::string> esperados;
  for (int p = 0; p < kProcessos; ++p) {
    const std::vector<std::string> codigos = CodigosDe(p);
    esperados.insert(esperados.end(), codigos.begin(), codigos.end());
  }
  std::sort(esperados.begin(), esperados.end());
  EXPECT_EQ(TodosOsCodigos(empresa.Codigo()), esperados);
}

TEST(ConcorrenciaCom, OitoProcessosCadaUmNaSuaEmpresa) {
  const std::vector<std::unique_ptr<Empresa>> empresas = [] {
    std::vector<std::unique_ptr<Empresa>> criadas;
    for (int p = 0; p < kProcessos; ++p) {
      criadas.push_back(std::make_unique<Empresa>());
    }
    return criadas;
  }();
  const Veiculos spAquece = Cria();
  ASSERT_TRUE(spAquece);
  std::vector<std::string> codigos;
  for (const auto &spEmpresa : empresas) {
    codigos.push_back(spEmpresa->Codigo());
  }
  ExecutaClientes(codigos);
  for (int p = 0; p < kProcessos; ++p) {
    std::vector<std::string> esperados = CodigosDe(p);
    std::sort(esperados.begin(), esperados.end());
    EXPECT_EQ(TodosOsCodigos(codigos[static_cast<std::size_t>(p)]), esperados) << p;
  }
}
