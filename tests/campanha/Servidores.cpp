#include "tests/campanha/Servidores.h"

#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <stdexcept>

#include "tests/com/ApoioCom.h"

using apoiocom::Handle;

namespace campanha {
namespace {

void ParaCadaServidor(const std::function<void(const PROCESSENTRY32 &)> &faz) {
  const Handle hRetrato(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  PROCESSENTRY32 processo{};
  processo.dwSize = sizeof(processo);
  for (BOOL bHa = Process32First(hRetrato.get(), &processo); bHa; bHa = Process32Next(hRetrato.get(), &processo)) {
    if (lstrcmpiA(processo.szExeFile, "Kalvo.exe") == 0) {
      faz(processo);
    }
  }
}

/// The system's table of all handles, which Windows and Wine both have; Wine does not count those of a process.
std::size_t HandlesDe(DWORD idProcesso) {
  constexpr ULONG kTabelaDeHandles = 64;
  constexpr auto kPequeno = static_cast<LONG>(0xC0000004);
  using FuncaoTabela = LONG(WINAPI *)(ULONG, void *, ULONG, ULONG *);
  struct Entrada {
    void *pObjeto;
    ULONG_PTR idDono;
    ULONG_PTR uiValor;
    ULONG uiAcesso;
    USHORT uiRastro;
    USHORT uiTipo;
    ULONG uiAtributos;
    ULONG uiReservado;
  };
  const auto tabelaDoSistema = reinterpret_cast<FuncaoTabela>(
      reinterpret_cast<void *>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation")));
  std::vector<std::uint64_t> tabela(1 << 14);
  LONG estado = kPequeno;
  for (; estado == kPequeno; tabela.resize(tabela.size() * 2)) {
    estado = tabelaDoSistema(kTabelaDeHandles, tabela.data(), static_cast<ULONG>(tabela.size() * 8), nullptr);
  }
  if (estado < 0) {
    throw std::runtime_error("no table of handles");
  }
  const auto *pEntradas = reinterpret_cast<const Entrada *>(tabela.data() + 2);
  return static_cast<std::size_t>(std::count_if(pEntradas, pEntradas + tabela[0],
                                                [&](const Entrada &entrada) { return entrada.idDono == idProcesso; }));
}

}  // namespace

std::vector<DWORD> IdsDosServidores() {
  std::vector<DWORD> ids;
  ParaCadaServidor([&](const PROCESSENTRY32 &processo) { ids.push_back(processo.th32ProcessID); });
  return ids;
}

void MataServidor(DWORD idProcesso) {
  const Handle hServidor(OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, idProcesso));
  if (hServidor) {
    TerminateProcess(hServidor.get(), 1);
    if (WaitForSingleObject(hServidor.get(), apoiocom::kPrazo) != WAIT_OBJECT_0) {
      throw std::runtime_error("a server cannot be ended");
    }
  }
}

void MataServidores() {
  for (const DWORD idProcesso : IdsDosServidores()) {
    MataServidor(idProcesso);
  }
}

void EsqueceServidores() {
  // On Windows there is nothing to forget, and the service refuses to stop.
  std::system("net stop RpcSs >NUL 2>&1");
}

Recursos RecursosDe(DWORD idProcesso) {
  Recursos recursos;
  ParaCadaServidor([&](const PROCESSENTRY32 &processo) {
    recursos.uiThreads += processo.th32ProcessID == idProcesso ? processo.cntThreads : 0;
  });
  const Handle hServidor(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, idProcesso));
  PROCESS_MEMORY_COUNTERS memoria{};
  if (!hServidor || !GetProcessMemoryInfo(hServidor.get(), &memoria, sizeof(memoria))) {
    throw std::runtime_error("the server cannot be examined");
  }
  recursos.dMemoriaMB = static_cast<double>(memoria.WorkingSetSize) / 1048576;
  recursos.uiHandles = HandlesDe(idProcesso);
  return recursos;
}

}  // namespace campanha
