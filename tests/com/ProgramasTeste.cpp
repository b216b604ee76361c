// The built programs as files: what an administrator installs.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <string>
#include <vector>

#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

struct Programa {
  const char *lpArquivo;
  WORD wSubsistema;
  bool bManifesto;
};

std::ostream &operator<<(std::ostream &saida, const Programa &programa) {
  return saida << programa.lpArquivo;
}

/// A program file, read but not run.
class Imagem {
public:
  explicit Imagem(const std::string &sArquivo) : m_sBytes(apoio::LeArquivo(sArquivo)) {}

  const IMAGE_NT_HEADERS64 &Cabecalho() const {
    return *Em<IMAGE_NT_HEADERS64>(static_cast<DWORD>(Em<IMAGE_DOS_HEADER>(0)->e_lfanew));
  }

  /// Names of the libraries that it imports, in lower case.
  std::vector<std::string> Importadas() const {
    std::vector<std::string> nomes;
    const DWORD dwTabela = Cabecalho().OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto *p = Em<IMAGE_IMPORT_DESCRIPTOR>(NoArquivo(dwTabela)); p->Name != 0; ++p) {
      std::string sNome = Em<char>(NoArquivo(p->Name));
      std::transform(sNome.begin(), sNome.end(), sNome.begin(), [](char c) { return static_cast<char>(tolower(c)); });
      nomes.push_back(sNome);
    }
    return nomes;
  }

private:
  template <class T>
  const T *Em(DWORD dwPosicao) const {
    return reinterpret_cast<const T *>(m_sBytes.data() + dwPosicao);
  }

  DWORD NoArquivo(DWORD dwEndereco) const {
    const IMAGE_FILE_HEADER &arquivo = Cabecalho().FileHeader;
    const auto *pSecao = reinterpret_cast<const IMAGE_SECTION_HEADER *>(
        reinterpret_cast<const char *>(&Cabecalho().OptionalHeader) + arquivo.SizeOfOptionalHeader);
    for (WORD i = 0; i < arquivo.NumberOfSections; ++i, ++pSecao) {
      if (dwEndereco >= pSecao->VirtualAddress && dwEndereco - pSecao->VirtualAddress < pSecao->SizeOfRawData) {
        return dwEndereco - pSecao->VirtualAddress + pSecao->PointerToRawData;
      }
    }
    throw std::out_of_range("address outside the file");
  }

  std::string m_sBytes;
};

class Programas : public testing::TestWithParam<Programa> {
protected:
  const std::string m_sArquivo = PastaDoPrograma() + GetParam().lpArquivo;
};

INSTANTIATE_TEST_SUITE_P(Arquivos, Programas,
                         testing::Values(Programa{"Kalvo.exe", IMAGE_SUBSYSTEM_WINDOWS_GUI, true},
                                         Programa{"veiculos.exe", IMAGE_SUBSYSTEM_WINDOWS_CUI, true},
                                         Programa{"QZDF_VeiculosPS.dll", IMAGE_SUBSYSTEM_WINDOWS_CUI, false}));

}  // namespace

TEST_P(Programas, SoPrecisamDoSistemaESaoProtegidos) {
  const Imagem imagem(m_sArquivo);
  const IMAGE_OPTIONAL_HEADER64 &opcional = imagem.Cabecalho().OptionalHeader;
  EXPECT_EQ(imagem.Cabecalho().FileHeader.Machine, IMAGE_FILE_MACHINE_AMD64);
  EXPECT_EQ(opcional.Subsystem, GetParam().wSubsistema);
  constexpr WORD kProtecoes = IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA | IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE |
                              IMAGE_DLLCHARACTERISTICS_NX_COMPAT;
  EXPECT_EQ(opcional.DllCharacteristics & kProtecoes, kProtecoes);
  EXPECT_NE(opcional.DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0U);
  const std::vector<std::string> doSistema = {"kernel32.dll", "advapi32.dll", "ole32.dll",  "oleaut32.dll",
                                              "rpcrt4.dll",   "shlwapi.dll",  "user32.dll", "msvcrt.dll",
                                              "shell32.dll",  "version.dll",  "psapi.dll"};
  const std::vector<std::string> importadas = imagem.Importadas();
  EXPECT_FALSE(importadas.empty());
  for (const std::string &sNome : importadas) {
    EXPECT_EQ(std::count(doSistema.begin(), doSistema.end(), sNome), 1) << sNome;
  }
}

TEST_P(Programas, TrazemVersaoEManifesto) {
  std::vector<char> versao(GetFileVersionInfoSizeA(m_sArquivo.c_str(), nullptr));
  ASSERT_FALSE(versao.empty());
  ASSERT_TRUE(GetFileVersionInfoA(m_sArquivo.c_str(), 0, static_cast<DWORD>(versao.size()), versao.data()));
  void *pValor = nullptr;
  UINT uiTamanho = 0;
  ASSERT_TRUE(VerQueryValueA(versao.data(), "\\", &pValor, &uiTamanho));
  const auto &fixa = *static_cast<const VS_FIXEDFILEINFO *>(pValor);
  EXPECT_EQ(fixa.dwFileVersionMS, 0x00010000U);
  EXPECT_EQ(fixa.dwFileVersionLS, 0U);
  ASSERT_TRUE(VerQueryValueA(versao.data(), "\\StringFileInfo\\041604E4\\FileVersion", &pValor, &uiTamanho));
  EXPECT_STREQ(static_cast<const char *>(pValor), "1.0.0.0");
  ASSERT_TRUE(VerQueryValueA(versao.data(), "\\StringFileInfo\\041604E4\\OriginalFilename", &pValor, &uiTamanho));
  EXPECT_STREQ(static_cast<const char *>(pValor), GetParam().lpArquivo);

  const HMODULE hRecursos = LoadLibraryExA(m_sArquivo.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_NE(hRecursos, nullptr);
  const HRSRC hManifesto = FindResourceA(hRecursos, MAKEINTRESOURCEA(1), MAKEINTRESOURCEA(24));
  EXPECT_EQ(hManifesto != nullptr, GetParam().bManifesto);
  if (hManifesto != nullptr) {
    const std::string sManifesto(static_cast<const char *>(LockResource(LoadResource(hRecursos, hManifesto))),
                                 SizeofResource(hRecursos, hManifesto));
    EXPECT_NE(sManifesto.find("asInvoker"), std::string::npos);
    EXPECT_NE(sManifesto.find("{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}"), std::string::npos) << "Windows 10 and later";
  }
  FreeLibrary(hRecursos);
}

TEST(Programa, KalvoTrazONomeDoProjeto) {
  const HMODULE hRecursos =
      LoadLibraryExA((PastaDoPrograma() + "Kalvo.exe").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_NE(hRecursos, nullptr);
  std::array<char, 32> nome{};
  EXPECT_EQ(LoadStringA(hRecursos, 100, nome.data(), static_cast<int>(nome.size())), 5);
  EXPECT_STREQ(nome.data(), "Kalvo");
  FreeLibrary(hRecursos);
}
