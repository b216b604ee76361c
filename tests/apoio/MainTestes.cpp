#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/apoio/ChaveCabecalho.h"
#include "tests/apoio/ProcessoFilho.h"

int main(int argc, char **argv) {
  // The switch in the machine's registry belongs to the tests of the registered server. Children inherit this one.
  const apoio::ChaveCabecalho cabecalhos(std::getenv("KALVO_TESTE_CABECALHO") != nullptr);
  int codigo = 0;
  if (apoio::ExecutaFilha(argc, argv, &codigo)) {
    return codigo;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
