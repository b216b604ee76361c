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
}

/// What it refuses itself, and what it leaves in the outputs of calls that fail.
TEST(ClienteCom, RecusaAntesDaChamadaEEsvaziaSaidas) {
  const apoiocom::Empresa empresa;
  CQZVeiculosHR veiculos;
  EXPECT_EQ(veiculos.Inicializa("", 1, 1), E_POINTER);
  ASSERT_EQ(veiculos.Cria(), S_OK);
  std::vector<LONG> posicoes{7};
  EXPECT_TRUE(FAILED(veiculos.BuscaPonteiros({}, posicoes)));
  EXPECT_TRUE(posicoes.empty());
  EXPECT_EQ(veiculos.Inicializa(std::string_view("A\0B", 3), 1, 1), E_INVALIDARG);
  ASSERT_EQ(veiculos.Inicializa(empresa.Codigo(), 1, 1), S_OK);

  LONG lPos = 0;
  ASSERT_EQ(veiculos.Grava(lPos, apoiocom::Veiculo("ABCDEFGHIJKLM")), S_OK);
  tagREG_VEICULOPS veiculo{};
  EXPECT_EQ(veiculos.Existe("ABCDEFGHIJKLM", lPos, veiculo), S_OK);
  EXPECT_EQ(lPos, 1);
  EXPECT_EQ(veiculos.Existe("ABCDEFGHIJKLMN", lPos, veiculo), E_INVALIDARG);
  EXPECT_EQ(lPos, 0);
  EXPECT_EQ(CodigoDe(veiculo), "");
  try {
    CQZVeiculos(empresa.Codigo(), 1, 1).Le(2);
    ADD_FAILURE();
  } catch (const CQZErroVeiculos &erro) {
    EXPECT_EQ(apoiocom::Bits(erro.GetHR()), 0x810809DAU);
  }
}

}  // namespace
