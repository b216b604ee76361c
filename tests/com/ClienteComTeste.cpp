// The client header against the registered server.

#include "client/QZVeiculosCliente.h"

#include <gtest/gtest.h>

#include <iterator>

#include "tests/com/ApoioCom.h"

using apoiocom::CodigoDe;

namespace {

/// More than a result reads at a time.
constexpr LONG kQtd = 501;

/// What is read is as it is when the walk comes to its block, and each walk has blocks of its own.
TEST(ClienteCom, ResultadoDaBuscaELidoEnquantoSeAnda) {
  const apoiocom::Empresa empresa;
  CQZVeiculos veiculos(empresa.Codigo(), 1, 1);
  for (LONG i = 1; i <= kQtd; ++i) {
    ASSERT_EQ(veiculos.Inclui(apoiocom::Veiculo("C" + std::to_string(i))), i);
  }
  const auto achados = CQZVeiculos(empresa.Codigo(), 1, 1).Busca({});  // which keeps the object that found it
  ASSERT_EQ(achados.size(), static_cast<std::size_t>(kQtd));
  LONG lEsperada = 0;
  for (const CQZVeiculoAchado &achado : achados) {
    ASSERT_EQ(achado.lPosicao, ++lEsperada);
    if (lEsperada == 1) {
      veiculos.Grava(2, apoiocom::Veiculo("NOVO2"));
      veiculos.Grava(kQtd, apoiocom::Veiculo("NOVO501"));
    }
    ASSERT_EQ(CodigoDe(achado.veiculo), (lEsperada == kQtd ? "NOVO" : "C") + std::to_string(lEsperada));
  }
  EXPECT_EQ(lEsperada, kQtd);

  auto primeiro = achados.begin();
  auto segundo = achados.begin();
  std::advance(primeiro, kQtd - 1);
  EXPECT_EQ((*primeiro).lPosicao, kQtd);
  EXPECT_EQ(CodigoDe((*segundo).veiculo), "C1");
  EXPECT_EQ(CodigoDe((*std::next(segundo)).veiculo), "NOVO2");
  EXPECT_EQ(CodigoDe((*primeiro).veiculo), "NOVO501");

  tagREG_FILTRO_VEICULOSPS nenhum{};
  nenhum.iAnoInicial = 9999;
  const auto vazio = veiculos.Busca(nenhum);
  EXPECT_TRUE(vazio.empty() && vazio.begin() == vazio.end());
  EXPECT_THROW(veiculos.Le(kQtd + 1), CQZErroVeiculos);
}

}  // namespace
