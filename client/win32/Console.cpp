#include "client/Console.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>

#include <atomic>
#include <memory>
#include <new>

#include "client/Argumentos.h"

namespace {

constexpr UINT kPaginaTextos = 1252;

std::atomic<UINT> g_uiPaginaAnterior{0};  // 0: nothing to put back

}  // namespace

bool EhConsole(std::FILE *pArquivo) {
  DWORD uiModo = 0;
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the C runtime hands out handles as integers
  return GetConsoleMode(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(pArquivo))), &uiModo) != 0;
}

CPaginaConsole::CPaginaConsole() {
  if (EhConsole(stdout) || EhConsole(stderr)) {
    g_uiPaginaAnterior = GetConsoleOutputCP();
    SetConsoleOutputCP(kPaginaTextos);
  }
}

CPaginaConsole::~CPaginaConsole() {
  std::fflush(stdout);
  Restaura();
}

void CPaginaConsole::Restaura() {
  if (const UINT uiAnterior = g_uiPaginaAnterior.exchange(0)) {
    SetConsoleOutputCP(uiAnterior);
  }
}

void SaidaEmBytes() {
  std::fflush(stdout);
  _setmode(_fileno(stdout), _O_BINARY);
}

void EntradaEmBytes() {
  _setmode(_fileno(stdin), _O_BINARY);
}

void Escreve(std::string_view sTexto) {
  std::fwrite(sTexto.data(), 1, sTexto.size(), stdout);
}

void EscreveErro(std::string_view sTexto) {
  // What was written before the failure is shown before it.
  std::fflush(stdout);
  std::fwrite(sTexto.data(), 1, sTexto.size(), stderr);
}

/// Taken from the system and not from main's parameters: those are in the process's code page, and the C runtime
/// replaces a pattern such as ABC* by the names of files.
std::vector<std::string> PalavrasDoUsuario(int /*iPalavras*/, char ** /*pPalavras*/) {
  struct CLibera {
    void operator()(LPWSTR *pTextos) const { LocalFree(pTextos); }
  };
  int iTextos = 0;
  const std::unique_ptr<LPWSTR, CLibera> spTextos(CommandLineToArgvW(GetCommandLineW(), &iTextos));
  if (!spTextos) {
    throw std::bad_alloc();
  }
  return TextosDaLinhaDeComando(std::vector<std::wstring>(spTextos.get() + 1, spTextos.get() + iTextos));
}
