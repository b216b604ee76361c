#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/apoio/ProcessoFilho.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

constexpr std::size_t kProcessos = 8;
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
  std::atomic<int> iErradas{0};
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
        iErradas += bCerto ? 0 : 1;
      }
    });
  }
  for (std::thread &thread : threads) {
    thread.join();
  }
  return iErradas;
}

const apoio::RegistraFilha g_grava("grava_e_confere", GravaEConfere);

}  // namespace

TEST(ConcorrenciaCom, OitoProcessosNaMesmaEmpresaECadaUmNaSua) {
  const Veiculos spAquece = Cria();  // several clients that start a server at once get several under Wine
  ASSERT_TRUE(spAquece);
  for (const std::size_t uiEmpresas : {std::size_t{1}, kProcessos}) {
    const std::vector<Empresa> empresas(uiEmpresas);
    std::vector<std::vector<std::string>> esperados(uiEmpresas);
    std::vector<std::unique_ptr<apoio::ProcessoFilho>> clientes;
    for (std::size_t p = 0; p < kProcessos; ++p) {
      const std::string sPrefixo = "P" + std::to_string(p) + "T";
      const std::vector<std::string> argumentos{empresas[p % uiEmpresas].Codigo(), sPrefixo};
      clientes.push_back(std::make_unique<apoio::ProcessoFilho>("grava_e_confere", argumentos));
      for (int i = 0; i < kThreads * kPorThread; ++i) {
        esperados[p % uiEmpresas].push_back(CodigoGravado(sPrefixo, i / kPorThread, i % kPorThread));
      }
    }
    for (auto &spCliente : clientes) {
      EXPECT_EQ(spCliente->Espera(), 0);
    }
    for (std::size_t e = 0; e < uiEmpresas; ++e) {
      std::sort(esperados[e].begin(), esperados[e].end());
      EXPECT_EQ(TodosOsCodigos(empresas[e].Codigo()), esperados[e]) << e;
    }
  }
}
