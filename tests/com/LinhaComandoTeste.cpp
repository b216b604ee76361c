#include "server/LinhaComando.h"

#include <gtest/gtest.h>

TEST(LinhaComando, PrimeiraPalavraInteiraQueCasaDecide) {
  const struct {
    const char *lpLinha;
    EComando eComando;
  } linhas[] = {
      {nullptr, EComando::Serve},
      {"", EComando::Serve},
      {"-Embedding", EComando::Serve},
      {"RegServer", EComando::Serve},
      {"/RegServer", EComando::Registra},
      {"-regserver", EComando::Registra},
      {"/REGSERVER", EComando::Registra},
      {"\"/RegServer\"", EComando::Registra},
      {"/UnregServer", EComando::Desregistra},
      {"/RegServerPerUser", EComando::RegistraPorUsuario},
      {"-unregserverperuser", EComando::DesregistraPorUsuario},
      {"/RegServerX", EComando::Serve},
      {"/RegServe", EComando::Serve},
      {"/ RegServer", EComando::Serve},
      {"x-RegServer", EComando::Registra},
      {"-Embedding\t/UnregServer", EComando::Desregistra},
      {"/UnregServer /RegServer", EComando::Desregistra},
      {"//RegServer", EComando::Registra},
      {"-", EComando::Serve},
  };
  for (const auto &linha : linhas) {
    EXPECT_EQ(LeLinhaComando(linha.lpLinha), linha.eComando) << (linha.lpLinha != nullptr ? linha.lpLinha : "(null)");
  }
}

TEST(LinhaComando, SoAPalavraInteiraDizQueHaCliente) {
  for (const char *lpLinha : {"-Embedding", "/embedding", "\"-Embedding\"", "-x -Embedding"}) {
    EXPECT_TRUE(IniciadoParaCliente(lpLinha)) << lpLinha;
  }
  for (const char *lpLinha : {"", "Embedding", "-Embeddin", "-EmbeddingX", "/?"}) {
    EXPECT_FALSE(IniciadoParaCliente(lpLinha)) << lpLinha;
  }
}
