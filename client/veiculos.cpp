// veiculos.exe: the vehicle register from the command line, through the service interface.

#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "client/Ajuda.h"
#include "client/Argumentos.h"
#include "client/Codificacao.h"
#include "client/Comandos.h"
#include "client/Console.h"

namespace {

eSaida Executa(int iPalavras, char **pPalavras) {
  const std::vector<std::string> aTextos = PalavrasDoUsuario(iPalavras, pPalavras);
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

int main(int argc, char **argv) {
  const CPaginaConsole pagina;
  eSaida eResultado = kOperacaoFalhou;
  try {
    eResultado = Executa(argc, argv);
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
