#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

#include "tests/com/ApoioCom.h"

using namespace apoiocom;
using namespace std::string_literals;

namespace {

/// The bytes of a text of hexadecimal pairs; "00*n" stands for n zero bytes.
std::string Bytes(const std::string &sHexa) {
  std::string saida;
  std::size_t i = 0;
  while ((i = sHexa.find_first_not_of(' ', i)) != std::string::npos) {
    const std::size_t fim = std::min(sHexa.find(' ', i), sHexa.size());
    const std::string sPar = sHexa.substr(i, fim - i);
    const std::size_t uiVezes = sPar.size() > 2 ? std::stoul(sPar.substr(3)) : 1;
    saida.append(uiVezes, static_cast<char>(std::stoul(sPar.substr(0, 2), nullptr, 16)));
    i = fim;
  }
  return saida;
}

const char kArquivoGravado[] =
    "56 30 30 31 00 00 00 00 00 00 00 00 00 41 42 43 "
    "31 44 32 33 00 00 53 50 00 43 41 4D 49 4E 48 41 "
    "4F 20 54 4F 43 4F 00 00 00 00 00 00 00 00 00 00 "
    "00*16 "
    "00 00 00 00 00 00 00 00 00 00 00 00 E4 07 00 00 "
    "31 32 33 34 35 36 37 38 00 00 00 00 00 00 00 00 "
    "00 00 00 00 00 02 01 00 C0 68 78 04 00 00 00 00 "
    "00 0E 27 07 00 00 00 00 58 F1 06 00 00 00 00 00 "
    "30 30 31 32 33 34 35 36 37 38 39 00 11 00 01 00 "
    "00*112";

const char kRegistroLido[] =
    "C0 68 78 04 00 00 00 00 00 0E 27 07 00 00 00 00 "
    "58 F1 06 00 00 00 00 00 E4 07 00 00 11 00 43 41 "
    "4D 49 4E 48 41 4F 20 54 4F 43 4F 00 00 00 00 00 "
    "00*32 "
    "00 31 32 33 34 35 36 37 38 00 00 00 00 00 00 00 "
    "00 00 00 00 00 00 56 30 30 31 00 00 00 00 00 00 "
    "00 00 00 30 30 31 32 33 34 35 36 37 38 39 00 41 "
    "42 43 31 44 32 33 00 00 53 50 00 02 01 00 01 00 "
    "00*24";

/// What stands before the data of a file with headers on: the same 24 bytes for every file, the installation code 0,
/// the name, and the checks of data and header.
std::string Cabecalho(std::string sNome, const std::string &sChecagens) {
  sNome.resize(46);
  return Bytes("01 00*7 0D F1 D0 5C 92 79 E9 54 36 64 84 38 58 81 E7 53 00*6") + sNome + Bytes(sChecagens);
}

/// The switch that the server reads, on for a scope.
class CabecalhosLigados {
public:
  CabecalhosLigados() {
    const DWORD uiLigado = 1;
    EXPECT_EQ(RegSetKeyValueA(HKEY_LOCAL_MACHINE, kChave, kValor, REG_DWORD, &uiLigado, sizeof(uiLigado)), 0);
  }
  ~CabecalhosLigados() { RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, kChave, kValor); }
  CabecalhosLigados(const CabecalhosLigados &) = delete;
  CabecalhosLigados &operator=(const CabecalhosLigados &) = delete;

private:
  static constexpr char kChave[] = "SOFTWARE\\Wow6432Node\\Tarvel";
  static constexpr char kValor[] = "QZDataBase_HabilitarCabecalho";
};

std::string Memoria(const void *p, std::size_t n) {
  return std::string(static_cast<const char *>(p), n);
}

}  // namespace

