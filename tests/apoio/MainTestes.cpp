#include <gtest/gtest.h>

#include <cstdlib>
#include <map>

#include "tests/apoio/ChaveCabecalho.h"
#include "tests/apoio/ProcessoFilho.h"

namespace apoio {
namespace {

std::map<std::string, FuncaoFilha> &Filhas() {
  static std::map<std::string, FuncaoFilha> filhas;
  return filhas;
}

}  // namespace

RegistraFilha::RegistraFilha(const char *nome, FuncaoFilha funcao) {
  Filhas()[nome] = funcao;
}

bool ExecutaFilha(int argc, char **argv, int *codigo) {
  if (argc < 3 || std::string(argv[1]) != "--filho") {
    return false;
  }
  const auto achada = Filhas().find(argv[2]);
  *codigo = achada != Filhas().end() ? achada->second(std::vector<std::string>(argv + 3, argv + argc)) : 127;
  return true;
}

}  // namespace apoio

int main(int argc, char **argv) {
  int codigo = 0;
  if (apoio::ExecutaFilha(argc, argv, &codigo)) {
    return codigo;
  }
  testing::InitGoogleTest(&argc, argv);
  // The switch in the machine's registry belongs to the tests of the registered server.
  const apoio::ChaveCabecalho cabecalhos(std::getenv("KALVO_TESTE_CABECALHO") != nullptr);
  return RUN_ALL_TESTS();
}
