#include <gtest/gtest.h>
#include <windows.h>
//
#include <sddl.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <string>
#include <vector>

#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

constexpr char kClasses[] = "Software\\Classes";
constexpr char kOpcoesBiblioteca[] = "typelib\\{719b6d68-7fdd-4942-94c3-953b64051322}\\1.0\\flags\\";

/// Keys (ending with `\`) and values below a key with their texts; names and identifiers in lower case.
using Arvore = std::map<std::string, std::string>;

std::string Minusculas(std::string texto) {
  std::transform(texto.begin(), texto.end(), texto.begin(), [](char c) { return static_cast<char>(tolower(c)); });
  return texto;
}

void LeArvore(HKEY hPai, const std::string &sNome, const std::string &sCaminho, Arvore &arvore) {
  HKEY hChave = nullptr;
  if (RegOpenKeyExA(hPai, sNome.c_str(), 0, KEY_READ, &hChave) != ERROR_SUCCESS) {
    return;
  }
  std::array<char, 512> nome{};
  std::array<char, 4096> dados{};
  for (DWORD i = 0;; ++i) {
    DWORD dwNome = nome.size();
    DWORD dwDados = dados.size() - 1;
    DWORD dwTipo = 0;
    if (RegEnumValueA(hChave, i, nome.data(), &dwNome, nullptr, &dwTipo, reinterpret_cast<BYTE *>(dados.data()),
                      &dwDados) != ERROR_SUCCESS) {
      break;
    }
    dados[dwDados] = 0;
    const std::string sTexto = dwTipo == REG_SZ ? dados.data() : "(no text)";
    arvore[sCaminho + Minusculas(nome.data())] = sTexto.starts_with("{") ? Minusculas(sTexto) : sTexto;
  }
  for (DWORD i = 0;; ++i) {
    DWORD dwNome = nome.size();
    if (RegEnumKeyExA(hChave, i, nome.data(), &dwNome, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
      break;
    }
    const std::string sFilho = sCaminho + Minusculas(nome.data()) + "\\";
    // Of the view of 32-bit programs its own keys alone; it shows the others once more.
    if (sFilho.starts_with("wow6432node\\") && sFilho != "wow6432node\\" &&
        !sFilho.starts_with("wow6432node\\clsid\\") && !sFilho.starts_with("wow6432node\\interface\\")) {
      continue;
    }
    arvore[sFilho] = "";
    LeArvore(hChave, nome.data(), sFilho, arvore);
  }
  RegCloseKey(hChave);
}

Arvore Classes(HKEY hRaiz) {
  Arvore arvore;
  LeArvore(hRaiz, kClasses, "", arvore);
  const auto opcoes = arvore.find(kOpcoesBiblioteca);
  if (opcoes != arvore.end()) {
    opcoes->second = "";  // the platforms do not agree on the flags of a library read from a file
  }
  return arvore;
}

/// What the second tree has beyond the first, or otherwise, one entry a line.
std::string Diferenca(const Arvore &antes, const Arvore &depois) {
  std::vector<std::pair<std::string, std::string>> diferentes;
  std::set_difference(depois.begin(), depois.end(), antes.begin(), antes.end(), std::back_inserter(diferentes));
  std::string sTexto;
  for (const auto &[sNome, sValor] : diferentes) {
    sTexto.append(sNome).append(sNome.back() == '\\' && sValor.empty() ? "" : " = ").append(sValor).append("\n");
  }
  return sTexto;
}

std::string TodaDiferenca(const Arvore &antes, const Arvore &depois) {
  return Diferenca(antes, depois) + Diferenca(depois, antes);
}

/// Everything that a registration of the server in a folder leaves, with the type library or without.
std::string Esperado(const std::string &sPasta, bool bBiblioteca) {
  const std::string sClasse = "clsid\\{68409b5a-adf8-424f-a93a-bac1844e3253}\\";
  const std::string sProxy = "clsid\\{84be9740-8888-4462-883d-b2725bba0296}\\";
  const std::string sInterface = "interface\\{581ee5e9-6ee9-4428-87c0-6be18d374724}\\";
  const std::string sBiblioteca = "typelib\\{719b6d68-7fdd-4942-94c3-953b64051322}\\";
  const std::string sClsid = "{68409b5a-adf8-424f-a93a-bac1844e3253}";
  const std::string sAppId = "{f5b03bc1-ff38-45f0-a365-680a4ab6f515}";
  Arvore arvore = {
      {"appid\\kalvo.exe\\", ""},
      {"appid\\kalvo.exe\\appid", sAppId},
      {"kalvo.qzdf_veiculos.1\\", "QZDF_Veiculos Class"},
      {"kalvo.qzdf_veiculos.1\\clsid\\", sClsid},
      {"kalvo.qzdf_veiculos\\", "QZDF_Veiculos Class"},
      {"kalvo.qzdf_veiculos\\clsid\\", sClsid},
      {"kalvo.qzdf_veiculos\\curver\\", "Kalvo.QZDF_Veiculos.1"},
      {sClasse, "QZDF_Veiculos Class"},
      {sClasse + "appid", sAppId},
      {sClasse + "progid\\", "Kalvo.QZDF_Veiculos.1"},
      {sClasse + "versionindependentprogid\\", "Kalvo.QZDF_Veiculos"},
      {sClasse + "localserver32\\", "\"" + sPasta + "Kalvo.exe\""},
      {sClasse + "typelib\\", "{719b6d68-7fdd-4942-94c3-953b64051322}"},
  };
  const std::pair<std::string, std::string> proxies[] = {{"", sPasta + "QZDF_VeiculosPS.dll"},
                                                         {"wow6432node\\", sPasta + "x86\\QZDF_VeiculosPS.dll"}};
  for (const auto &[sVisao, sArquivo] : proxies) {
    arvore.insert({{sVisao + sInterface, "IQZDF_Veiculos"},
                   {sVisao + sInterface + "proxystubclsid32\\", "{84be9740-8888-4462-883d-b2725bba0296}"},
                   {sVisao + sInterface + "nummethods\\", "10"},
                   {sVisao + sProxy, "PSFactoryBuffer"},
                   {sVisao + sProxy + "inprocserver32\\", sArquivo},
                   {sVisao + sProxy + "inprocserver32\\threadingmodel", "Both"}});
  }
  if (bBiblioteca) {
    arvore.insert({{sBiblioteca, ""},
                   {sBiblioteca + "1.0\\", "Kalvo 1.0 Type Library"},
                   {sBiblioteca + "1.0\\0\\", ""},
                   {sBiblioteca + "1.0\\0\\win64\\", sPasta + "Kalvo.exe"},
                   {kOpcoesBiblioteca, ""},
                   {sBiblioteca + "1.0\\helpdir\\", sPasta.substr(0, sPasta.size() - 1)}});
  }
  return Diferenca({}, arvore);
}

/// For 64-bit and for 32-bit programs.
constexpr const char *kProxies[] = {"QZDF_VeiculosPS.dll", "x86\\QZDF_VeiculosPS.dll"};

/// One of the two registrations: switches and hive.
struct Alcance {
  const char *lpRegistra;
  const char *lpRemove;
  HKEY hRaiz;
  bool bBiblioteca;
};

// Wine's per-user registration of a type library writes to the machine's hive; the machine's, which follows, removes
// it.
const Alcance kAlcances[] = {{"/RegServerPerUser", "/UnregServerPerUser", HKEY_CURRENT_USER, false},
                             {"/RegServer", "/UnregServer", HKEY_LOCAL_MACHINE, true}};

/// A key that may be read but not written to, for a scope.
class SoParaLer {
public:
  SoParaLer(HKEY hRaiz, const char *lpChave) : m_hRaiz(hRaiz), m_lpChave(lpChave) { Permite("KRWD"); }
  ~SoParaLer() { Permite("KA"); }
  SoParaLer(const SoParaLer &) = delete;
  SoParaLer &operator=(const SoParaLer &) = delete;

private:
  /// Gives everybody these rights, and nobody others.
  void Permite(const std::string &sDireitos) const {
    HKEY hChave = nullptr;
    ASSERT_EQ(RegOpenKeyExA(m_hRaiz, m_lpChave, 0, WRITE_DAC, &hChave), ERROR_SUCCESS);
    PSECURITY_DESCRIPTOR pDescritor = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorA(("D:P(A;;" + sDireitos + ";;;WD)").c_str(),
                                                                     SDDL_REVISION_1, &pDescritor, nullptr));
    EXPECT_EQ(RegSetKeySecurity(hChave, DACL_SECURITY_INFORMATION, pDescritor), ERROR_SUCCESS);
    LocalFree(pDescritor);
    RegCloseKey(hChave);
  }

  const HKEY m_hRaiz;
  const char *const m_lpChave;
};

