// What only calls from another process show: what the marshalling does to texts and records, the server's own registry,
// and the client header against the registered server.

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "tests/apoio/ValoresProprios.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

TEST(ContratoCom, SemEmpresaFalhaEDepoisFunciona) {
  const Empresa semDiretorio;
  const Empresa boa;
  apoio::RegistroTeste registro;
  registro.DefineTexto(semDiretorio.ChaveDaEmpresa(), "DF", semDiretorio.Caminho("ausente\\"));
  const Veiculos spVeiculos = Cria();
  ASSERT_TRUE(spVeiculos);
  EXPECT_EQ(Bits(spVeiculos->Inicializa(nullptr, 7, 42)), 0x800706F4U);
  const std::pair<CString, std::uint32_t> passos[] = {
      {semDiretorio.Codigo(), 0x80043EBF}, {boa.Codigo(), 0}, {"", 0x810809CF}, {boa.Codigo(), 0}, {"", 0x810809CF}};
  for (const auto &[sEmpresa, hr] : passos) {
    SCOPED_TRACE(sEmpresa);
    EXPECT_EQ(Bits(Inicializa(*spVeiculos, sEmpresa)), hr);
    const std::uint32_t hrChamada = hr == 0 ? 0 : 0x810809E3;
    LONG lPos = 0;
    tagREG_VEICULOPS veiculo = Veiculo("RESTO");
    EXPECT_EQ(Bits(spVeiculos->Grava(&lPos, Veiculo("V001"))), hrChamada);
    EXPECT_EQ(Bits(spVeiculos->Le(1, &veiculo)), hrChamada);
    EXPECT_EQ(CodigoDe(veiculo), hr == 0 ? "V001" : "");
  }
  EXPECT_FALSE(semDiretorio.Existe("ausente"));
}

// What is found for which text the register's own tests say; here texts cross that the marshalling might cut.
TEST(ContratoCom, TextosDeExiste) {
  const Empresa empresa;
  const Veiculos spVeiculos = Abre(empresa.Codigo());
  ASSERT_TRUE(spVeiculos);
  for (const char *lpCodigo : {"V", "A\xC7\xC3O"}) {
    LONG lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo(lpCodigo)), S_OK);
  }
  // A true wide text ends at its first zero byte.
  const std::pair<std::string, LONG> casos[] = {
      {"A\xC7\xC3O", 2}, {std::string("V\0X\0", 4), 1}, {std::string(5000, 'X'), 0}};
  for (const auto &[sTexto, lEsperada] : casos) {
    LONG lPos = 77;
    tagREG_VEICULOPS achado;
    EXPECT_EQ(spVeiculos->Existe(Texto(sTexto).Get(), &lPos, &achado), S_OK) << sTexto;
    EXPECT_EQ(lPos, lEsperada) << sTexto;
  }
}

// Its bytes on disk are for the tests of the vehicles and of the record files to say.
TEST(ContratoCom, RegistroVaiEVoltaInteiroComESemCabecalhos) {
  constexpr char kChave[] = "SOFTWARE\\Wow6432Node\\Tarvel";
  for (const DWORD dwLigado : {0UL, 1UL}) {
    ASSERT_EQ(
        RegSetKeyValueA(HKEY_LOCAL_MACHINE, kChave, apoio::kValorCabecalho, REG_DWORD, &dwLigado, sizeof(dwLigado)), 0);
    const Empresa empresa;
    const tagREG_VEICULOPS esperado = Veiculo("V001");
    tagREG_VEICULOPS veiculo = esperado;
    veiculo.iFiller = 0xAA;  // not part of what is stored
    veiculo.lPosicao = 99;
    std::memset(veiculo.cFiller, 0x55, sizeof(veiculo.cFiller));
    if (const Veiculos spVeiculos = Abre(empresa.Codigo())) {
      LONG lPos = 0;
      EXPECT_EQ(spVeiculos->Grava(&lPos, veiculo), S_OK);
      EXPECT_EQ(spVeiculos->Le(1, &veiculo), S_OK);
    }
    RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, kChave, apoio::kValorCabecalho);
    EXPECT_EQ(std::memcmp(&veiculo, &esperado, sizeof(veiculo)), 0);
    // The company's files are open to the server alone until its last object is gone, which it is by now.
    EXPECT_EQ(empresa.Le("DFVEIC.DAT").size(), 256U + (dwLigado != 0 ? 92 : 0));
  }
}