TEST(BytesCom, GravadoELidoByteAByte) {
  const Empresa empresa;
  {
    const Veiculos spVeiculos = Abre(empresa.Codigo());
    ASSERT_TRUE(spVeiculos);
    EXPECT_FALSE(apoio::ExisteNoDisco(empresa.Arquivo("DFVEIC.DAT")));
    tagREG_VEICULOPS veiculo = Veiculo("V001");
    veiculo.iFiller = 0xAA;  // not part of what is stored
    veiculo.lPosicao = 99;
    std::memset(veiculo.cFiller, 0x55, sizeof(veiculo.cFiller));
    LONG lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, veiculo), S_OK);
    EXPECT_EQ(lPos, 1);
    tagREG_VEICULOPS lido;
    std::memset(&lido, 0x77, sizeof(lido));
    ASSERT_EQ(spVeiculos->Le(1, &lido), S_OK);
    EXPECT_EQ(Memoria(&lido, sizeof(lido)), Bytes(kRegistroLido));
  }
  // The company's files are open to the server alone until its last object is gone, which it is by now.
  EXPECT_EQ(apoio::LeArquivo(empresa.Arquivo("DFVEIC.DAT")), Bytes(kArquivoGravado));
  EXPECT_EQ(apoio::LeArquivo(empresa.Arquivo("DFVEIVS.DAT")), Bytes("01 00*15"));
  EXPECT_EQ(apoio::LeArquivo(empresa.Arquivo("QZDATABASE_FILE_CTRL.DAT")),
            Bytes("0B 00*3") + "DFVEIVS.DAT" + Bytes("0A 00*3") + "DFVEIC.DAT");
  EXPECT_FALSE(apoio::ExisteNoDisco(empresa.Arquivo("DFVEIVSD.TRA")));
}

TEST(BytesCom, ComCabecalhos) {
  const CabecalhosLigados cabecalhos;
  const Empresa empresa;
  apoio::EscreveArquivo(empresa.Arquivo("DFVEIVS.DAT"), Bytes("01 00*15"));
  for (int i = 0; i < 2; ++i) {
    const Veiculos spVeiculos = Abre(empresa.Codigo());
    ASSERT_TRUE(spVeiculos);
    LONG lPos = i;
    ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V001")), S_OK);
    EXPECT_EQ(lPos, 1);
  }
  EXPECT_EQ(apoio::LeArquivo(empresa.Arquivo("DFVEIC.DAT")),
            Cabecalho("DFVEIC.DAT", "61 3A 7A 2F AF EF 19 D0 DA 17 A7 DD 3F 98 1C 1A") + Bytes(kArquivoGravado));
  EXPECT_EQ(apoio::LeArquivo(empresa.Arquivo("DFVEIVS.DAT")),
            Cabecalho("DFVEIVS.DAT", "E4 3A 39 CA 97 D4 5D E0 4F 97 F4 6C 47 20 40 50") + Bytes("01 00*15"));
  EXPECT_EQ(apoio::LeArquivo(empresa.Arquivo("QZDATABASE_FILE_CTRL.DAT")),
            Cabecalho("QZDATABASE_FILE_CTRL.DAT", "43 61 E3 53 E2 B8 01 46 A2 DB 20 C7 28 7D 24 33") +
                Bytes("0A 00*3") + "DFVEIC.DAT");
}

TEST(BytesCom, MilharesDeRegistrosAtravessamInteiros) {
  constexpr LONG kQtd = 5000;
  const Empresa empresa;
  // The file as an earlier run would have left it.
  std::string sArquivo;
  for (LONG i = 1; i <= kQtd; ++i) {
    std::string sRegistro(256, '\0');
    const std::string sCodigo = "C" + std::to_string(i);
    sRegistro.replace(0, sCodigo.size(), sCodigo);
    sArquivo += sRegistro;
  }
  apoio::EscreveArquivo(empresa.Arquivo("DFVEIVS.DAT"), Bytes("01 00*15"));
  apoio::EscreveArquivo(empresa.Arquivo("DFVEIC.DAT"), sArquivo);

  const Veiculos spVeiculos = Abre(empresa.Codigo());
  ASSERT_TRUE(spVeiculos);
  unsigned uiQtd = 0;
  ASSERT_EQ(spVeiculos->GetQuantidadeRegistros(&uiQtd), S_OK);
  ASSERT_EQ(uiQtd, static_cast<unsigned>(kQtd));

  HRESULT hr = S_OK;
  std::vector<LONG> posicoes = Busca(*spVeiculos, tagREG_FILTRO_VEICULOSPS{}, &hr);
  ASSERT_EQ(hr, S_OK);
  std::vector<LONG> todas(kQtd);
  std::iota(todas.begin(), todas.end(), 1);
  ASSERT_EQ(posicoes, todas);

  std::reverse(posicoes.begin(), posicoes.end());
  std::vector<tagREG_VEICULOPS> lidos(posicoes.size());
  ASSERT_EQ(spVeiculos->LePonteiros(kQtd, posicoes.data(), lidos.data()), S_OK);
  for (std::size_t i = 0; i < lidos.size(); ++i) {
    ASSERT_EQ(CodigoDe(lidos[i]), "C" + std::to_string(posicoes[i]));
  }

  // What was read before the failing position stays; the rest arrives as zeros.
  posicoes[3000] = kQtd + 1;
  std::vector<tagREG_VEICULOPS> parciais(posicoes.size());
  std::memset(parciais.data(), 0x77, parciais.size() * sizeof(tagREG_VEICULOPS));
  EXPECT_EQ(static_cast<std::uint32_t>(spVeiculos->LePonteiros(kQtd, posicoes.data(), parciais.data())), 0x810809DAU);
  EXPECT_EQ(CodigoDe(parciais[2999]), "C" + std::to_string(posicoes[2999]));
  const std::size_t uiZeros = (parciais.size() - 3000) * sizeof(tagREG_VEICULOPS);
  EXPECT_EQ(Memoria(&parciais[3000], uiZeros), std::string(uiZeros, '\0'));
}

