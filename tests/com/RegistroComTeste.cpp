#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <vector>

#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

constexpr char kClasse[] = "CLSID\\{68409B5A-ADF8-424F-A93A-BAC1844E3253}";
constexpr char kAppId[] = "AppID\\{f5b03bc1-ff38-45f0-a365-680a4ab6f515}";

/// A text value below the machine's classes; "(absent)" when there is none.
std::string Classe(const std::string &sChave, const char *lpNome = nullptr) {
  std::array<char, 512> texto{};
  DWORD dwTamanho = texto.size();
  return RegGetValueA(HKEY_LOCAL_MACHINE, ("Software\\Classes\\" + sChave).c_str(), lpNome, RRF_RT_REG_SZ, nullptr,
                      texto.data(), &dwTamanho) == ERROR_SUCCESS
             ? texto.data()
             : "(absent)";
}

std::string Minusculas(std::string texto) {
  std::transform(texto.begin(), texto.end(), texto.begin(), [](char c) { return static_cast<char>(tolower(c)); });
  return texto;
}

struct ValorEsperado {
  std::string sChave;
  const char *lpNome;
  std::string sTexto;
};

std::vector<ValorEsperado> ValoresDaClasse() {
  const std::string sClasse = kClasse;
  return {
      {"AppID\\Kalvo.EXE", "AppID", "{f5b03bc1-ff38-45f0-a365-680a4ab6f515}"},
      {"Kalvo.QZDF_Veiculos.1", nullptr, "QZDF_Veiculos Class"},
      {"Kalvo.QZDF_Veiculos.1\\CLSID", nullptr, "{68409b5a-adf8-424f-a93a-bac1844e3253}"},
      {"Kalvo.QZDF_Veiculos", nullptr, "QZDF_Veiculos Class"},
      {"Kalvo.QZDF_Veiculos\\CLSID", nullptr, "{68409b5a-adf8-424f-a93a-bac1844e3253}"},
      {"Kalvo.QZDF_Veiculos\\CurVer", nullptr, "Kalvo.QZDF_Veiculos.1"},
      {sClasse, nullptr, "QZDF_Veiculos Class"},
      {sClasse, "AppID", "{f5b03bc1-ff38-45f0-a365-680a4ab6f515}"},
      {sClasse + "\\ProgID", nullptr, "Kalvo.QZDF_Veiculos.1"},
      {sClasse + "\\VersionIndependentProgID", nullptr, "Kalvo.QZDF_Veiculos"},
      {sClasse + "\\LocalServer32", nullptr, "\"" + PastaDoPrograma() + "Kalvo.exe\""},
      {sClasse + "\\TypeLib", nullptr, "{719b6d68-7fdd-4942-94c3-953b64051322}"},
      {"TypeLib\\{719b6d68-7fdd-4942-94c3-953b64051322}\\1.0\\0\\win64", nullptr, PastaDoPrograma() + "Kalvo.exe"},
      {"Interface\\{581ee5e9-6ee9-4428-87c0-6be18d374724}\\ProxyStubClsid32", nullptr,
       "{84be9740-8888-4462-883d-b2725bba0296}"},
      {"CLSID\\{84be9740-8888-4462-883d-b2725bba0296}\\InProcServer32", nullptr,
       PastaDoPrograma() + "QZDF_VeiculosPS.dll"},
  };
}

}  // namespace

TEST(RegistroCom, TodaFormaDeEscreverAChaveRegistraERemove) {
  const struct {
    const char *lpRegistra;
    const char *lpRemove;
  } formas[] = {
      {"/regserver", "/UNREGSERVER"}, {"-RegServer", "-UnregServer"}, {"-Embedding /REGSERVER", "\"/unregserver\""}};
  for (const auto &forma : formas) {
    SCOPED_TRACE(forma.lpRegistra);
    std::string sErro;
    EXPECT_EQ(ExecutaKalvo(forma.lpRemove, &sErro), 0U) << sErro;
    for (const ValorEsperado &valor : ValoresDaClasse()) {
      EXPECT_EQ(Classe(valor.sChave, valor.lpNome), "(absent)") << valor.sChave;
    }
    EXPECT_EQ(Classe(kAppId), "Kalvo");
    EXPECT_EQ(ExecutaKalvo(forma.lpRegistra, &sErro), 0U) << sErro;
    for (const ValorEsperado &valor : ValoresDaClasse()) {
      EXPECT_EQ(Minusculas(Classe(valor.sChave, valor.lpNome)), Minusculas(valor.sTexto)) << valor.sChave;
    }
    EXPECT_EQ(sErro, "");
  }
  EXPECT_TRUE(Cria());
}

TEST(RegistroCom, RemoverDuasVezesNaoFalha) {
  EXPECT_EQ(ExecutaKalvo("/UnregServer"), 0U);
  EXPECT_EQ(ExecutaKalvo("/UnregServer"), 0U);
  EXPECT_EQ(ExecutaKalvo("/RegServer"), 0U);
}

