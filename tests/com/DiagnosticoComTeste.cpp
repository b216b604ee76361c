#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "core/env/QZPath.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

constexpr char kInterface[] = "Interface\\{581EE5E9-6EE9-4428-87C0-6BE18D374724}";

/// veiculos.exe diagnostico against the real registry, with an installation directory and a company in order.
class DiagnosticoCom : public testing::Test {
protected:
  void SetUp() override {
    m_registro.DefineTexto(std::string(kChaveSuite) + "Miran Empresarial", "Path", m_pasta.Caminho());
  }
  void TearDown() override { EXPECT_EQ(ExecutaKalvo("/RegServer"), 0U); }

  DWORD Diagnostica(const std::string &sEmpresa) {
    const DWORD dwCodigo =
        Executa(PastaDoPrograma() + "veiculos.exe", "--empresa \"" + sEmpresa + "\" diagnostico --abre", &m_sSaida);
    m_sSaida.erase(std::remove(m_sSaida.begin(), m_sSaida.end(), '\r'), m_sSaida.end());
    return dwCodigo;
  }

  /// The lines of the given kind, without their texts.
  std::vector<std::string> Linhas(const std::string &sMarca) const {
    std::vector<std::string> rotulos;
    for (std::size_t i = m_sSaida.find(sMarca); i != std::string::npos; i = m_sSaida.find(sMarca, i + 1)) {
      const std::size_t uiInicio = m_sSaida.find_first_not_of(' ', i + sMarca.size());
      rotulos.push_back(m_sSaida.substr(uiInicio, m_sSaida.find(" .", uiInicio) - uiInicio));
    }
    return rotulos;
  }

  const apoio::PastaTemporaria m_pasta;
  apoio::RegistroTeste m_registro;
  const Empresa m_empresa;
  std::string m_sSaida;
};

using Rotulos = std::vector<std::string>;

}  // namespace

TEST_F(DiagnosticoCom, ApontaOQueFalta) {
  const apoio::PastaTemporaria outra;
  const struct {
    const char *lpNome;
    std::function<void()> quebra;
    std::string sEmpresa;
    Rotulos falhas;
    std::string sTrecho;
  } casos[] = {
      {"company unknown", [] {}, "NAO_HA", {"empresa"}, "Empresas\\NAO_HA"},
      {"base damaged",
       [this] { apoio::EscreveArquivo(m_empresa.Arquivo("DFVEIVS.DAT"), "12345"); },
       m_empresa.Codigo(),
       {"base"},
       "0x810809E7"},
      {"proxy keys missing",
       [] {
         for (const char *const lpClasses : {"Software\\Classes\\", "Software\\Classes\\Wow6432Node\\"}) {
           ASSERT_EQ(RegDeleteTreeA(HKEY_LOCAL_MACHINE, (std::string(lpClasses) + kInterface).c_str()), ERROR_SUCCESS);
         }
       },
       m_empresa.Codigo(),
       {"interface", "proxy de 32 bits", "ativa\xE7\xE3o"},
       "ProxyStubClsid32 em HKCU e em HKLM"},
      {"server file missing",
       [&outra] {
         // A server that still runs would hide that the file is missing.
         ASSERT_GE(EsperaServidorTerminar(), 0);
         outra.CriaSubpasta("x86");
         for (const char *const lpArquivo : {"Kalvo.exe", "QZDF_VeiculosPS.dll", "x86\\QZDF_VeiculosPS.dll"}) {
           ASSERT_TRUE(CopyFileA((PastaDoPrograma() + lpArquivo).c_str(), (outra / lpArquivo).c_str(), TRUE));
         }
         std::string sErro;
         ASSERT_EQ(Executa(outra / "Kalvo.exe", "/RegServer", &sErro), 0U) << sErro;
         ASSERT_TRUE(DeleteFileA((outra / "Kalvo.exe").c_str()));
       },
       m_empresa.Codigo(),
       {"servidor", "biblioteca de tipos", "ativa\xE7\xE3o"},
       outra / "Kalvo.exe (HKLM): o arquivo n\xE3o existe"},
      {"unregistered",
       [] { ASSERT_EQ(ExecutaKalvo("/UnregServer"), 0U); },
       m_empresa.Codigo(),
       {"classe", "ProgID", "servidor", "biblioteca de tipos", "interface", "proxy de 32 bits", "ativa\xE7\xE3o"},
       "0x80040154"},
  };
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.lpNome);
    ASSERT_EQ(ExecutaKalvo("/RegServer"), 0U);
    caso.quebra();
    EXPECT_EQ(Diagnostica(caso.sEmpresa), 1U) << m_sSaida;
    EXPECT_EQ(Linhas("[FALHA]"), caso.falhas) << m_sSaida;
    EXPECT_NE(m_sSaida.find(caso.sTrecho), std::string::npos) << m_sSaida;
    EXPECT_NE(m_sSaida.find("o que fazer: "), std::string::npos) << m_sSaida;
    EXPECT_EQ(m_sSaida.find("Tudo em ordem"), std::string::npos) << m_sSaida;
    DeleteFileA(m_empresa.Arquivo("DFVEIVS.DAT").c_str());
  }
}
