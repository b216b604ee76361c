// The log files that the registered server leaves: with the values of a real machine in their columns.

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "core/env/QZPath.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

TEST(LogCom, ChamadasEFalhasComValoresDeVerdade) {
  ASSERT_GE(EsperaServidorTerminar(), 0);
  const Empresa empresa;
  const apoio::PastaTemporaria instalacao;
  apoio::RegistroTeste registro;
  registro.DefineTexto(CString(kChaveSuite) + "Miran Empresarial", "Path", instalacao.Caminho());
  apoio::EscreveArquivo(instalacao / "log.ini", "[Log]\r\nEntrada=1\r\nSaida=1\r\nPerformance=1\r\nMemory=1\r\n");
  // There is a whole line with the columns that all records have, then the rest.
  const auto espera = [&](const CString &sArquivo, const std::string &sFuncao, const std::string &sResto) {
    const std::string sTexto = apoio::LeArquivo(sArquivo);
    const std::regex forma(R"(\n\d\d/\d\d/\d{4}\t\d\d:\d\d:\d\d\.\d{3}\tkalvo\.exe\t[^\t]+\t)" + sFuncao +
                           R"(\t\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\}\tE)" + empresa.Codigo() +
                           R"(\tU007\tS00000042\tT\d{8}\t)" + sResto + R"(\r\n)");
    EXPECT_TRUE(sTexto.starts_with("Data\tHora\tProcesso\t") && std::regex_search(sTexto, forma)) << sFuncao << "\n"
                                                                                                  << sTexto;
  };
  const std::string sMemoria = R"((\t[1-9]\d*){3}\t)";

  const Veiculos spVeiculos = Abre(empresa.Codigo());
  ASSERT_NE(spVeiculos, nullptr);
  const CString erros = empresa.Caminho("QZProfilerErros.dat");
  LONG lPos = 0;
  ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V1")), S_OK);
  tagREG_VEICULOPS veiculo;
  ASSERT_EQ(spVeiculos->Le(1, &veiculo), S_OK);
  EXPECT_FALSE(apoio::ExisteNoDisco(erros)) << "nothing has failed yet";
  ASSERT_EQ(Bits(spVeiculos->Le(0, &veiculo)), 0x810809D9U);

  const std::string sErro = "ERRO" + sMemoria + R"(1\.0\.0\t\d+\.\d+\.\d+\t)";
  espera(erros, "CQZFile<struct RegVeiculo>::Le", sErro + R"(QZFile\.h\t[1-9]\d*\thr = [^\n]*)");
  espera(erros, "CQZDF_Veiculos::Le",
         sErro + R"(QZDF_Veiculos\.cpp\t[1-9]\d*\thr = pfInSEHFuncao\(\)\thr = 0X810809D9 \t[^\n]*)");
  const CString chamadas = instalacao / "QZProfiler.dat";
  // Carries the caller's identity already.
  espera(chamadas, "CQZDF_Veiculos::Inicializa", "ENTROU" + sMemoria + R"(0\t0\t)");
  espera(chamadas, "CQZFile<struct RegVeiculo>::GravaColecao", "SAIU" + sMemoria + R"(\d{1,5}\t\d+\t)");
  espera(chamadas, "CQZDF_Veiculos::Le", "SAIU" + sMemoria + R"(\d{1,5}\t\d+\t)");
}
