// The log files that the registered server leaves: with the values of a real machine in their columns.

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "core/env/QZPath.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

/// A log file has a header and, perhaps among others, lines of these forms in this order; all are complete.
void EsperaLinhas(const CString &sCaminho, const std::vector<std::regex> &formas) {
  const std::string sTexto = apoio::LeArquivo(sCaminho);
  EXPECT_TRUE(sTexto.starts_with("Data\tHora\tProcesso\t") && sTexto.ends_with("\r\n")) << sTexto;
  auto forma = formas.begin();
  for (std::size_t i = 0, uiFim = 0; (uiFim = sTexto.find("\r\n", i)) != std::string::npos; i = uiFim + 2) {
    forma += forma != formas.end() && std::regex_match(sTexto.substr(i, uiFim - i), *forma) ? 1 : 0;
  }
  EXPECT_EQ(forma - formas.begin(), static_cast<std::ptrdiff_t>(formas.size())) << sTexto;
}

}  // namespace

TEST(LogCom, ChamadasEFalhasComValoresDeVerdade) {
  ASSERT_GE(EsperaServidorTerminar(), 0);
  const Empresa empresa;
  const apoio::PastaTemporaria instalacao;
  apoio::RegistroTeste registro;
  registro.DefineTexto(CString(kChaveSuite) + "Miran Empresarial", "Path", instalacao.Caminho());
  apoio::EscreveArquivo(instalacao / "log.ini", "[Log]\r\nEntrada=1\r\nSaida=1\r\nPerformance=1\r\nMemory=1\r\n");
  // The columns that all records have, then the rest.
  const auto forma = [&](const std::string &sFuncao, const std::string &sTipo, const std::string &sResto) {
    return std::regex(R"(\d\d/\d\d/\d{4}\t\d\d:\d\d:\d\d\.\d{3}\tkalvo\.exe\t[^\t]+\t)" + sFuncao +
                      R"(\t\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\}\tE)" + empresa.Codigo() +
                      R"(\tU007\tS00000042\tT\d{8}\t)" + sTipo + R"((\t[1-9]\d*){3}\t)" + sResto);
  };

  const Veiculos spVeiculos = Abre(empresa.Codigo());
  ASSERT_NE(spVeiculos, nullptr);
  const CString erros = empresa.Arquivo("QZProfilerErros.dat");
  LONG lPos = 0;
  ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V1")), S_OK);
  tagREG_VEICULOPS veiculo;
  ASSERT_EQ(spVeiculos->Le(1, &veiculo), S_OK);
  ASSERT_EQ(spVeiculos->Existe(Texto("V1").Ponteiro(), &lPos, &veiculo), S_OK);
  EXPECT_FALSE(apoio::ExisteNoDisco(erros)) << "nothing has failed yet";
  ASSERT_EQ(Bits(spVeiculos->Le(0, &veiculo)), 0x810809D9U);

  const std::string sErro = R"(1\.0\.0\t\d+\.\d+\.\d+\t)";
  EsperaLinhas(erros, {forma("CQZFile<struct RegVeiculo>::Le", "ERRO", sErro + R"(QZFile\.h\t[1-9]\d*\thr = .*)"),
                       forma("CBaseVeiculos::LePonteiros", "ERRO", sErro + R"(BaseVeiculos\.cpp\t[1-9]\d*\thr = .*)"),
                       forma("CQZDF_Veiculos::Le", "ERRO",
                             sErro + R"(QZDF_Veiculos\.cpp\t[1-9]\d*\thr = pfInSEHFuncao\(\)\thr = 0X810809D9 \t.*)")});
  EsperaLinhas(instalacao / "QZProfiler.dat",
               {forma("CQZDF_Veiculos::Inicializa", "ENTROU", R"(0\t0\t)"),  // carries the caller's identity already
                forma("CQZFile<struct RegVeiculo>::GravaColecao", "SAIU", R"(\d{1,5}\t\d+\t)"),
                forma("CQZDF_Veiculos::Le", "ENTROU", R"(0\t0\tlPos = 1\t)"),
                forma("CQZDF_Veiculos::Le", "SAIU", R"(\d{1,5}\t\d+\t)"),
                // The marshalling carries no value in through an output.
                forma("CQZDF_Veiculos::Existe", "ENTROU", R"(0\t0\tlpCodigo = V1\t\*pPos = 0\t)")});
}
