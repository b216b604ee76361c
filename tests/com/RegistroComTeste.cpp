#include <gtest/gtest.h>
#include <windows.h>
//
#include <sddl.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <functional>
#include <iterator>
#include <set>
#include <string>
#include <utility>

#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

/// What there is below a key: "key\value = text" for each value, "key\" for a key with nothing below it; in lower
/// case.
using Arvore = std::set<std::string>;

std::string Minusculas(std::string texto) {
  std::transform(texto.begin(), texto.end(), texto.begin(), [](char c) { return static_cast<char>(tolower(c)); });
  return texto;
}

void LeArvore(HKEY hPai, const char *lpNome, const std::string &sCaminho, Arvore &arvore) {
  HKEY hChave = nullptr;
  // Of the view of 32-bit programs its own keys alone; it shows the others once more.
  if ((sCaminho.starts_with("wow6432node\\") && sCaminho != "wow6432node\\" &&
       !sCaminho.starts_with("wow6432node\\clsid\\") && !sCaminho.starts_with("wow6432node\\interface\\")) ||
      RegOpenKeyExA(hPai, lpNome, 0, KEY_READ, &hChave) != ERROR_SUCCESS) {
    return;
  }
  const std::size_t uiAntes = arvore.size();
  std::array<char, 512> nome{};
  DWORD dwNome = nome.size();
  std::array<char, 4096> dados{};
  DWORD dwDados = dados.size() - 1;
  for (DWORD i = 0; RegEnumValueA(hChave, i, nome.data(), &dwNome, nullptr, nullptr,
                                  reinterpret_cast<BYTE *>(dados.data()), &dwDados) == ERROR_SUCCESS;
       ++i, dwNome = nome.size(), dwDados = dados.size() - 1) {
    dados[dwDados] = 0;
    // The platforms do not agree on the flags of a library read from a file.
    if (!sCaminho.starts_with("typelib\\") || !sCaminho.ends_with("\\flags\\")) {
      arvore.insert(sCaminho + Minusculas(nome.data()) + " = " + Minusculas(dados.data()));
    }
  }
  for (DWORD i = 0; RegEnumKeyA(hChave, i, nome.data(), nome.size()) == ERROR_SUCCESS; ++i) {
    LeArvore(hChave, nome.data(), sCaminho + Minusculas(nome.data()) + "\\", arvore);
  }
  // A key for all programs may be empty without the server; those of one program have an identifier or a dot.
  if (arvore.size() == uiAntes && sCaminho.find_first_of("{.") != std::string::npos) {
    arvore.insert(sCaminho);
  }
  RegCloseKey(hChave);
}

Arvore Classes(HKEY hRaiz) {
  Arvore arvore;
  LeArvore(hRaiz, "Software\\Classes", "", arvore);
  return arvore;
}

/// What one of the two has and the other has not.
Arvore Diferenca(const Arvore &antes, const Arvore &depois) {
  Arvore diferentes;
  std::set_symmetric_difference(antes.begin(), antes.end(), depois.begin(), depois.end(),
                                std::inserter(diferentes, diferentes.end()));
  return diferentes;
}

