// Clients that work for long on many companies: what the server uses stays the same, and so does the time of its calls.

#include <windows.h>
//
#include <winternl.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <future>
#include <iostream>

#include "tests/campanha/ParteDaCampanha.h"

using namespace apoiocom;

namespace campanha {
namespace {

constexpr unsigned kClientes = 8;
constexpr unsigned kEmpresas = 20;
constexpr UINT kVeiculos = 100;   ///< of each company
constexpr unsigned kFatias = 10;  ///< of the time; the first warms everything up
constexpr double kTiposDeChamada = 6;
constexpr unsigned kVezesPorObjeto = 20;
constexpr double kMaisDemora = 1.2;
/// Below this the time of calls is the machine's other business.
constexpr unsigned kSegundosDeDemora = 120;

/// What a process uses: memory in MB, handles, threads.
using Recursos = std::array<double, 3>;

/// By the system's tables. In that of the processes Wine has no count of the handles in use.
Recursos RecursosDe(HANDLE hProcesso) {
  static std::array<ULONGLONG, 1 << 17> s_tabela;
  const DWORD idProcesso = GetProcessId(hProcesso);
  const auto le = [](SYSTEM_INFORMATION_CLASS eTabela) {
    EXPECT_EQ(NtQuerySystemInformation(eTabela, s_tabela.data(), sizeof(s_tabela), nullptr), 0);
    return reinterpret_cast<const char *>(s_tabela.data());
  };
  const auto *const pHandles = reinterpret_cast<const SYSTEM_HANDLE_INFORMATION *>(le(SystemHandleInformation));
  const auto dele = [&](const SYSTEM_HANDLE_ENTRY &handle) { return LOWORD(handle.OwnerPid) == LOWORD(idProcesso); };
  const auto handles = std::count_if(pHandles->Handle, pHandles->Handle + pHandles->Count, dele);
  const char *pBytes = le(SystemProcessInformation);
  const auto processo = [&] { return reinterpret_cast<const SYSTEM_PROCESS_INFORMATION *>(pBytes); };
  while (reinterpret_cast<ULONG_PTR>(processo()->UniqueProcessId) != idProcesso && processo()->NextEntryOffset != 0) {
    pBytes += processo()->NextEntryOffset;
  }
  return {static_cast<double>(processo()->VirtualMemoryCounters.WorkingSetSize) / 1048576, static_cast<double>(handles),
          static_cast<double>(processo()->NumberOfThreads)};
}

/// A call of each kind; all must work. What is written is what was there.
bool Chama(IQZDF_Veiculos &veiculos, std::mt19937 &gerador) {
  std::array<LONG, 50> posicoes{};
  posicoes.fill(static_cast<LONG>(1 + gerador() % kVeiculos));
  LONG lPos = posicoes[0];
  std::array<tagREG_VEICULOPS, 50> lidos{};
  tagREG_FILTRO_VEICULOSPS filtro{};
  Preenche(filtro.szDescricao, "*" + std::string(2, static_cast<char>('A' + gerador() % 26)) + "*");
  UINT uiQtd = 0;
  tagRESULTADO_BUSCA_VEICULOS achados{};
  const HRESULT hrBusca = veiculos.BuscaPonteiros(filtro, &achados);
  CoTaskMemFree(achados.Ponteiros);
  return hrBusca == S_OK && veiculos.Grava(&lPos, VeiculoNumerado(static_cast<std::uint32_t>(lPos))) == S_OK &&
         veiculos.Le(lPos, lidos.data()) == S_OK &&
         veiculos.Existe(Texto(std::to_string(lPos)).Get(), &lPos, lidos.data()) == S_OK &&
         veiculos.LePonteiros(static_cast<UINT>(posicoes.size()), posicoes.data(), lidos.data()) == S_OK &&
         veiculos.GetQuantidadeRegistros(&uiQtd) == S_OK && uiQtd == kVeiculos;
}

using Resistencia = ParteDaCampanha;

TEST_F(Resistencia, MemoriaHandlesThreadsEDemoraNaoCrescem) {
  const unsigned uiSegundos = apoio::DoAmbiente("KALVO_SEGUNDOS", 6);
  const double dFatia = static_cast<double>(uiSegundos) / kFatias;
  const Apartamento apartamento;
  for (unsigned i = 0; i < kEmpresas; ++i) {
    const Veiculos spVeiculos = Abre(m_empresas.emplace_back().Codigo());
    ASSERT_TRUE(spVeiculos);
    for (std::uint32_t uiNumero = 1; uiNumero <= kVeiculos; ++uiNumero) {
      LONG lPos = 0;
      ASSERT_EQ(spVeiculos->Grava(&lPos, VeiculoNumerado(uiNumero)), S_OK);
    }
  }
  const std::vector<Handle> servidores = Servidores();
  ASSERT_EQ(servidores.size(), 1U);
  std::atomic<bool> bFim = false;
  std::atomic<unsigned> uiVezes = 0;
  const auto trabalha = [&](unsigned uiSemente) {
    const Apartamento dele;
    std::mt19937 gerador(uiSemente);
    Veiculos spVeiculos;
    for (unsigned i = 0; !bFim; ++i, ++uiVezes) {
      if (i % kVezesPorObjeto == 0) {
        spVeiculos = Abre(m_empresas[gerador() % kEmpresas].Codigo());
      }
      if (!spVeiculos || !Chama(*spVeiculos, gerador)) {
        return false;
      }
    }
    return true;
  };
  std::vector<std::future<bool>> clientes;
  for (unsigned i = 0; i < kClientes; ++i) {
    clientes.push_back(std::async(std::launch::async, trabalha, static_cast<unsigned>(m_gerador())));
  }
  std::vector<Recursos> recursos;
  std::vector<double> demoras;
  double dChamadas = 0;
  for (unsigned uiFatia = 1; uiFatia <= kFatias; ++uiFatia) {
    EXPECT_EQ(WaitForSingleObject(servidores[0].get(), static_cast<DWORD>(dFatia * 1000)),
              static_cast<DWORD>(WAIT_TIMEOUT))
        << "the server has ended";
    const double dDaFatia = uiVezes.exchange(0) * kTiposDeChamada;
    dChamadas += dDaFatia;
    recursos.push_back(RecursosDe(servidores[0].get()));
    demoras.push_back(dFatia * kClientes / dDaFatia * 1e6);
    std::printf("%6.1f s: %7.0f calls, %7.0f us each; server %6.1f MB, %4.0f handles, %3.0f threads\n",
                dFatia * uiFatia, dDaFatia, demoras.back(), recursos.back()[0], recursos.back()[1], recursos.back()[2]);
    std::fflush(stdout);
  }
  bFim = true;
  for (std::future<bool> &cliente : clientes) {
    EXPECT_TRUE(cliente.get()) << "a call has failed";
  }
  std::cout << dChamadas << " calls of " << kClientes << " clients on " << kEmpresas << " companies; " << Veredito()
            << std::endl;
  // Companies come and go, and threads with them: from the second slice on the most that was in use is looked at.
  constexpr Recursos kMais{1, 10, 4};
  for (std::size_t i = 0; i < kMais.size(); ++i) {
    const auto maior = [&](unsigned uiDe) {
      return std::max({recursos[uiDe][i], recursos[uiDe + 1][i], recursos[uiDe + 2][i]});
    };
    EXPECT_GT(maior(1), 0);
    EXPECT_LE(maior(7), maior(1) * (i == 0 ? 1.05 : 1) + kMais[i]) << "resource " << i;
  }
  EXPECT_TRUE(uiSegundos < kSegundosDeDemora || demoras.back() <= demoras[1] * kMaisDemora)
      << "the last calls against those of the second slice";
}

}  // namespace
}  // namespace campanha
