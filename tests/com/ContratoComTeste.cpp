#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

std::uint32_t Bits(HRESULT hr) {
  return static_cast<std::uint32_t>(hr);
}

template <class T>
bool TudoZero(const T &registro) {
  static const T s_zero{};
  return std::memcmp(&registro, &s_zero, sizeof(T)) == 0;
}

/// The five operations with outputs, each called with outputs full of rubbish; checks that all of them fail with `hr`
/// and hand back zeros.
void EsperaFalhaComZeros(IQZDF_Veiculos &veiculos, std::uint32_t hr) {
  tagREG_VEICULOPS lidos[2];
  std::memset(lidos, 0x77, sizeof(lidos));
  EXPECT_EQ(Bits(veiculos.Le(1, lidos)), hr);
  EXPECT_TRUE(TudoZero(lidos[0]));

  LONG lPos = 55;
  std::memset(lidos, 0x77, sizeof(lidos));
  EXPECT_EQ(Bits(veiculos.Existe(Texto("V001").Ponteiro(), &lPos, lidos)), hr);
  EXPECT_EQ(lPos, 0);
  EXPECT_TRUE(TudoZero(lidos[0]));

  tagRESULTADO_BUSCA_VEICULOS resultado;
  std::memset(&resultado, 0, sizeof(resultado));
  resultado.iQtd = 0;
  EXPECT_EQ(Bits(veiculos.BuscaPonteiros(tagREG_FILTRO_VEICULOSPS{}, &resultado)), hr);
  EXPECT_TRUE(TudoZero(resultado));

  LONG posicoes[] = {1, 2};
  std::memset(lidos, 0x77, sizeof(lidos));
  EXPECT_EQ(Bits(veiculos.LePonteiros(2, posicoes, lidos)), hr);
  EXPECT_TRUE(TudoZero(lidos));
  EXPECT_EQ(Bits(veiculos.LePonteiros(0, posicoes, lidos)), hr);

  unsigned uiQtd = 55;
  EXPECT_EQ(Bits(veiculos.GetQuantidadeRegistros(&uiQtd)), hr);
  EXPECT_EQ(uiQtd, 0U);

  lPos = 3;
  EXPECT_EQ(Bits(veiculos.Grava(&lPos, Veiculo("V001"))), hr);
  EXPECT_EQ(lPos, 3);
}

}  // namespace

TEST(ContratoCom, AntesDeInicializaFalhaEDepoisFunciona) {
  const Empresa empresa;
  const Veiculos spVeiculos = Cria();
  ASSERT_TRUE(spVeiculos);
  EsperaFalhaComZeros(*spVeiculos, 0x810809E3);
  EXPECT_FALSE(apoio::ExisteNoDisco(empresa.Arquivo("DFVEIVS.DAT")));
  EXPECT_EQ(Inicializa(*spVeiculos, empresa.Codigo()), S_OK);
  LONG lPos = 0;
  EXPECT_EQ(spVeiculos->Grava(&lPos, Veiculo("V001")), S_OK);
}

TEST(ContratoCom, EmpresaQueNaoServe) {
  const Empresa semDiretorio("ausente\\");
  const struct {
    const char *lpNome;
    std::string sEmpresa;
    std::uint32_t hr;
  } linhas[] = {
      {"empty", "", 0x810809CF},
      {"directory that does not exist", semDiretorio.Codigo(), 0x80043EBF},
  };
  for (const auto &linha : linhas) {
    SCOPED_TRACE(linha.lpNome);
    const Veiculos spVeiculos = Cria();
    ASSERT_TRUE(spVeiculos);
    EXPECT_EQ(Bits(Inicializa(*spVeiculos, linha.sEmpresa)), linha.hr);
    EsperaFalhaComZeros(*spVeiculos, 0x810809E3);
    // The object is not lost: it may still be initialised for a company that serves.
    const Empresa boa;
    EXPECT_EQ(Inicializa(*spVeiculos, boa.Codigo()), S_OK);
  }
  EXPECT_FALSE(apoio::ExisteNoDisco(semDiretorio.Arquivo("ausente")));
}

TEST(ContratoCom, TextoNuloERecusadoPelaChamada) {
  const Veiculos spVeiculos = Cria();
  ASSERT_TRUE(spVeiculos);
  EXPECT_EQ(Bits(spVeiculos->Inicializa(nullptr, 7, 42)), 0x800706F4U);
}

TEST(ContratoCom, PosicoesForaDaFaixa) {
  const Empresa empresa;
  const Veiculos spVeiculos = Abre(empresa.Codigo());
  ASSERT_TRUE(spVeiculos);
  tagREG_VEICULOPS lido;
  // Without a file yet: position 0 is refused before the missing file is noticed.
  EXPECT_EQ(Bits(spVeiculos->Le(0, &lido)), 0x810809D9U);
  EXPECT_EQ(Bits(spVeiculos->Le(1, &lido)), 0x810809E3U);
  LONG lPos = 0;
  for (int i = 1; i <= 5; ++i) {
    lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V00" + std::to_string(i))), S_OK);
    ASSERT_EQ(lPos, i);
  }
  const struct {
    LONG lPos;
    std::uint32_t hr;
  } leituras[] = {{0, 0x810809D9}, {6, 0x810809DA}, {-1, 0x810809DA}, {LONG{-2147483647} - 1, 0x810809DA}};
  for (const auto &linha : leituras) {
    std::memset(&lido, 0x77, sizeof(lido));
    EXPECT_EQ(Bits(spVeiculos->Le(linha.lPos, &lido)), linha.hr) << linha.lPos;
    EXPECT_TRUE(TudoZero(lido)) << linha.lPos;
  }
  for (const LONG lRuim : {7L, 6L, -1L, 2147483647L}) {
    lPos = lRuim;
    EXPECT_EQ(Bits(spVeiculos->Grava(&lPos, Veiculo("RUIM"))), 0x810809DBU) << lRuim;
    EXPECT_EQ(lPos, lRuim);
  }
  unsigned uiQtd = 0;
  EXPECT_EQ(spVeiculos->GetQuantidadeRegistros(&uiQtd), S_OK);
  EXPECT_EQ(uiQtd, 5U);
  lPos = 5;
  EXPECT_EQ(spVeiculos->Grava(&lPos, Veiculo("NOVO")), S_OK);
  EXPECT_EQ(lPos, 5);
  EXPECT_EQ(spVeiculos->Le(5, &lido), S_OK);
  EXPECT_EQ(CodigoDe(lido), "NOVO");
}

