#include "tests/apoio/ProcessoFilho.h"

#include <windows.h>

#include <stdexcept>
#include <utility>

namespace apoio {
namespace {

/// An argument without quotes in it, as the C runtime of the child will read it back.
std::string Citado(const std::string &argumento) {
  return "\"" + argumento + (argumento.ends_with('\\') ? "\\\"" : "\"");
}

void Fecha(HANDLE *h) {
  if (*h != nullptr) {
    ::CloseHandle(std::exchange(*h, nullptr));
  }
}

/// A pipe of which only the child's end is inherited.
void CriaTubo(HANDLE *leitura, HANDLE *escrita, HANDLE *nossa) {
  SECURITY_ATTRIBUTES herdavel{sizeof(herdavel), nullptr, TRUE};
  if (!::CreatePipe(leitura, escrita, &herdavel, 0) || !::SetHandleInformation(*nossa, HANDLE_FLAG_INHERIT, 0)) {
    throw std::runtime_error("no pipe");
  }
}

}  // namespace

struct ProcessoFilho::Sistema {
  HANDLE hProcesso = nullptr;
  HANDLE hEntrada = nullptr;  ///< the child's input, our end
  HANDLE hSaida = nullptr;    ///< the child's output, our end
};

ProcessoFilho::ProcessoFilho(const std::string &nome, const std::vector<std::string> &argumentos)
    : m_sistema(std::make_unique<Sistema>()) {
  char programa[MAX_PATH + 1] = "";
  ::GetModuleFileNameA(nullptr, programa, MAX_PATH);
  std::string comando = Citado(programa);
  comando.append(" --filho ").append(Citado(nome));
  for (const std::string &argumento : argumentos) {
    comando.append(" ").append(Citado(argumento));
  }
  STARTUPINFOA inicio{};
  inicio.cb = sizeof(inicio);
  inicio.dwFlags = STARTF_USESTDHANDLES;
  inicio.hStdError = ::GetStdHandle(STD_ERROR_HANDLE);
  CriaTubo(&inicio.hStdInput, &m_sistema->hEntrada, &m_sistema->hEntrada);
  CriaTubo(&m_sistema->hSaida, &inicio.hStdOutput, &m_sistema->hSaida);
  PROCESS_INFORMATION processo{};
  const BOOL bIniciou =
      ::CreateProcessA(programa, comando.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &inicio, &processo);
  Fecha(&inicio.hStdInput);
  Fecha(&inicio.hStdOutput);
  if (!bIniciou) {
    throw std::runtime_error("no child process");
  }
  ::CloseHandle(processo.hThread);
  m_sistema->hProcesso = processo.hProcess;
}

ProcessoFilho::~ProcessoFilho() {
  Mata();
  Fecha(&m_sistema->hEntrada);
  Fecha(&m_sistema->hSaida);
}

std::string ProcessoFilho::LeLinha() {
  std::string linha;
  char letra = 0;
  DWORD lidos = 0;
  while (::ReadFile(m_sistema->hSaida, &letra, 1, &lidos, nullptr) && lidos == 1 && letra != '\n') {
    if (letra != '\r') {
      linha += letra;
    }
  }
  return linha;
}

void ProcessoFilho::EnviaLinha(const std::string &linha) {
  const std::string completa = linha + "\n";
  DWORD gravados = 0;
  if (!::WriteFile(m_sistema->hEntrada, completa.data(), static_cast<DWORD>(completa.size()), &gravados, nullptr)) {
    throw std::runtime_error("child does not listen");
  }
}

int ProcessoFilho::Espera() {
  Fecha(&m_sistema->hEntrada);
  DWORD codigo = 0;
  ::WaitForSingleObject(m_sistema->hProcesso, INFINITE);
  ::GetExitCodeProcess(m_sistema->hProcesso, &codigo);
  Fecha(&m_sistema->hProcesso);
  return static_cast<int>(codigo);
}

void ProcessoFilho::Mata() {
  if (m_sistema->hProcesso != nullptr) {
    ::TerminateProcess(m_sistema->hProcesso, 1);
    Espera();
  }
}

}  // namespace apoio
