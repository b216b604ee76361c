#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <utility>

#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

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

TEST(ContratoCom, SemEmpresaFalhaEDepoisFunciona) {
  const Empresa semDiretorio("ausente\\");
  const Empresa primeira;
  const struct {
    const char *lpNome;
    std::function<HRESULT(IQZDF_Veiculos &)> inicializa;
    std::uint32_t hr;
  } linhas[] = {
      {"not initialised", [](IQZDF_Veiculos &) { return S_OK; }, 0},
      {"null", [](IQZDF_Veiculos &v) { return v.Inicializa(nullptr, 7, 42); }, 0x800706F4},
      {"empty", [](IQZDF_Veiculos &v) { return Inicializa(v, ""); }, 0x810809CF},
      {"no directory", [&](IQZDF_Veiculos &v) { return Inicializa(v, semDiretorio.Codigo()); }, 0x80043EBF},
      {"empty, after a company that serves",
       [&](IQZDF_Veiculos &v) {
         EXPECT_EQ(Inicializa(v, primeira.Codigo()), S_OK);
         return Inicializa(v, "");
       },
       0x810809CF},
  };
  for (const auto &linha : linhas) {
    SCOPED_TRACE(linha.lpNome);
    const Veiculos spVeiculos = Cria();
    ASSERT_TRUE(spVeiculos);
    EXPECT_EQ(Bits(linha.inicializa(*spVeiculos)), linha.hr);
    EsperaFalhaComZeros(*spVeiculos, 0x810809E3);
    // The object is not lost: it may still be initialised for a company that serves.
    const Empresa boa;
    EXPECT_FALSE(apoio::ExisteNoDisco(boa.Arquivo("DFVEIVS.DAT")));
    EXPECT_EQ(Inicializa(*spVeiculos, boa.Codigo()), S_OK);
    LONG lPos = 0;
    EXPECT_EQ(spVeiculos->Grava(&lPos, Veiculo("V001")), S_OK);
  }
  EXPECT_FALSE(apoio::ExisteNoDisco(semDiretorio.Arquivo("ausente")));
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
      {"V", 1},
      {"A\xC7\xC3O", 2},
      {"COD13LETRASXYZ", 3},  // cut to the width of the field, which it fills
      {"", 1},
      {std::string("V\0X\0", 4), 1},  // a true wide text ends at its first zero byte
      {std::string(5000, 'X'), 0},
  };
  for (const auto &[sTexto, lEsperada] : casos) {
    LONG lPos = 77;
    tagREG_VEICULOPS achado;
    std::memset(&achado, 0x77, sizeof(achado));
    EXPECT_EQ(spVeiculos->Existe(Texto(sTexto).Ponteiro(), &lPos, &achado), S_OK) << sTexto;
    EXPECT_EQ(lPos, lEsperada) << sTexto;
    EXPECT_EQ(TudoZero(achado), lEsperada == 0) << sTexto;
  }
}