TEST(BytesCom, BuscasPorCuringaMascaraEFaixa) {
  const Empresa empresa;
  const Veiculos spVeiculos = Abre(empresa.Codigo());
  ASSERT_TRUE(spVeiculos);
  for (int i = 1; i <= 8; ++i) {
    tagREG_VEICULOPS veiculo = Veiculo("V00" + std::to_string(i));
    veiculo.iAno = static_cast<std::uint32_t>(2010 + i);
    veiculo.vTara = i * 10000;
    veiculo.iTipoCarroceria = static_cast<std::uint8_t>(i - 1);
    veiculo.iTipoRodado = static_cast<std::uint8_t>(i - 1);
    veiculo.iTipoTransporte = static_cast<std::uint8_t>(i % 2);
    veiculo.iPonteiroCliente = static_cast<std::uint16_t>(i > 6 ? 40000 : 5);
    if (i > 4) {
      Preenche(veiculo.szUF, "RJ");
      Preenche(veiculo.szDescricao, "CARRETA LONGA");
    }
    LONG lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, veiculo), S_OK);
  }
  const auto filtro = [](auto preenche) {
    tagREG_FILTRO_VEICULOSPS f{};
    preenche(f);
    return f;
  };
  const struct {
    const char *lpNome;
    tagREG_FILTRO_VEICULOSPS filtro;
    std::vector<LONG> esperadas;
  } linhas[] = {
      {"nothing", filtro([](auto &) {}), {1, 2, 3, 4, 5, 6, 7, 8}},
      {"year range", filtro([](auto &f) { f.iAnoInicial = 2012, f.iAnoFinal = 2014; }), {2, 3, 4}},
      {"tare range", filtro([](auto &f) { f.vTaraInicial = 70000, f.vTaraFinal = -1; }), {7, 8}},
      {"state", filtro([](auto &f) { Preenche(f.szUF, "RJ"); }), {5, 6, 7, 8}},
      {"customer", filtro([](auto &f) { f.iPonteiroCliente = 40000; }), {7, 8}},
      {"pattern", filtro([](auto &f) { Preenche(f.szDescricao, "carreta*"); }), {5, 6, 7, 8}},
      {"pattern ends the test",
       filtro([](auto &f) { Preenche(f.szCodigo, "V00?"), Preenche(f.szUF, "RJ"); }),
       {1, 2, 3, 4, 5, 6, 7, 8}},
      {"text, case-sensitive", filtro([](auto &f) { Preenche(f.szDescricao, "carreta longa"); }), {}},
      {"body mask from 0", filtro([](auto &f) { f.iTipoCarroceria = 0x03; }), {1, 2, 7, 8}},
      {"wheel-set mask from 1", filtro([](auto &f) { f.iTipoRodado = 0x03; }), {1, 2, 3, 8}},
      {"transport mask", filtro([](auto &f) { f.iTipoTransporte = 0x02; }), {1, 3, 5, 7}},
  };
  for (const auto &linha : linhas) {
    HRESULT hr = S_OK;
    EXPECT_EQ(Busca(*spVeiculos, linha.filtro, &hr), linha.esperadas) << linha.lpNome;
    EXPECT_EQ(hr, S_OK) << linha.lpNome;
  }
}
