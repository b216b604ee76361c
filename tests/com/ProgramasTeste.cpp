// The built programs as files: what an administrator installs.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

const std::vector<std::string> kDoProxy = {"DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer",
                                           "DllUnregisterServer"};

struct Programa {
  const char *lpArquivo;
  WORD wMaquina;
  const char *lpNome;  ///< of the project, among the program's strings
  WORD wSubsistema;
  bool bManifesto;
  std::vector<std::string> exportadas;
};

std::ostream &operator<<(std::ostream &saida, const Programa &programa) {
  return saida << programa.lpArquivo;
}

/// A program file, mapped as an image but not run.
class Programas : public testing::TestWithParam<Programa> {
protected:
  void SetUp() override { ASSERT_NE(m_hImagem, nullptr); }
  ~Programas() override { FreeLibrary(m_hImagem); }

  template <class T>
  const T *Em(DWORD dwEndereco) const {
    // The low bits of the handle say how the file was mapped.
    return reinterpret_cast<const T *>((reinterpret_cast<std::uintptr_t>(m_hImagem) & ~std::uintptr_t{3}) + dwEndereco);
  }

  template <class Cabecalhos>
  void ConfereCabecalhos() const {
    const auto &cabecalhos = *Em<Cabecalhos>(static_cast<DWORD>(Em<IMAGE_DOS_HEADER>(0)->e_lfanew));
    const auto &opcional = cabecalhos.OptionalHeader;
    EXPECT_EQ(cabecalhos.FileHeader.Machine, GetParam().wMaquina);
    EXPECT_EQ(opcional.Subsystem, GetParam().wSubsistema);
    constexpr WORD kProtecoes =
        IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT |
        (sizeof(Cabecalhos) == sizeof(IMAGE_NT_HEADERS64) ? IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA : 0);
    EXPECT_EQ(opcional.DllCharacteristics & kProtecoes, kProtecoes);
    EXPECT_NE(opcional.DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0U);
    ConfereImportadas(opcional.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT]);
    EXPECT_EQ(Exportadas(opcional.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT]), GetParam().exportadas);
  }

  void ConfereImportadas(const IMAGE_DATA_DIRECTORY &tabela) const {
    const std::vector<std::string> doSistema = {"kernel32.dll", "advapi32.dll", "ole32.dll",  "oleaut32.dll",
                                                "rpcrt4.dll",   "shlwapi.dll",  "user32.dll", "msvcrt.dll",
                                                "shell32.dll",  "version.dll",  "psapi.dll"};
    auto *pImportada = Em<IMAGE_IMPORT_DESCRIPTOR>(tabela.VirtualAddress);
    EXPECT_NE(pImportada->Name, 0U);
    for (; pImportada->Name != 0; ++pImportada) {
      const char *const lpNome = Em<char>(pImportada->Name);
      EXPECT_TRUE(std::any_of(doSistema.begin(), doSistema.end(), [&](const std::string &sDoSistema) {
        return lstrcmpiA(lpNome, sDoSistema.c_str()) == 0;
      })) << lpNome;
    }
  }

  std::vector<std::string> Exportadas(const IMAGE_DATA_DIRECTORY &tabela) const {
    std::vector<std::string> nomes;
    const auto *const pExportadas = Em<IMAGE_EXPORT_DIRECTORY>(tabela.VirtualAddress);
    for (DWORD i = 0; tabela.Size != 0 && i < pExportadas->NumberOfNames; ++i) {
      nomes.emplace_back(Em<char>(Em<DWORD>(pExportadas->AddressOfNames)[i]));
    }
    return nomes;
  }

  const std::string m_sArquivo = PastaDoPrograma() + GetParam().lpArquivo;
  const HMODULE m_hImagem = LoadLibraryExA(m_sArquivo.c_str(), nullptr, LOAD_LIBRARY_AS_IMAGE_RESOURCE);
};

constexpr WORD k64 = IMAGE_FILE_MACHINE_AMD64;
constexpr WORD k32 = IMAGE_FILE_MACHINE_I386;
INSTANTIATE_TEST_SUITE_P(
    Arquivos, Programas,
    testing::Values(Programa{"Kalvo.exe", k64, "Kalvo", IMAGE_SUBSYSTEM_WINDOWS_GUI, true, {}},
                    Programa{"veiculos.exe", k64, "", IMAGE_SUBSYSTEM_WINDOWS_CUI, true, {}},
                    Programa{"QZDF_VeiculosPS.dll", k64, "", IMAGE_SUBSYSTEM_WINDOWS_CUI, false, kDoProxy},
                    Programa{"x86\\QZDF_VeiculosPS.dll", k32, "", IMAGE_SUBSYSTEM_WINDOWS_CUI, false, kDoProxy}));

}  // namespace

TEST_P(Programas, SoPrecisamDoSistemaESaoProtegidos) {
  GetParam().wMaquina == k64 ? ConfereCabecalhos<IMAGE_NT_HEADERS64>() : ConfereCabecalhos<IMAGE_NT_HEADERS32>();
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
  EXPECT_TRUE(std::string_view(GetParam().lpArquivo).ends_with(static_cast<const char *>(pValor)));

  std::array<char, 32> nome{};
  LoadStringA(m_hImagem, 100, nome.data(), static_cast<int>(nome.size()));
  EXPECT_STREQ(nome.data(), GetParam().lpNome);
  const HRSRC hManifesto = FindResourceA(m_hImagem, MAKEINTRESOURCEA(1), MAKEINTRESOURCEA(24));
  EXPECT_EQ(hManifesto != nullptr, GetParam().bManifesto);
  if (hManifesto != nullptr) {
    const std::string sManifesto(static_cast<const char *>(LockResource(LoadResource(m_hImagem, hManifesto))),
                                 SizeofResource(m_hImagem, hManifesto));
    EXPECT_NE(sManifesto.find("asInvoker"), std::string::npos);
    EXPECT_NE(sManifesto.find("{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}"), std::string::npos) << "Windows 10 and later";
  }
}
