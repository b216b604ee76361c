#ifndef KALVO_TESTS_APOIO_PROCESSOFILHO_H
#define KALVO_TESTS_APOIO_PROCESSOFILHO_H

#include <cstdint>
#include <string>
#include <vector>

namespace apoio {

/// What a child process runs instead of the tests; the result is its exit code.
using FuncaoFilha = int (*)(const std::vector<std::string> &argumentos);

/// Makes a function known by name, before main: one object with static storage for each.
class RegistraFilha {
public:
  RegistraFilha(const char *nome, FuncaoFilha funcao);
};

/// Runs the child function that the program's arguments name, and ends the program. Nothing happens when they name
/// none.
void ExecutaFilha(int argc, char **argv);

/// The running test program once more, as a child that runs one registered function. The two talk in lines: the
/// child's standard input and output are pipes to the parent; its error output is the parent's.
class ProcessoFilho {
public:
  /// The arguments may not hold quotes. Throws std::runtime_error when the process cannot be started.
  explicit ProcessoFilho(const std::string &nome, const std::vector<std::string> &argumentos = {});
  /// Ends the child if it still runs.
  ~ProcessoFilho();
  ProcessoFilho(const ProcessoFilho &) = delete;
  ProcessoFilho &operator=(const ProcessoFilho &) = delete;

  /// Next line that the child writes, without its end; empty when the child ended. Blocks.
  std::string LeLinha();
  /// Sends a line; nobody reads it when the child has ended.
  void EnviaLinha(const std::string &sLinha);
  /// Closes the child's input, waits for its end and returns its exit code.
  int Espera();
  /// Ends the child by force, as a crash would, and waits until it is gone.
  void Mata();

private:
  void FechaEntrada();

  std::intptr_t m_processo = 0;  ///< id or handle; 0 when it has ended
  int m_entrada = -1;            ///< descriptor of the child's input, our end
  int m_saida = -1;              ///< descriptor of the child's output, our end
};

}  // namespace apoio

#endif
