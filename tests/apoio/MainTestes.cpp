#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/apoio/ProcessoFilho.h"
#include "tests/apoio/ValoresProprios.h"

int main(int argc, char **argv) {
  // What the machine's registry says of both belongs to the tests of the registered server. Children inherit the
  // switch.
  const apoio::InstalacaoPropria semInstalacao;
  const apoio::ChaveCabecalho cabecalhos(std::getenv("KALVO_TESTE_CABECALHO") != nullptr);
  apoio::ExecutaFilha(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
