#include "server/LinhaComando.h"

#include <gtest/gtest.h>

TEST(LinhaComando, PrimeiraPalavraInteiraQueCasaDecide) {
  const struct {
    const char *lpLinha;
    Comando eComando;
  } linhas[] = {
      {nullptr, Comando::Serve},
      {"", Comando::Serve},
      {"-Embedding", Comando::Serve},
      {"RegServer", Comando::Serve},
      {"/RegServer", Comando::Registra},
      {"-regserver", Comando::Registra},
      {"/REGSERVER", Comando::Registra},
      {"\"/RegServer\"", Comando::Registra},
      {"/UnregServer", Comando::Desregistra},
      {"/RegServerPerUser", Comando::RegistraPorUsuario},
      {"-unregserverperuser", Comando::DesregistraPorUsuario},
      {"/RegServerX", Comando::Serve},
      {"/RegServe", Comando::Serve},
      {"/ RegServer", Comando::Serve},
      {"x-RegServer", Comando::Registra},
      {"-Embedding\t/UnregServer", Comando::Desregistra},
      {"/UnregServer /RegServer", Comando::Desregistra},
      {"//RegServer", Comando::Registra},
      {"-", Comando::Serve},
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
