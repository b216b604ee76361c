#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "tests/apoio/ProcessoFilho.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

void DizAoPai(const std::string &sLinha) {
  std::cout << sLinha << std::endl;
}

/// Writes vehicles, naming each acknowledged code, until it is ended by force.
int GravaSemFim(const std::vector<std::string> &argumentos) {
  const Apartamento apartamento;
  const Veiculos spVeiculos = Abre(argumentos[0]);
  LONG lPos = 0;
  for (int i = 1; spVeiculos && spVeiculos->Grava(&lPos, Veiculo("M" + std::to_string(i))) == S_OK; ++i, lPos = 0) {
    DizAoPai("M" + std::to_string(i));
  }
  return 1;
}

/// Activates as soon as its parent says so, and ends with the creation's result.
int AtivaQuandoMandam(const std::vector<std::string> & /*argumentos*/) {
  const Apartamento apartamento;
  DizAoPai("pronto");
  std::string sLinha;
  std::getline(std::cin, sLinha);
  HRESULT hr = S_OK;
  const Veiculos spVeiculos = Cria(&hr);
  return hr;
}

const apoio::RegistraFilha g_ativa("ativa_quando_mandam", AtivaQuandoMandam);
const apoio::RegistraFilha g_grava("grava_sem_fim", GravaSemFim);

constexpr long kMinimoSemUso = 4500;  ///< what 5000 ms may come to by the system's ticks
constexpr long kMaximoSemUso = 9000;  ///< 5000 ms, the pause of 1000 ms, and the time a loaded machine takes to end
constexpr std::size_t kJuntos = 8;
constexpr DWORD kMaisQueSemPrimeiro = 40000;  ///< more than one that the platform started waits for its first object

}  // namespace

TEST(CicloDeVidaCom, TerminaCincoSegundosDepoisDoUltimoObjeto) {
  { ASSERT_TRUE(Cria()); }
  const std::vector<Handle> servidores = Servidores();
  ASSERT_EQ(servidores.size(), 1U);
  ASSERT_EQ(WaitForSingleObject(servidores[0].get(), 3000), static_cast<DWORD>(WAIT_TIMEOUT));
  {
    // The process is watched, not the clock: with a new object it outlives the moment at which it would have ended.
    const Veiculos spNovo = Cria();
    ASSERT_TRUE(spNovo);
    EXPECT_EQ(WaitForSingleObject(servidores[0].get(), 8000), static_cast<DWORD>(WAIT_TIMEOUT));
    EXPECT_EQ(Servidores().size(), 1U);
  }
  const long lTempo = EsperaServidorTerminar();
  EXPECT_GE(lTempo, kMinimoSemUso);
  EXPECT_LE(lTempo, kMaximoSemUso);
}

// Under Wine each of several clients that activate at once starts a server, and most of these get no object. They end
// all the same; one that was started by hand waits for its first client.
TEST(CicloDeVidaCom, ServidorQueNinguemUsaTermina) {
  ASSERT_GE(EsperaServidorTerminar(), 0);
  std::vector<std::unique_ptr<apoio::ProcessoFilho>> clientes;
  for (std::size_t i = 0; i < kJuntos; ++i) {
    clientes.push_back(std::make_unique<apoio::ProcessoFilho>("ativa_quando_mandam"));
    ASSERT_EQ(clientes.back()->LeLinha(), "pronto");
  }
  for (auto &spCliente : clientes) {
    spCliente->EnviaLinha("agora");
  }
  for (auto &spCliente : clientes) {
    EXPECT_EQ(spCliente->Espera(), S_OK);
  }
  const std::vector<Handle> ativados = Servidores();
  std::string sDiagnostico;
  Executa(PastaDoPrograma() + "veiculos.exe", "diagnostico", &sDiagnostico);
  EXPECT_EQ(sDiagnostico.find("deixou sem cliente") != std::string::npos, ativados.size() > 1) << sDiagnostico;

  const Handle hManual = IniciaKalvo();
  ASSERT_TRUE(hManual);
  EXPECT_EQ(WaitForSingleObject(hManual.get(), kMaisQueSemPrimeiro), static_cast<DWORD>(WAIT_TIMEOUT));
  for (const Handle &hServidor : ativados) {
    EXPECT_EQ(WaitForSingleObject(hServidor.get(), 0), WAIT_OBJECT_0);
  }
  EXPECT_EQ(Servidores().size(), 1U);
  EXPECT_TRUE(Cria());
  EXPECT_LE(EsperaServidorTerminar(), kMaximoSemUso);
}

TEST(CicloDeVidaCom, ClienteMortoNoMeioDasChamadasNaoPerdeOConfirmado) {
  const Empresa empresa;
  apoio::ProcessoFilho filho("grava_sem_fim", {empresa.Codigo()});
  LONG lConfirmados = 0;
  for (; lConfirmados < 200; ++lConfirmados) {
    ASSERT_EQ(filho.LeLinha(), "M" + std::to_string(lConfirmados + 1));
  }
  filho.Mata();
  for (; !filho.LeLinha().empty(); ++lConfirmados) {
  }
  const Veiculos spVeiculos = Abre(empresa.Codigo());
  ASSERT_TRUE(spVeiculos);
  unsigned uiGravados = 0;
  EXPECT_EQ(spVeiculos->GetQuantidadeRegistros(&uiGravados), S_OK);
  EXPECT_TRUE(uiGravados == static_cast<unsigned>(lConfirmados) ||
              uiGravados == static_cast<unsigned>(lConfirmados) + 1)
      << uiGravados << ": the call that was under way may have been done";
  for (LONG lPos = 1; lPos <= lConfirmados; ++lPos) {
    tagREG_VEICULOPS veiculo;
    ASSERT_EQ(spVeiculos->Le(lPos, &veiculo), S_OK);
    ASSERT_EQ(CodigoDe(veiculo), "M" + std::to_string(lPos));
  }
}
