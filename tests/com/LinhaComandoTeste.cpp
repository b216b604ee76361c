#include "server/LinhaComando.h"

#include <gtest/gtest.h>

TEST(LinhaComando, PrimeiraPalavraInteiraQueCasaDecide) {
  const struct {
    const char *lpLinha;
    EComando eComando;
  } linhas[] = {
      {nullptr, EComando::Serve},
      {"-regSERVER", EComando::Registra},
      {"\"/RegServer\"", EComando::Registra},
      {"RegServer /RegServerPerUser", EComando::RegistraPorUsuario},
      {"/RegServe", EComando::Serve},
      {"x-RegServer", EComando::Registra},
      {"-Embedding\t/UnregServer", EComando::Desregistra},
      {"/UnregServer /RegServer", EComando::Desregistra},
  };
  for (const auto &linha : linhas) {
    EXPECT_EQ(LeLinhaComando(linha.lpLinha), linha.eComando) << (linha.lpLinha != nullptr ? linha.lpLinha : "(null)");
  }
  EXPECT_TRUE(IniciadoParaCliente("-x -Embedding"));
  EXPECT_FALSE(IniciadoParaCliente("Embedding /?"));
}