TEST(ContratoCom, ExistePorCodigoPlacaEPadrao) {
  const Empresa empresa;
  const Veiculos spVeiculos = Abre(empresa.Codigo());
  ASSERT_TRUE(spVeiculos);
  LONG lPos = 77;
  tagREG_VEICULOPS achado;
  std::memset(&achado, 0x77, sizeof(achado));
  EXPECT_EQ(spVeiculos->Existe(Texto("").Ponteiro(), &lPos, &achado), S_OK);
  EXPECT_EQ(lPos, 0);
  EXPECT_TRUE(TudoZero(achado));

  const struct {
    const char *lpCodigo;
    const char *lpPlaca;
  } gravados[] = {{"V001", "AAA1A11"}, {"V002", "BBB2B22"}, {"AAA1A11", "CCC3C33"}, {"COD13LETRASXY", "PLACA9XYZ"}};
  for (const auto &gravado : gravados) {
    tagREG_VEICULOPS veiculo = Veiculo(gravado.lpCodigo);
    std::memset(veiculo.szPlaca, 0, sizeof(veiculo.szPlaca));
    Preenche(veiculo.szPlaca, gravado.lpPlaca);
    lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, veiculo), S_OK);
  }
  const struct {
    std::string sTexto;
    LONG lPos;
  } linhas[] = {
      {"V002", 2},
      {"V002 ", 0},
      {"v002", 0},
      {"BBB2B22", 2},
      {"AAA1A11", 3},  // a code wins over the plate of an earlier vehicle
      {"V00?", 1},
      {"bbb*", 2},
      {"", 1},
      {"NADA", 0},
      {"COD13LETRASXY", 4},
      {"COD13LETRASXYZ", 4},  // cut to the width of the field, which it fills
      {"V001XXXXXXXXXXXXX", 0},
      {std::string(5000, 'X'), 0},
  };
  for (const auto &linha : linhas) {
    lPos = 77;
    EXPECT_EQ(spVeiculos->Existe(Texto(linha.sTexto).Ponteiro(), &lPos, &achado), S_OK) << linha.sTexto;
    EXPECT_EQ(lPos, linha.lPos) << linha.sTexto;
    EXPECT_EQ(TudoZero(achado), linha.lPos == 0) << linha.sTexto;
  }
}

// A true wide text ends at its first zero byte.
TEST(ContratoCom, TextoLargoDeVerdadeChegaComUmaLetra) {
  const Empresa empresa;
  const Veiculos spVeiculos = Abre(empresa.Codigo());
  ASSERT_TRUE(spVeiculos);
  LONG lPos = 0;
  ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V")), S_OK);
  wchar_t lpLargo[] = L"V001";
  tagREG_VEICULOPS achado;
  EXPECT_EQ(spVeiculos->Existe(lpLargo, &lPos, &achado), S_OK);
  EXPECT_EQ(lPos, 1);
}

TEST(ContratoCom, SegundaInicializaDoMesmoObjeto) {
  const Empresa primeira;
  const Empresa segunda;
  const Veiculos spVeiculos = Abre(primeira.Codigo());
  ASSERT_TRUE(spVeiculos);
  LONG lPos = 0;
  ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("UM")), S_OK);

  EXPECT_EQ(Inicializa(*spVeiculos, primeira.Codigo()), S_OK);
  unsigned uiQtd = 0;
  EXPECT_EQ(spVeiculos->GetQuantidadeRegistros(&uiQtd), S_OK);
  EXPECT_EQ(uiQtd, 1U);

  EXPECT_EQ(Inicializa(*spVeiculos, segunda.Codigo()), S_OK);
  EXPECT_EQ(spVeiculos->GetQuantidadeRegistros(&uiQtd), S_OK);
  EXPECT_EQ(uiQtd, 0U);
  // The first company is let go: its file can be read, which it cannot while the server has it open.
  EXPECT_EQ(apoio::LeArquivo(primeira.Arquivo("DFVEIC.DAT")).size(), 256U);

  // A company that fails leaves the object without one.
  EXPECT_EQ(Bits(Inicializa(*spVeiculos, "")), 0x810809CFU);
  EsperaFalhaComZeros(*spVeiculos, 0x810809E3);
}

TEST(ContratoCom, ObjetosDaMesmaEmpresaVeemOMesmo) {
  const Empresa empresa;
  const Veiculos spUm = Abre(empresa.Codigo());
  const Veiculos spOutro = Abre(empresa.Codigo());
  ASSERT_TRUE(spUm && spOutro);
  LONG lPos = 0;
  ASSERT_EQ(spUm->Grava(&lPos, Veiculo("DEUM")), S_OK);
  tagREG_VEICULOPS lido;
  EXPECT_EQ(spOutro->Le(1, &lido), S_OK);
  EXPECT_EQ(CodigoDe(lido), "DEUM");
}
