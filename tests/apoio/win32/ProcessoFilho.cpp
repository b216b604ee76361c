#include "tests/apoio/ProcessoFilho.h"

#include <io.h>
#include <windows.h>

#include <stdexcept>
#include <utility>

namespace apoio {
namespace {

/// An argument without quotes in it, as the C runtime of the child will read it back.
std::string Citado(const std::string &sArgumento) {
  return "\"" + sArgumento + (sArgumento.ends_with('\\') ? "\\\"" : "\"");
}

/// A pipe of which only the child's end is inherited; returns a descriptor of ours.
int CriaTubo(HANDLE *leitura, HANDLE *escrita, const HANDLE *nossa) {
  SECURITY_ATTRIBUTES herdavel{sizeof(herdavel), nullptr, TRUE};
  if (!::CreatePipe(leitura, escrita, &herdavel, 0) || !::SetHandleInformation(*nossa, HANDLE_FLAG_INHERIT, 0)) {
    throw std::runtime_error("no pipe");
  }
  return ::_open_osfhandle(reinterpret_cast<std::intptr_t>(*nossa), 0);
}

}  // namespace

ProcessoFilho::ProcessoFilho(const std::string &sNome, const std::vector<std::string> &argumentos) {
  char programa[MAX_PATH + 1] = "";
  ::GetModuleFileNameA(nullptr, programa, MAX_PATH);
  std::string sComando = Citado(programa) + " --filho " + sNome;
  for (const std::string &sArgumento : argumentos) {
    sComando += " " + Citado(sArgumento);
  }
  STARTUPINFOA inicio{};
  inicio.cb = sizeof(inicio);
  inicio.dwFlags = STARTF_USESTDHANDLES;
  inicio.hStdError = ::GetStdHandle(STD_ERROR_HANDLE);
  HANDLE hNossa = nullptr;
  m_entrada = CriaTubo(&inicio.hStdInput, &hNossa, &hNossa);
  m_saida = CriaTubo(&hNossa, &inicio.hStdOutput, &hNossa);
  PROCESS_INFORMATION processo{};
  const BOOL bIniciou =
      ::CreateProcessA(programa, sComando.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &inicio, &processo);
  ::CloseHandle(inicio.hStdInput);
  ::CloseHandle(inicio.hStdOutput);
  if (!bIniciou) {
    throw std::runtime_error("no child process");
  }
  ::CloseHandle(processo.hThread);
  m_processo = reinterpret_cast<std::intptr_t>(processo.hProcess);
}

int ProcessoFilho::Espera() {
  FechaEntrada();
  const HANDLE hProcesso = reinterpret_cast<HANDLE>(std::exchange(m_processo, 0));
  DWORD codigo = 0;
  ::WaitForSingleObject(hProcesso, INFINITE);
  ::GetExitCodeProcess(hProcesso, &codigo);
  ::CloseHandle(hProcesso);
  return static_cast<int>(codigo);
}

void ProcessoFilho::Mata() {
  if (m_processo != 0) {
    ::TerminateProcess(reinterpret_cast<HANDLE>(m_processo), 1);
    Espera();
  }
}

}  // namespace apoio
