// veiculos.exe: the vehicle register from the command line, through the service interface.

#include <windows.h>

#include <shellapi.h>

#include <cstdio>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "client/Ajuda.h"
#include "client/Argumentos.h"
#include "client/Codificacao.h"
#include "client/Comandos.h"
#include "client/Saida.h"

namespace {

// Taken from the system and not from main's parameters: those are in the process's code page, and the C runtime
// replaces a pattern such as ABC* by the names of files.
std::vector<std::wstring> PalavrasDaLinhaDeComando() {
  struct CLibera {
    void operator()(LPWSTR *pPalavras) const { LocalFree(pPalavras); }
  };
  int iPalavras = 0;
  const std::unique_ptr<LPWSTR, CLibera> spPalavras(CommandLineToArgvW(GetCommandLineW(), &iPalavras));
  if (!spPalavras) {
    throw std::bad_alloc();
  }
  return {spPalavras.get() + 1, spPalavras.get() + iPalavras};
}

eSaida Executa() {
  const std::vector<std::string> aTextos = TextosDaLinhaDeComando(PalavrasDaLinhaDeComando());
  if (aTextos.empty()) {
    EscreveErro(TextoAjuda());
    return kUsoErrado;
  }
  if (aTextos.size() == 1 && aTextos.front() == "--ajuda") {
    Escreve(TextoAjuda());
    return kSucesso;
  }
  return ExecutaComando(CArgumentos(aTextos, ComandosConhecidos()));
}

}  // namespace

int main() {
  const CPaginaConsole pagina;
  eSaida eResultado = kOperacaoFalhou;
  try {
    eResultado = Executa();
  } catch (const CErroUso &erro) {
    EscreveErro(std::string(erro.what()) + "\nUse \"veiculos --ajuda\" para ver o modo de usar.\n"_pt);
    eResultado = kUsoErrado;
  } catch (const std::bad_alloc &) {
    EscreveErro("memória insuficiente\n"_pt);
  } catch (const std::exception &erro) {
    EscreveErro(std::string(erro.what()) + "\n");
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    EscreveErro("a saída não pôde ser gravada\n"_pt);
    return kOperacaoFalhou;
  }
  return eResultado;
}
