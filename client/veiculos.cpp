// veiculos.exe: the vehicle register from the command line, through the service interface.

#include <cstdio>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "client/Ajuda.h"
#include "client/Argumentos.h"
#include "client/Codificacao.h"
#include "client/Comandos.h"
#include "client/Console.h"
#include "client/Interrupcao.h"
#include "client/Servico.h"

namespace {

ESaida Executa(int iPalavras, char **pPalavras) {
  const std::vector<std::string> aTextos = PalavrasDoUsuario(iPalavras, pPalavras);
  const CProgramaConhecido &programa = ProgramaVeiculos();
  if (aTextos.empty()) {
    EscreveErro(TextoAjuda(programa));
    return kUsoErrado;
  }
  if (const std::optional<std::string> sPedido = TextoPedido(aTextos, programa)) {
    Escreve(*sPedido);
    return kSucesso;
  }
  return ExecutaComando(CArgumentos(aTextos, programa));
}

}  // namespace

int main(int argc, char **argv) {
  const CPaginaConsole pagina;
  ObedeceInterrupcao();
  ESaida eResultado = kOperacaoFalhou;
  try {
    eResultado = Executa(argc, argv);
  } catch (const CErroUso &erro) {
    EscreveErro(std::string(erro.what()) + "\nUse \"veiculos --ajuda\" para ver o modo de usar.\n"_pt);
    eResultado = kUsoErrado;
  } catch (const CQZErroVeiculos &erro) {
    EscreveErro(TextoDaFalha(erro));
  } catch (const CInterrompido &erro) {
    EscreveErro(std::string(erro.what()) + "\n");
    eResultado = kInterrompida;
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