// What is read is as it is when the walk comes to its block, and each walk has blocks of its own.
TEST(ClienteCom, ResultadoDaBuscaELidoEnquantoSeAnda) {
  constexpr LONG kQtd = 501;  // more than a result reads at a time
  const Empresa empresa;
  CQZVeiculos veiculos(empresa.Codigo(), 1, 1);
  for (LONG i = 1; i <= kQtd; ++i) {
    ASSERT_EQ(veiculos.Inclui(Veiculo("C" + std::to_string(i))), i);
  }
  const auto achados = CQZVeiculos(empresa.Codigo(), 1, 1).Busca({});  // which keeps the object that found it
  ASSERT_EQ(achados.size(), static_cast<std::size_t>(kQtd));
  LONG lEsperada = 0;
  for (const CQZVeiculoAchado &achado : achados) {
    ASSERT_EQ(achado.lPosicao, ++lEsperada);
    if (lEsperada == 1) {
      veiculos.Grava(2, Veiculo("NOVO2"));
      veiculos.Grava(kQtd, Veiculo("NOVO501"));
    }
    ASSERT_EQ(CodigoDe(achado.veiculo), (lEsperada == kQtd ? "NOVO" : "C") + std::to_string(lEsperada));
  }
  EXPECT_EQ(lEsperada, kQtd);

  auto segundo = achados.begin();
  auto primeiro = std::next(achados.begin(), kQtd - 1);
  EXPECT_EQ(CodigoDe((*primeiro).veiculo), "NOVO501");
  EXPECT_EQ(CodigoDe((*segundo).veiculo), "C1");
  EXPECT_EQ(CodigoDe((*std::next(segundo)).veiculo), "NOVO2");

  tagREG_FILTRO_VEICULOSPS nenhum{};
  nenhum.iAnoInicial = 9999;
  const auto vazio = veiculos.Busca(nenhum);
  EXPECT_TRUE(vazio.empty() && vazio.begin() == vazio.end());
}

// What it refuses itself, and what it leaves in the outputs of calls that fail.
TEST(ClienteCom, RecusaAntesDaChamadaEEsvaziaSaidas) {
  const Empresa empresa;
  CQZVeiculosHR veiculos;
  EXPECT_EQ(veiculos.Inicializa("", 1, 1), E_POINTER);
  ASSERT_EQ(veiculos.Cria(), S_OK);
  std::vector<LONG> posicoes{7};
  EXPECT_TRUE(FAILED(veiculos.BuscaPonteiros({}, posicoes)));
  EXPECT_TRUE(posicoes.empty());
  EXPECT_EQ(veiculos.Inicializa(std::string_view("A\0B", 3), 1, 1), E_INVALIDARG);
  ASSERT_EQ(veiculos.Inicializa(empresa.Codigo(), 1, 1), S_OK);

  LONG lPos = 0;
  ASSERT_EQ(veiculos.Grava(lPos, Veiculo("ABCDEFGHIJKLM")), S_OK);
  tagREG_VEICULOPS veiculo{};
  EXPECT_EQ(veiculos.Existe("ABCDEFGHIJKLMN", lPos, veiculo), E_INVALIDARG);
  EXPECT_EQ(lPos, 0);
  EXPECT_EQ(CodigoDe(veiculo), "");
  EXPECT_THROW(CQZVeiculos(empresa.Codigo(), 1, 1).Le(2), CQZErroVeiculos);
}
