// What only calls from another process show: what the marshalling does to texts and records, and the server's own
// registry.

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

#include "tests/apoio/ValoresProprios.h"
#include "tests/com/ApoioCom.h"
#include "vehicles/RegVeiculo.h"

using namespace apoiocom;

TEST(ContratoCom, SemEmpresaFalhaEDepoisFunciona) {
  const Empresa semDiretorio("ausente\\");
  const Empresa boa;
  const Veiculos spVeiculos = Cria();
  ASSERT_TRUE(spVeiculos);
  const auto esperaSemEmpresa = [&] {
    tagREG_VEICULOPS veiculo = Veiculo("RESTO");
    EXPECT_EQ(Bits(spVeiculos->Le(1, &veiculo)), 0x810809E3U);
    EXPECT_EQ(CodigoDe(veiculo), "");
  };
  esperaSemEmpresa();
  EXPECT_EQ(Bits(spVeiculos->Inicializa(nullptr, 7, 42)), 0x800706F4U);
  EXPECT_EQ(Bits(Inicializa(*spVeiculos, semDiretorio.Codigo())), 0x80043EBFU);
  EXPECT_FALSE(apoio::ExisteNoDisco(semDiretorio.Arquivo("ausente")));
  esperaSemEmpresa();
  for (int iVez = 0; iVez < 2; ++iVez) {
    EXPECT_EQ(Inicializa(*spVeiculos, boa.Codigo()), S_OK);
    LONG lPos = 0;
    EXPECT_EQ(spVeiculos->Grava(&lPos, Veiculo("V001")), S_OK);
    EXPECT_EQ(Bits(Inicializa(*spVeiculos, "")), 0x810809CFU);
    esperaSemEmpresa();
  }
}

// What is found for which text the register's own tests say; here texts cross that the marshalling might cut.
TEST(ContratoCom, TextosDeExiste) {
  const Empresa empresa;
  const Veiculos spVeiculos = Abre(empresa.Codigo());
  ASSERT_TRUE(spVeiculos);
  for (const char *lpCodigo : {"V", "A\xC7\xC3O", "COD13LETRASXY"}) {
    LONG lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo(lpCodigo)), S_OK);
  }
  const std::pair<std::string, LONG> casos[] = {
      {"A\xC7\xC3O", 2},
      {"COD13LETRASXYZ", 3},          // cut to the width of the field, which it fills
      {std::string("V\0X\0", 4), 1},  // a true wide text ends at its first zero byte
      {std::string(5000, 'X'), 0},
  };
  for (const auto &[sTexto, lEsperada] : casos) {
    LONG lPos = 77;
    tagREG_VEICULOPS achado;
    EXPECT_EQ(spVeiculos->Existe(Texto(sTexto).Ponteiro(), &lPos, &achado), S_OK) << sTexto;
    EXPECT_EQ(lPos, lEsperada) << sTexto;
  }
}

// The bytes of a stored record and of a header are for the tests of the vehicles and of the record files to say.
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
    RegVeiculo registro;
    CopiaParaRegistro(esperado, &registro);
    const std::string sArquivo = apoio::LeArquivo(empresa.Arquivo("DFVEIC.DAT"));
    EXPECT_EQ(sArquivo.size(), sizeof(registro) + (dwLigado != 0 ? 92 : 0));
    EXPECT_TRUE(sArquivo.ends_with(std::string_view(reinterpret_cast<const char *>(&registro), sizeof(registro))));
  }
}
