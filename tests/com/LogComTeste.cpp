// The log files that the registered server leaves: with the values of a real machine in their columns.

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include "core/env/QZPath.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

/// An installation directory of its own, known to a server that starts after this.
class LogCom : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_GE(EsperaServidorTerminar(), 0);
    m_registro.DefineTexto(CString(kChaveSuite) + "Miran Empresarial", "Path", m_instalacao.Caminho());
  }

  /// The lines of a log file behind its header. Every line must be complete.
  static std::vector<std::string> Linhas(const CString &caminho) {
    const std::string sTexto = apoio::LeArquivo(caminho);
    std::vector<std::string> linhas;
    std::size_t uiInicio = 0;
    for (std::size_t uiFim; (uiFim = sTexto.find("\r\n", uiInicio)) != std::string::npos; uiInicio = uiFim + 2) {
      linhas.push_back(sTexto.substr(uiInicio, uiFim - uiInicio));
    }
    EXPECT_EQ(uiInicio, sTexto.size()) << "the last line is not ended";
    EXPECT_TRUE(!linhas.empty() && linhas[0].starts_with("Data\tHora\tProcesso\t")) << caminho;
    linhas.erase(linhas.begin());
    return linhas;
  }

  /// The form of a record: the columns that all have, then `sResto`.
  std::regex Forma(const std::string &sFuncao, const std::string &sTipo, const std::string &sResto) const {
    return std::regex(R"(\d\d/\d\d/\d{4}\t\d\d:\d\d:\d\d\.\d{3}\tkalvo\.exe\t[^\t]+\t)" + sFuncao +
                      R"(\t\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\}\tE)" + m_empresa.Codigo() +
                      R"(\tU007\tS00000042\tT\d{8}\t)" + sTipo + R"((\t[1-9]\d*){3}\t)" + sResto);
  }

  const Empresa m_empresa;
  const apoio::PastaTemporaria m_instalacao;
  apoio::RegistroTeste m_registro;
};

TEST_F(LogCom, CadeiaDeUmaLeituraQueFalha) {
  const Veiculos spVeiculos = Abre(m_empresa.Codigo());
  ASSERT_NE(spVeiculos, nullptr);
  const CString caminho = m_empresa.Arquivo("QZProfilerErros.dat");
  EXPECT_FALSE(apoio::ExisteNoDisco(caminho)) << "nothing has failed yet";
  const std::regex formas[] = {
      Forma("CQZFile<struct RegVeiculo>::Le", "ERRO", R"(1\.0\.0\t\d+\.\d+\.\d+\tQZFile\.h\t[1-9]\d*\thr = .*)"),
      Forma("CBaseVeiculos::LePonteiros", "ERRO", R"(1\.0\.0\t\d+\.\d+\.\d+\tBaseVeiculos\.cpp\t[1-9]\d*\thr = .*)"),
      Forma("CQZDF_Veiculos::Le", "ERRO",
            R"(1\.0\.0\t\d+\.\d+\.\d+\tQZDF_Veiculos\.cpp\t[1-9]\d*\thr = pfInSEHFuncao\(\)\thr = 0X810809D9 \t.*)")};
  // The second time the file has been taken away: it begins anew, header and all.
  for (int vez = 0; vez < 2; ++vez) {
    tagREG_VEICULOPS veiculo;
    ASSERT_EQ(Bits(spVeiculos->Le(0, &veiculo)), 0x810809D9U);
    const std::vector<std::string> linhas = Linhas(caminho);
    ASSERT_EQ(linhas.size(), std::size(formas));
    for (std::size_t i = 0; i < linhas.size(); ++i) {
      EXPECT_TRUE(std::regex_match(linhas[i], formas[i])) << linhas[i];
    }
    ASSERT_TRUE(DeleteFileA(caminho.c_str()));
  }
}

TEST_F(LogCom, EntradaESaidaDeCadaChamada) {
  apoio::EscreveArquivo(m_instalacao / "log.ini", "[Log]\r\nEntrada=1\r\nSaida=1\r\nPerformance=1\r\nMemory=1\r\n");
  const Veiculos spVeiculos = Abre(m_empresa.Codigo());
  ASSERT_NE(spVeiculos, nullptr);
  LONG lPos = 0;
  ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V1")), S_OK);
  tagREG_VEICULOPS veiculo;
  ASSERT_EQ(spVeiculos->Le(1, &veiculo), S_OK);
  ASSERT_EQ(spVeiculos->Existe(Texto("V1").Ponteiro(), &lPos, &veiculo), S_OK);

  const std::vector<std::string> linhas = Linhas(m_instalacao / "QZProfiler.dat");
  const std::regex formas[] = {
      Forma("CQZDF_Veiculos::Inicializa", "ENTROU", R"(0\t0\t)"),  // carries the caller's identity already
      Forma("CQZFile<struct RegVeiculo>::GravaColecao", "SAIU", R"(\d{1,5}\t\d+\t)"),
      Forma("CQZDF_Veiculos::Le", "ENTROU", R"(0\t0\tlPos = 1\t)"),
      Forma("CQZDF_Veiculos::Le", "SAIU", R"(\d{1,5}\t\d+\t)"),
      // The marshalling carries no value in through an output.
      Forma("CQZDF_Veiculos::Existe", "ENTROU", R"(0\t0\tlpCodigo = V1\t\*pPos = 0\t)")};
  auto linha = linhas.begin();
  for (std::size_t i = 0; i < std::size(formas); ++i) {
    linha = std::find_if(linha, linhas.end(), [&](const auto &sLinha) { return std::regex_match(sLinha, formas[i]); });
    ASSERT_NE(linha, linhas.end()) << i << "\n" << testing::PrintToString(linhas);
  }
}

}  // namespace