/// Everything that a registration of the server in a folder leaves, with the type library or without.
Arvore Esperado(const std::string &sPasta, bool bBiblioteca) {
  const std::string sClsid = "{68409b5a-adf8-424f-a93a-bac1844e3253}";
  const std::string sAppId = "{f5b03bc1-ff38-45f0-a365-680a4ab6f515}";
  const std::string sProxy = "{84be9740-8888-4462-883d-b2725bba0296}";
  const std::string sBiblioteca = "{719b6d68-7fdd-4942-94c3-953b64051322}";
  const std::string sDaClasse = "clsid\\" + sClsid + "\\";
  const std::string sDaVersao = "typelib\\" + sBiblioteca + "\\1.0\\";
  Arvore arvore = {
      "appid\\kalvo.exe\\appid = " + sAppId,
      "kalvo.qzdf_veiculos.1\\ = qzdf_veiculos class",
      "kalvo.qzdf_veiculos.1\\clsid\\ = " + sClsid,
      "kalvo.qzdf_veiculos\\ = qzdf_veiculos class",
      "kalvo.qzdf_veiculos\\clsid\\ = " + sClsid,
      "kalvo.qzdf_veiculos\\curver\\ = kalvo.qzdf_veiculos.1",
      sDaClasse + " = qzdf_veiculos class",
      sDaClasse + "appid = " + sAppId,
      sDaClasse + "progid\\ = kalvo.qzdf_veiculos.1",
      sDaClasse + "versionindependentprogid\\ = kalvo.qzdf_veiculos",
      sDaClasse + "localserver32\\ = \"" + sPasta + "kalvo.exe\"",
      sDaClasse + "typelib\\ = " + sBiblioteca,
  };
  for (const auto &[sVisao, sSubpasta] : {std::pair("", ""), std::pair("wow6432node\\", "x86\\")}) {
    const std::string sDaInterface = sVisao + std::string("interface\\{581ee5e9-6ee9-4428-87c0-6be18d374724}\\");
    const std::string sDoProxy = sVisao + ("clsid\\" + sProxy + "\\");
    arvore.insert({sDaInterface + " = iqzdf_veiculos", sDaInterface + "proxystubclsid32\\ = " + sProxy,
                   sDaInterface + "nummethods\\ = 10", sDoProxy + " = psfactorybuffer",
                   sDoProxy + "inprocserver32\\ = " + sPasta + sSubpasta + "qzdf_veiculosps.dll",
                   sDoProxy + "inprocserver32\\threadingmodel = both"});
  }
  if (bBiblioteca) {
    arvore.insert({sDaVersao + " = kalvo 1.0 type library", sDaVersao + "0\\win64\\ = " + sPasta + "kalvo.exe",
                   sDaVersao + "flags\\", sDaVersao + "helpdir\\ = " + sPasta.substr(0, sPasta.size() - 1)});
  }
  return arvore;
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

/// Gives everybody these rights to a key, and nobody others.
void Permite(HKEY hRaiz, const std::string &sChave, const char *lpDireitos) {
  HKEY hChave = nullptr;
  ASSERT_EQ(RegOpenKeyExA(hRaiz, sChave.c_str(), 0, WRITE_DAC, &hChave), ERROR_SUCCESS);
  PSECURITY_DESCRIPTOR pDescritor = nullptr;
  ConvertStringSecurityDescriptorToSecurityDescriptorA(lpDireitos, SDDL_REVISION_1, &pDescritor, nullptr);
  EXPECT_EQ(RegSetKeySecurity(hChave, DACL_SECURITY_INFORMATION, pDescritor), ERROR_SUCCESS);
  LocalFree(pDescritor);
  RegCloseKey(hChave);
}

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
    Copia(kProxies[0]);
    Copia(kProxies[1]);
    const Arvore vazia = Classes(alcance.hRaiz);
    EXPECT_TRUE(vazia.contains("appid\\{f5b03bc1-ff38-45f0-a365-680a4ab6f515}\\ = kalvo"));
    for (int iVez = 1; iVez <= 2; ++iVez) {
      EXPECT_EQ(Executa(alcance.lpRegistra), 0U);
      EXPECT_EQ(m_sErro, "");
      EXPECT_EQ(Diferenca(vazia, Classes(alcance.hRaiz)), Esperado(Minusculas(m_sPasta), alcance.bBiblioteca)) << iVez;
    }
    // Nothing but the executable is needed to remove the registration.
    ASSERT_TRUE(DeleteFileA((m_sPasta + kProxies[0]).c_str()));
    for (int iVez = 1; iVez <= 2; ++iVez) {
      EXPECT_EQ(Executa(alcance.lpRemove), 0U);
      EXPECT_EQ(m_sErro, "");
      EXPECT_EQ(Diferenca(vazia, Classes(alcance.hRaiz)), Arvore()) << iVez;
    }
  }
}

// Keys that nothing was written to need no undoing, and no right to write.
TEST_F(RegistroCom, FalhaDizOQueENaoDeixaNada) {
  const std::string sProxy = "Software\\Classes\\Wow6432Node\\CLSID\\{84be9740-8888-4462-883d-b2725bba0296}";
  const std::string sAppId = "Software\\Classes\\AppID\\{f5b03bc1-ff38-45f0-a365-680a4ab6f515}";
  const struct {
    std::function<void(HKEY)> prepara;
    DWORD dwCodigo;
    std::string sErro;
  } passos[] = {
      {[](HKEY) {}, 0x8007007E, m_sPasta + "QZDF_VeiculosPS.dll: erro 0x8007007E"},
      {[this](HKEY) { Copia(kProxies[0]); }, 0x80070002, m_sPasta + "x86\\QZDF_VeiculosPS.dll: erro 0x80070002"},
      // A key that lives only in memory takes no lasting keys: that of the proxy for 32-bit programs cannot be written,
      // after everything else was.
      {[&](HKEY hRaiz) {
         Copia(kProxies[1]);
         RegDeleteTreeA(hRaiz, sProxy.c_str());
         HKEY hChave = nullptr;
         ASSERT_EQ(RegCreateKeyExA(hRaiz, sProxy.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE, nullptr, &hChave,
                                   nullptr),
                   ERROR_SUCCESS);
         RegCloseKey(hChave);
       },
       0x800703FD, sProxy + "\\InProcServer32: erro 0x800703FD"},
      {[&](HKEY hRaiz) {
         RegDeleteTreeA(hRaiz, sProxy.c_str());
         Permite(hRaiz, sAppId, "D:P(A;;KRWD;;;WD)");
       },
       0x80070005, sAppId + ": erro 0x80070005"},
  };
  for (const Alcance &alcance : kAlcances) {
    SCOPED_TRACE(alcance.lpRegistra);
    Limpa();
    for (const bool bHaviaOutro : {false, true}) {
      SCOPED_TRACE(bHaviaOutro);
      if (bHaviaOutro) {
        ASSERT_EQ(ExecutaKalvo(alcance.lpRegistra), 0U);
      }
      for (const auto &passo : passos) {
        passo.prepara(alcance.hRaiz);
        const Arvore antes = Classes(alcance.hRaiz);
        EXPECT_EQ(Executa(alcance.lpRegistra), passo.dwCodigo);
        EXPECT_NE(Minusculas(m_sErro).find(Minusculas(passo.sErro)), std::string::npos) << m_sErro;
        EXPECT_EQ(m_sErro.find("desfeito"), std::string::npos) << m_sErro;
        EXPECT_EQ(Diferenca(antes, Classes(alcance.hRaiz)), Arvore());
      }
      Permite(alcance.hRaiz, sAppId, "D:P(A;;KA;;;WD)");
      for (const char *lpArquivo : kProxies) {
        DeleteFileA((m_sPasta + lpArquivo).c_str());
      }
    }
  }
}
