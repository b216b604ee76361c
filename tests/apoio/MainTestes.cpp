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

}  // namespace apoio

int main(int argc, char **argv) {
  if (argc >= 3 && std::string(argv[1]) == "--filho") {
    const auto achada = apoio::Filhas().find(argv[2]);
    return achada != apoio::Filhas().end() ? achada->second({argv + 3, argv + argc}) : 127;
  }
  testing::InitGoogleTest(&argc, argv);
  // The switch in the machine's registry belongs to the tests of the registered server.
  const apoio::ChaveCabecalho cabecalhos(std::getenv("KALVO_TESTE_CABECALHO") != nullptr);
  return RUN_ALL_TESTS();
}
