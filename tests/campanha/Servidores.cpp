#include "tests/campanha/Servidores.h"

#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "tests/com/ApoioCom.h"

using apoiocom::Handle;

namespace campanha {
namespace {

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

std::size_t ThreadsDe(DWORD idProcesso) {
  const Handle hRetrato(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
  THREADENTRY32 thread{};
  thread.dwSize = sizeof(thread);
  std::size_t uiQtd = 0;
  for (BOOL bHa = Thread32First(hRetrato.get(), &thread); bHa; bHa = Thread32Next(hRetrato.get(), &thread)) {
    uiQtd += thread.th32OwnerProcessID == idProcesso ? 1 : 0;
  }
  return uiQtd;
}

}  // namespace

std::vector<DWORD> IdsDosServidores() {
  std::vector<DWORD> ids;
  for (const Handle &hServidor : apoiocom::Servidores()) {
    ids.push_back(GetProcessId(hServidor.get()));
  }
  return ids;
}

void Mata(HANDLE hServidor) {
  TerminateProcess(hServidor, 1);
  if (WaitForSingleObject(hServidor, apoiocom::kPrazo) != WAIT_OBJECT_0) {
    throw std::runtime_error("a server cannot be ended");
  }
}

void MataServidores() {
  for (const Handle &hServidor : apoiocom::Servidores()) {
    Mata(hServidor.get());
  }
}

Recursos RecursosDe(HANDLE hServidor) {
  PROCESS_MEMORY_COUNTERS memoria{};
  if (!GetProcessMemoryInfo(hServidor, &memoria, sizeof(memoria))) {
    throw std::runtime_error("the server cannot be examined");
  }
  const DWORD idProcesso = GetProcessId(hServidor);
  return {static_cast<double>(memoria.WorkingSetSize) / 1048576, HandlesDe(idProcesso), ThreadsDe(idProcesso)};
}

}  // namespace campanha
