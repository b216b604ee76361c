#include "core/log/RegistroLog.h"

#include "core/log/SumidouroErroLog.h"
#include "tests/log/LogTeste.h"

namespace {

class RegistroErro : public LogTeste {
protected:
  void Grava(const IQZDF_Profiler *pProfiler, const CString &sLog = "texto") {
    GravaRegistroErro(pProfiler, "C::F", "C.cpp", 9, sLog);
  }
};

TEST_F(RegistroErro, LinhaByteAByte) {
  m_informacoes.m_versaoPrograma = {0x00060005, 8};
  const SumidouroRastro anterior = DefineSumidouroRastro(nullptr);
  InstalaLogDeErros();
  const CQZRastro rastro(&m_profiler, {"CQZFile<", "struct RegVeiculo", ">::Le"}, "QZFile.h");
  EXPECT_EQ(BitsResultado(rastro.Codigo(CodigoResultado(0x810809D9), 118)), 0x810809D9);
  EXPECT_FALSE(rastro.Falha(1, "Sucesso()", 119));
  static_cast<void>(rastro.Codigo(kFimCodigosEsperados, 120));  // is always expected
  const HRESULT esperados[] = {1, CodigoResultado(0x80004005), kFimCodigosEsperados, 3};
  EXPECT_TRUE(ErroEsperado(esperados[1], esperados) && !ErroEsperado(esperados[3], esperados));
  EXPECT_TRUE(rastro.FalhaVariavel(CodigoResultado(0x80004005), "Cria()", "m_hrConstruct", 121));
  DefineSumidouroRastro(anterior);
  const std::string linha =
      "21/11/2025|09:05:07.042|kalvo.exe|operador|CQZFile<struct RegVeiculo>::Le|"
      "{6F9619FF-8B86-D011-B42D-00C04FC964FF}|E0001|U007|S00000042|T00004660|ERRO|8589934592|17179869184|3276800|6.5.8|"
      "10.0.19045|QZFile.h|118|hr = ((HRESULT)0x810809D9L)|hr = 0X810809D9 |SEVERITY = 1 SEVERITY_ERROR|"
      "FACILITY = 264 QZ_FACILITY_CR_CORE|CODE = 2521 |Descri\xE7\xE3o = |";
  const std::vector<std::string> linhas = ErrosDaEmpresa();
  ASSERT_EQ(linhas.size(), 3U);
  EXPECT_EQ(linhas[0], kCabecalhoErrosEsperado);
  EXPECT_EQ(linhas[1], linha);
  EXPECT_NE(linhas[2].find("|QZFile.h|121|m_hrConstruct = Cria()|"), std::string::npos) << linhas[2];
}

TEST_F(RegistroErro, LeAConfiguracaoDeNovo) {
  EscreveIni("Saida=1\r\nPerformance=1");
  m_relogio.m_ticks += 700000;
  Grava(&m_profiler);
  EXPECT_TRUE(LogSaida());
}

TEST_F(RegistroErro, PastaPorEmpresa) {
  const CQZProfilerEmpresa semEmpresa;
  const CQZProfilerEmpresa desconhecida("9999", 1, 1);
  Grava(nullptr);
  Grava(&semEmpresa);
  Grava(&desconhecida);
  Grava(&m_profiler);
  EXPECT_EQ(ErrosDaEmpresa().size(), 2U);
  m_registro.m_textos[{CString(kChaveSuite) + "Empresas\\0001", "DF"}] = m_dados / "falta";
  Grava(&m_profiler);  // goes nowhere
  const std::vector<std::string> linhas = ErrosDaInstalacao();
  ASSERT_EQ(linhas.size(), 4U);
  EXPECT_NE(linhas[1].find("|{6F9619FF-8B86-D011-B42D-00C04FC964FF}|||||ERRO|"), std::string::npos) << linhas[1];
  EXPECT_NE(linhas[2].find("|E|U000|S00000000|T00004660|ERRO|"), std::string::npos) << linhas[2];
  EXPECT_NE(linhas[3].find("|E9999|U001|S00000001|T00004660|ERRO|"), std::string::npos) << linhas[3];
}

TEST_F(RegistroErro, RelogioQueFalhaDaAHoraDaMaquina) {
  // A shift that leads to before the first moment that can be expressed.
  m_registro.m_textos[{"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment", "QZ_DATETIME"}] =
      "1;01/01/1601;00:00:00:000;21/11/2030;00:00:00:000";
  Grava(&m_profiler);
  EXPECT_EQ(ErrosDaEmpresa().back().substr(0, 24), "21/11/2025|09:05:07.042|");
}

}  // namespace
