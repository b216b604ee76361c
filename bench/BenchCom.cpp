// What calls through COM cost: a client process against the registered server, company 0001, which must be empty.

#include <chrono>
#include <cstdio>

#include "client/QZVeiculosCliente.h"
// After the header that brings in windows.h.
#include <psapi.h>
#include <tlhelp32.h>

namespace {

/// Runs `acao` so many times and prints the mean of one.
template <class Acao>
void Mede(const char *lpNome, int vezes, Acao &&acao) {
  const auto inicio = std::chrono::steady_clock::now();
  for (int i = 0; i < vezes; ++i) {
    acao(i);
  }
  const std::chrono::duration<double, std::micro> total = std::chrono::steady_clock::now() - inicio;
  std::printf("%-42s%12.1f us\n", lpNome, total.count() / vezes);
}

/// What the one running server uses: what is in memory, and what it has asked for.
void MedeMemoria() {
  const HANDLE hRetrato = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  PROCESSENTRY32 processo{};
  processo.dwSize = sizeof(processo);
  for (BOOL bHa = Process32First(hRetrato, &processo); bHa; bHa = Process32Next(hRetrato, &processo)) {
    if (lstrcmpiA(processo.szExeFile, "Kalvo.exe") != 0) {
      continue;
    }
    const HANDLE hServidor = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processo.th32ProcessID);
    PROCESS_MEMORY_COUNTERS memoria{};
    if (hServidor != nullptr && GetProcessMemoryInfo(hServidor, &memoria, sizeof(memoria))) {
      std::printf("%-42s%12.1f MB\n", "idle server, working set",
                  static_cast<double>(memoria.WorkingSetSize) / 1048576);
      std::printf("%-42s%12.1f MB\n", "idle server, committed", static_cast<double>(memoria.PagefileUsage) / 1048576);
    }
    CloseHandle(hServidor);
  }
  CloseHandle(hRetrato);
}

void MedeTudo() {
  Mede("create, initialise and release, server warm", 50, [](int) { CQZVeiculos veiculos("0001", 1, 1); });
  CQZVeiculos veiculos("0001", 1, 1);
  tagREG_VEICULOPS veiculo{};
  Mede("Grava, append", 1000, [&](int i) {
    veiculo.iAno = static_cast<unsigned>(i);
    veiculos.Grava(0, veiculo);
  });
  Mede("Le", 2000, [&](int i) { veiculos.Le(i % 1000 + 1); });
  Mede("GetQuantidadeRegistros", 2000, [&](int) { veiculos.GetQuantidadeRegistros(); });
  std::vector<LONG> aPosicoes;
  Mede("BuscaPonteiros, 1,000 hits", 200, [&](int) { aPosicoes = veiculos.BuscaPonteiros({}); });
  Mede("LePonteiros, 1,000 records", 200, [&](int) { veiculos.LePonteiros(aPosicoes); });
}

}  // namespace

int main() {
  try {
    const CQZApartamento apartamento;
    const auto inicio = std::chrono::steady_clock::now();
    CQZVeiculosHR primeiro;
    VerificaHR(primeiro.Cria());
    const std::chrono::duration<double, std::milli> fria = std::chrono::steady_clock::now() - inicio;
    std::printf("%-42s%12.1f ms\n", "first activation, server not running", fria.count());
    MedeMemoria();
    MedeTudo();
    return 0;
  } catch (const CQZErroVeiculos &erro) {
    std::fprintf(stderr, "%s\n", erro.what());
    return 1;
  }
}