TEST(RegistroCom, FalhaDizOQueEComQueErro) {
  // The executable alone in a folder: the proxy/stub that belongs beside it is missing.
  const apoio::PastaTemporaria pasta;
  ASSERT_TRUE(CopyFileA((PastaDoPrograma() + "Kalvo.exe").c_str(), (pasta / "Kalvo.exe").c_str(), TRUE));
  std::string sErro;
  EXPECT_EQ(ExecutaKalvoDe(pasta.Caminho(), "/RegServer", &sErro), 0x8007007EU);
  EXPECT_NE(sErro.find("QZDF_VeiculosPS.dll"), std::string::npos) << sErro;
  EXPECT_NE(sErro.find("0x8007007E"), std::string::npos) << sErro;
  EXPECT_EQ(ExecutaKalvo("/RegServer"), 0U);
}

TEST(RegistroCom, BibliotecaDeTiposDescreveAInterface) {
  ITypeLib *pBiblioteca = nullptr;
  ASSERT_EQ(LoadRegTypeLib(LIBID_Kalvo, 1, 0, LOCALE_NEUTRAL, &pBiblioteca), S_OK);
  const Ponteiro<ITypeLib> spBiblioteca(pBiblioteca);
  ITypeInfo *pTipo = nullptr;
  ASSERT_EQ(spBiblioteca->GetTypeInfoOfGuid(IID_IQZDF_Veiculos, &pTipo), S_OK);
  const Ponteiro<ITypeInfo> spTipo(pTipo);

  const struct {
    const wchar_t *lpNome;
    SHORT sParametros;
  } funcoes[] = {{L"Inicializa", 3},
                 {L"Grava", 2},
                 {L"Le", 2},
                 {L"Existe", 3},
                 {L"BuscaPonteiros", 2},
                 {L"LePonteiros", 3},
                 {L"GetQuantidadeRegistros", 1}};
  UINT uiIndice = 0;
  for (const auto &funcao : funcoes) {
    FUNCDESC *pDescricao = nullptr;
    ASSERT_EQ(spTipo->GetFuncDesc(uiIndice, &pDescricao), S_OK);
    EXPECT_EQ(pDescricao->memid, static_cast<MEMBERID>(0x60010000 + uiIndice));
    EXPECT_EQ(pDescricao->cParams, funcao.sParametros);
    EXPECT_EQ(pDescricao->oVft, static_cast<SHORT>((3 + uiIndice) * sizeof(void *)));
    BSTR sNome = nullptr;
    UINT uiNomes = 0;
    EXPECT_EQ(spTipo->GetNames(pDescricao->memid, &sNome, 1, &uiNomes), S_OK);
    EXPECT_STREQ(sNome, funcao.lpNome);
    SysFreeString(sNome);
    spTipo->ReleaseFuncDesc(pDescricao);
    ++uiIndice;
  }
  FUNCDESC *pAMais = nullptr;
  EXPECT_NE(spTipo->GetFuncDesc(uiIndice, &pAMais), S_OK);
}

TEST(RegistroCom, ExecutavelTrazVersaoENome) {
  const std::string sExecutavel = PastaDoPrograma() + "Kalvo.exe";
  std::vector<char> versao(GetFileVersionInfoSizeA(sExecutavel.c_str(), nullptr));
  ASSERT_FALSE(versao.empty());
  ASSERT_TRUE(GetFileVersionInfoA(sExecutavel.c_str(), 0, static_cast<DWORD>(versao.size()), versao.data()));
  void *pValor = nullptr;
  UINT uiTamanho = 0;
  ASSERT_TRUE(VerQueryValueA(versao.data(), "\\", &pValor, &uiTamanho));
  const auto &fixa = *static_cast<const VS_FIXEDFILEINFO *>(pValor);
  EXPECT_EQ(fixa.dwFileVersionMS, 0x00010000U);
  EXPECT_EQ(fixa.dwFileVersionLS, 0U);
  ASSERT_TRUE(VerQueryValueA(versao.data(), "\\StringFileInfo\\041604E4\\FileVersion", &pValor, &uiTamanho));
  EXPECT_STREQ(static_cast<const char *>(pValor), "1.0.0.0");

  const HMODULE hRecursos = LoadLibraryExA(sExecutavel.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_NE(hRecursos, nullptr);
  std::array<char, 32> nome{};
  EXPECT_EQ(LoadStringA(hRecursos, 100, nome.data(), static_cast<int>(nome.size())), 5);
  EXPECT_STREQ(nome.data(), "Kalvo");
  FreeLibrary(hRecursos);
}

TEST(RegistroCom, AgregacaoEntreProcessosERecusada) {
  const Veiculos spExterno = Cria();
  void *pObjeto = nullptr;
  EXPECT_EQ(CoCreateInstance(CLSID_CQZDF_Veiculos, spExterno.get(), CLSCTX_LOCAL_SERVER, IID_IUnknown, &pObjeto),
            CLASS_E_NOAGGREGATION);
}