/// An installation of the server in a folder of its own, in a path with blanks and accents.
class RegistroCom : public testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(CreateDirectoryA((m_sPasta + "x86").c_str(), nullptr));
    Copia("Kalvo.exe");
    Limpa();
  }

  /// The registration that the other tests of the program work with.
  void TearDown() override {
    Limpa();
    EXPECT_EQ(ExecutaKalvo("/RegServer"), 0U);
  }

  /// Leaves what stays by rule after a registration was removed.
  static void Limpa() {
    for (const Alcance &alcance : kAlcances) {
      EXPECT_EQ(ExecutaKalvo(alcance.lpRegistra), 0U);
      EXPECT_EQ(ExecutaKalvo(alcance.lpRemove), 0U);
    }
  }

  void CopiaProxies() const {
    for (const char *lpArquivo : kProxies) {
      Copia(lpArquivo);
    }
  }

  void Copia(const std::string &sArquivo) const {
    ASSERT_TRUE(CopyFileA((PastaDoPrograma() + sArquivo).c_str(), (m_sPasta + sArquivo).c_str(), FALSE));
  }

  /// Runs this installation's server; what it says stays in m_sErro.
  DWORD Executa(const char *lpArgumentos) { return apoiocom::Executa(m_sPasta + "Kalvo.exe", lpArgumentos, &m_sErro); }

  const apoio::PastaTemporaria m_raiz;
  const std::string m_sPasta = m_raiz.CriaSubpasta("Instala\xE7\xE3o do servidor");
  std::string m_sErro;
};

}  // namespace

