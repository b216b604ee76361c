#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
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
  EXPECT_EQ(Bits(spVeiculos->LePonteiros(kQtd, posicoes.data(), parciais.data())), 0x810809DAU);
  EXPECT_EQ(CodigoDe(parciais[2999]), "C" + std::to_string(posicoes[2999]));
  const std::size_t uiZeros = (parciais.size() - 3000) * sizeof(tagREG_VEICULOPS);
  EXPECT_EQ(Memoria(&parciais[3000], uiZeros), std::string(uiZeros, '\0'));
}

// What each field means the register's own tests say; here every one crosses, and any one alone may refuse.
TEST(BytesCom, CadaCampoDoFiltroChega) {
  const Empresa empresa;
  const Veiculos spVeiculos = Abre(empresa.Codigo());
  ASSERT_TRUE(spVeiculos);
  tagREG_VEICULOPS veiculo = Veiculo("V001");
  veiculo.vCapacidadeKg = 120000001;  // its lowest byte can shrink
  veiculo.iTipoCarroceria = veiculo.iTipoTransporte = 0;
  LONG lPos = 0;
  ASSERT_EQ(spVeiculos->Grava(&lPos, veiculo), S_OK);

  using Filtro = tagREG_FILTRO_VEICULOSPS;
  const Filtro todos{75000000,   75000000, 120000001,     120000001, 455000, 455000, 2020, 2020, 17, "CAMINHAO TOCO",
                     "12345678", "V001",   "00123456789", "ABC1D23", "SP",   1,      1,    1,    1,  {},
                     0,          {}};
  // Bytes of the filter that match no more when they grow by one, and the upper bounds, which must shrink.
  const std::size_t acima[] = {offsetof(Filtro, vTaraInicial),
                               offsetof(Filtro, vCapacidadeKgInicial),
                               offsetof(Filtro, vCapacidadeM3Inicial),
                               offsetof(Filtro, iAnoInicial),
                               offsetof(Filtro, iPonteiroCliente),
                               offsetof(Filtro, szDescricao),
                               offsetof(Filtro, szCodigoANTT),
                               offsetof(Filtro, szCodigo),
                               offsetof(Filtro, szRENAVAM),
                               offsetof(Filtro, szPlaca),
                               offsetof(Filtro, szUF),
                               offsetof(Filtro, iTipoCarroceria),
                               offsetof(Filtro, iTipoRodado),
                               offsetof(Filtro, iTipoVeiculo),
                               offsetof(Filtro, iTipoTransporte)};
  const std::size_t abaixo[] = {offsetof(Filtro, vTaraFinal), offsetof(Filtro, vCapacidadeKgFinal),
                                offsetof(Filtro, vCapacidadeM3Final), offsetof(Filtro, iAnoFinal)};
  HRESULT hr = E_FAIL;
  EXPECT_EQ(Busca(*spVeiculos, todos, &hr), std::vector<LONG>{1});
  EXPECT_EQ(hr, S_OK);
  const auto esperaRecusa = [&](std::size_t uiByte, int iPasso) {
    Filtro filtro = todos;
    reinterpret_cast<char *>(&filtro)[uiByte] += static_cast<char>(iPasso);
    EXPECT_EQ(Busca(*spVeiculos, filtro, &hr), std::vector<LONG>{}) << uiByte;
    EXPECT_EQ(hr, S_OK) << uiByte;
  };
  std::for_each(std::begin(acima), std::end(acima), [&](std::size_t uiByte) { esperaRecusa(uiByte, 1); });
  std::for_each(std::begin(abaixo), std::end(abaixo), [&](std::size_t uiByte) { esperaRecusa(uiByte, -1); });
}
