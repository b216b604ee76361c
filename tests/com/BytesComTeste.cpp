#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

#include "tests/com/ApoioCom.h"

using namespace apoiocom;

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

}  // namespace

TEST(BytesCom, GravadoELidoByteAByte) {
  const Empresa empresa;
  {
    const Veiculos spVeiculos = Abre(empresa.Codigo());
    ASSERT_TRUE(spVeiculos);
    EXPECT_FALSE(apoio::ExisteNoDisco(empresa.Arquivo("DFVEIC.DAT")));
    tagREG_VEICULOPS veiculo = Veiculo("V001");
    veiculo.szPlaca[8] = 'x';  // behind the terminator: not part of the text
    veiculo.iFiller = 0xAA;    // not part of what is stored
    veiculo.lPosicao = 99;
    std::memset(veiculo.cFiller, 0x55, sizeof(veiculo.cFiller));
    LONG lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, veiculo), S_OK);
    EXPECT_EQ(lPos, 1);
    tagREG_VEICULOPS lido;
    std::memset(&lido, 0x77, sizeof(lido));
    ASSERT_EQ(spVeiculos->Le(1, &lido), S_OK);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(&lido), sizeof(lido)), Bytes(kRegistroLido));
  }
  // The company's files are open to the server alone until its last object is gone, which it is by now.
  EXPECT_EQ(apoio::LeArquivo(empresa.Arquivo("DFVEIC.DAT")), Bytes(kArquivoGravado));
  EXPECT_EQ(apoio::LeArquivo(empresa.Arquivo("DFVEIVS.DAT")), Bytes("01 00*15"));
  EXPECT_EQ(apoio::LeArquivo(empresa.Arquivo("QZDATABASE_FILE_CTRL.DAT")),
            Bytes("0B 00*3") + "DFVEIVS.DAT" + Bytes("0A 00*3") + "DFVEIC.DAT");
  EXPECT_FALSE(apoio::ExisteNoDisco(empresa.Arquivo("DFVEIVSD.TRA")));
}

// What stands in a header is for the tests of the record files to say; here the server finds its switch.
TEST(BytesCom, CabecalhosSeORegistroOsLiga) {
  constexpr char kChave[] = "SOFTWARE\\Wow6432Node\\Tarvel";
  constexpr char kValor[] = "QZDataBase_HabilitarCabecalho";
  const DWORD dwLigado = 1;
  ASSERT_EQ(RegSetKeyValueA(HKEY_LOCAL_MACHINE, kChave, kValor, REG_DWORD, &dwLigado, sizeof(dwLigado)), 0);
  const Empresa empresa;
  Veiculos spVeiculos = Abre(empresa.Codigo());
  LONG lPos = 0;
  EXPECT_TRUE(spVeiculos && spVeiculos->Grava(&lPos, Veiculo("V001")) == S_OK);
  spVeiculos.reset();
  RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, kChave, kValor);
  EXPECT_EQ(apoio::LeArquivo(empresa.Arquivo("DFVEIC.DAT")).substr(92), Bytes(kArquivoGravado));
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
}