TEST_F(RegistroCom, RegistraERemoveChaveAChave) {
  for (const Alcance &alcance : kAlcances) {
    SCOPED_TRACE(alcance.lpRegistra);
    Limpa();
    CopiaProxies();
    const Arvore vazia = Classes(alcance.hRaiz);
    EXPECT_EQ(vazia.at("appid\\{f5b03bc1-ff38-45f0-a365-680a4ab6f515}\\"), "Kalvo");
    for (int iVez = 1; iVez <= 2; ++iVez) {
      EXPECT_EQ(Executa(alcance.lpRegistra), 0U);
      EXPECT_EQ(m_sErro, "");
      EXPECT_EQ(Diferenca(vazia, Classes(alcance.hRaiz)), Esperado(m_sPasta, alcance.bBiblioteca)) << iVez;
    }
    // Nothing but the executable is needed to remove the registration.
    ASSERT_TRUE(DeleteFileA((m_sPasta + kProxies[0]).c_str()));
    for (int iVez = 1; iVez <= 2; ++iVez) {
      EXPECT_EQ(Executa(alcance.lpRemove), 0U);
      EXPECT_EQ(m_sErro, "");
      EXPECT_EQ(TodaDiferenca(vazia, Classes(alcance.hRaiz)), "") << iVez;
    }
  }
}

