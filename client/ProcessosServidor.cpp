#include "client/ProcessosServidor.h"

#include <windows.h>
//
#include <tlhelp32.h>

#include <vector>

#include "core/platform/win32/Posses.h"

namespace {

constexpr wchar_t kServidor[] = L"Kalvo.exe";

/// A piece of information about a token; empty when it cannot be had.
std::vector<unsigned char> DoToken(HANDLE hToken, TOKEN_INFORMATION_CLASS eClasse) {
  DWORD dwBytes = 0;
  GetTokenInformation(hToken, eClasse, nullptr, 0, &dwBytes);
  std::vector<unsigned char> aBytes(dwBytes);
  if (!GetTokenInformation(hToken, eClasse, aBytes.data(), dwBytes, &dwBytes)) {
    return {};
  }
  aBytes.resize(dwBytes);
  return aBytes;
}

/// Under whom a process runs. The component platform has one server for each of these.
struct CIdentidade {
  std::vector<unsigned char> aConta;  ///< security identifier
  DWORD dwSessao = 0;
  std::vector<unsigned char> aElevacao;

  bool Conhecida() const { return !aConta.empty(); }
  bool operator==(const CIdentidade &) const = default;
};

CIdentidade Identidade(HANDLE hProcesso, DWORD idProcesso) {
  HANDLE hAberto = nullptr;
  CIdentidade identidade;
  if (hProcesso == nullptr || !OpenProcessToken(hProcesso, TOKEN_QUERY, &hAberto) ||
      !ProcessIdToSessionId(idProcesso, &identidade.dwSessao)) {
    return {};
  }
  const plataforma::PosseHandle spToken(hAberto);
  const std::vector<unsigned char> aUsuario = DoToken(hAberto, TokenUser);
  if (!aUsuario.empty()) {
    const PSID pSid = reinterpret_cast<const TOKEN_USER *>(aUsuario.data())->User.Sid;
    const auto *pBytes = static_cast<const unsigned char *>(pSid);
    identidade.aConta.assign(pBytes, pBytes + GetLengthSid(pSid));
  }
  identidade.aElevacao = DoToken(hAberto, TokenElevation);
  return identidade;
}

}  // namespace

CProcessosServidor ContaProcessosServidor() {
  CProcessosServidor processos;
  const CIdentidade minha = Identidade(GetCurrentProcess(), GetCurrentProcessId());
  const HANDLE hRetrato = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  if (hRetrato == INVALID_HANDLE_VALUE) {
    return processos;
  }
  const plataforma::PosseHandle spRetrato(hRetrato);
  PROCESSENTRY32W entrada{};
  entrada.dwSize = sizeof(entrada);
  for (BOOL bHa = Process32FirstW(hRetrato, &entrada); bHa; bHa = Process32NextW(hRetrato, &entrada)) {
    if (lstrcmpiW(entrada.szExeFile, kServidor) == 0) {
      const plataforma::PosseHandle spProcesso(
          OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, entrada.th32ProcessID));
      const bool bMeu = minha.Conhecida() && Identidade(spProcesso.get(), entrada.th32ProcessID) == minha;
      ++(bMeu ? processos.uiMeus : processos.uiOutros);
    }
  }
  return processos;
}