TEST_F(RegistroCom, FalhaDizOQueENaoDeixaNada) {
  const std::string sProxy = std::string(kClasses) + "\\Wow6432Node\\CLSID\\{84BE9740-8888-4462-883D-B2725BBA0296}";
  for (const Alcance &alcance : kAlcances) {
    SCOPED_TRACE(alcance.lpRegistra);
    Limpa();
    for (const bool bHaviaOutro : {false, true}) {
      SCOPED_TRACE(bHaviaOutro);
      if (bHaviaOutro) {
        ASSERT_EQ(ExecutaKalvo(alcance.lpRegistra), 0U);
      }
      // The executable alone in its folder, then with one of the two proxies that belong beside it.
      const Arvore antes = Classes(alcance.hRaiz);
      EXPECT_EQ(Executa(alcance.lpRegistra), 0x8007007EU);
      EXPECT_NE(m_sErro.find(m_sPasta + "QZDF_VeiculosPS.dll: erro 0x8007007E"), std::string::npos) << m_sErro;
      Copia(kProxies[0]);
      EXPECT_EQ(Executa(alcance.lpRegistra), 0x80070002U);
      EXPECT_NE(m_sErro.find(m_sPasta + "x86\\QZDF_VeiculosPS.dll: erro 0x80070002"), std::string::npos) << m_sErro;
      EXPECT_EQ(TodaDiferenca(antes, Classes(alcance.hRaiz)), "");

      // A key that lives only in memory takes no lasting keys: that of the proxy for 32-bit programs cannot be written,
      // after everything else was.
      Copia(kProxies[1]);
      RegDeleteTreeA(alcance.hRaiz, sProxy.c_str());
      HKEY hChave = nullptr;
      ASSERT_EQ(RegCreateKeyExA(alcance.hRaiz, sProxy.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE, nullptr,
                                &hChave, nullptr),
                ERROR_SUCCESS);
      RegCloseKey(hChave);
      const Arvore bloqueada = Classes(alcance.hRaiz);
      EXPECT_EQ(Executa(alcance.lpRegistra), static_cast<DWORD>(HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE)));
      EXPECT_NE(Minusculas(m_sErro).find(Minusculas(sProxy) + "\\inprocserver32: erro 0x800703fd"), std::string::npos)
          << m_sErro;
      EXPECT_EQ(TodaDiferenca(bloqueada, Classes(alcance.hRaiz)), "");
      RegDeleteTreeA(alcance.hRaiz, sProxy.c_str());
      for (const char *lpArquivo : kProxies) {
        DeleteFileA((m_sPasta + lpArquivo).c_str());
      }
    }
  }
}

// Keys that nothing was written to need no undoing, and no right to write.
TEST_F(RegistroCom, RecusadaPorFaltaDeDireitosNaoDeixaNadaADesfazer) {
  CopiaProxies();
  for (const Alcance &alcance : kAlcances) {
    SCOPED_TRACE(alcance.lpRegistra);
    ASSERT_EQ(ExecutaKalvo(alcance.lpRegistra), 0U);
    const Arvore antes = Classes(alcance.hRaiz);
    const SoParaLer semDireitos(alcance.hRaiz, "Software\\Classes\\AppID\\{f5b03bc1-ff38-45f0-a365-680a4ab6f515}");
    EXPECT_EQ(Executa(alcance.lpRegistra), static_cast<DWORD>(E_ACCESSDENIED));
    EXPECT_NE(m_sErro.find("{f5b03bc1-ff38-45f0-a365-680a4ab6f515}: erro 0x80070005"), std::string::npos) << m_sErro;
    EXPECT_EQ(m_sErro.find("desfeito"), std::string::npos) << m_sErro;
    EXPECT_EQ(TodaDiferenca(antes, Classes(alcance.hRaiz)), "");
  }
}
