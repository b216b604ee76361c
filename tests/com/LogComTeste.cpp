// The log files that the registered server leaves, column by column.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "core/env/QZPath.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

using Colunas = std::vector<std::string>;

Colunas Separa(const std::string &texto, const std::string &separador) {
  Colunas partes;
  std::size_t inicio = 0;
  for (std::size_t fim; (fim = texto.find(separador, inicio)) != std::string::npos; inicio = fim + separador.size()) {
    partes.push_back(texto.substr(inicio, fim - inicio));
  }
  partes.push_back(texto.substr(inicio));
  return partes;
}

/// The lines of a log file behind its header, in columns. Every line must be complete.
std::vector<Colunas> Linhas(const CString &caminho, std::size_t cabecalho) {
  const Colunas linhas = Separa(apoio::LeArquivo(caminho), "\r\n");
  EXPECT_EQ(linhas.back(), "") << "the last line is not ended";
  EXPECT_EQ(linhas.front().size() + 2, cabecalho) << linhas.front();
  std::vector<Colunas> colunas;
  for (std::size_t i = 1; i + 1 < linhas.size(); ++i) {
    colunas.push_back(Separa(linhas[i], "\t"));
  }
  return colunas;
}

/// An installation directory of its own, known to a server that starts after this.
class LogCom : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_GE(EsperaServidorTerminar(), 0);
    m_registro.DefineTexto(CString(kChaveSuite) + "Miran Empresarial", "Path", m_instalacao.Caminho());
  }

  void ConfereComuns(const Colunas &c, const char *funcao, const char *tipo) const {
    const std::string formas[] = {"[0-9]{2}/[0-9]{2}/[0-9]{4}",
                                  "[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}",
                                  "kalvo\\.exe",
                                  ".+",
                                  ".+",
                                  "\\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\}",
                                  "E" + m_empresa.Codigo(),
                                  "U[0-9]{3,5}",
                                  "S[0-9]{8}",
                                  "T[0-9]{8}",
                                  tipo,
                                  "[1-9][0-9]*",
                                  "[1-9][0-9]*",
                                  "[1-9][0-9]*"};
    ASSERT_GE(c.size(), std::size(formas));
    for (std::size_t i = 0; i < std::size(formas); ++i) {
      EXPECT_TRUE(std::regex_match(c[i], std::regex(formas[i]))) << i << ": " << c[i];
    }
    EXPECT_EQ(c[4], funcao);
    EXPECT_GE(std::stoull(c[12]), std::stoull(c[11]));
  }

  Empresa m_empresa;
  apoio::PastaTemporaria m_instalacao;
  apoio::RegistroTeste m_registro;
};

TEST_F(LogCom, CadeiaDeUmaLeituraQueFalha) {
  const Veiculos spVeiculos = Abre(m_empresa.Codigo());
  ASSERT_NE(spVeiculos, nullptr);
  LONG lPos = 0;
  ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V1")), S_OK);
  const CString caminho = m_empresa.Arquivo("QZProfilerErros.dat");
  EXPECT_FALSE(apoio::ExisteNoDisco(caminho)) << "nothing has failed yet";

  // The second time the file has been taken away: it begins anew, header and all.
  for (int vez = 0; vez < 2; ++vez) {
    tagREG_VEICULOPS veiculo;
    ASSERT_EQ(spVeiculos->Le(0, &veiculo), static_cast<HRESULT>(0x810809D9));
    const std::vector<Colunas> linhas = Linhas(caminho, 275);
    const char *const esperado[][3] = {
        {"CQZFile<struct RegVeiculo>::Le", "QZFile.h", "hr = ((HRESULT)0x810809D9L)"},
        {"CBaseVeiculos::LePonteiros", "BaseVeiculos.cpp", "hr = m_pDataBase->m_Veiculos.Le(Ponteiros[idx], &RegVei)"},
        {"CQZDF_Veiculos::Le", "QZDF_Veiculos.cpp", "hr = pfInSEHFuncao()"}};
    ASSERT_EQ(linhas.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
      const Colunas &c = linhas[i];
      ConfereComuns(c, esperado[i][0], "ERRO");
      ASSERT_EQ(c.size(), 25U);
      EXPECT_EQ(c[14], "1.0.0");
      EXPECT_TRUE(std::regex_match(c[15], std::regex("[0-9]+\\.[0-9]+\\.[0-9]+"))) << c[15];
      EXPECT_EQ(c[16], esperado[i][1]);
      EXPECT_GT(std::stoi(c[17]), 0);
      EXPECT_EQ(Colunas(c.begin() + 18, c.end()),
                (Colunas{esperado[i][2], "hr = 0X810809D9 ", "SEVERITY = 1 SEVERITY_ERROR",
                         "FACILITY = 264 QZ_FACILITY_CR_CORE", "CODE = 2521 ", "Descri\xE7\xE3o = ", ""}));
    }
    ASSERT_TRUE(DeleteFileA(caminho.c_str()));
  }
}

// Whatever the suite's library does, the caller gets the failure's own code, the record is there, without a text, and
// nothing stays locked for other threads.
TEST_F(LogCom, BibliotecaDeMensagensHostilNaoMudaNada) {
  const CString biblioteca = m_instalacao.CriaSubpasta("x64") + "QZLMensagem.dll";
  const CString erros = m_empresa.Arquivo("QZProfilerErros.dat");
  const Veiculos spVeiculos = Abre(m_empresa.Codigo());
  ASSERT_NE(spVeiculos, nullptr);
  LONG lPos = 0;
  ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V1")), S_OK);
  for (const char *lpVariante : {"falha", "ponteiro_ruim", "throw_alheio", "codigo_alheio", "pilha", "inicio"}) {
    SCOPED_TRACE(lpVariante);
    apoio::EscreveArquivo(biblioteca,
                          apoio::LeArquivo(KALVO_PASTA_MENSAGENS "mensagens_" + CString(lpVariante) + ".dll"));
    tagREG_VEICULOPS veiculo;
    EXPECT_EQ(Bits(spVeiculos->Le(0, &veiculo)), 0x810809D9U);
    const std::vector<Colunas> linhas = Linhas(erros, 275);
    ASSERT_EQ(linhas.size(), 3U);
    for (const Colunas &c : linhas) {
      EXPECT_EQ(c.at(19), "hr = 0X810809D9 ");
    }
    EXPECT_EQ(spVeiculos->Le(1, &veiculo), S_OK);
    EXPECT_EQ(spVeiculos->Grava(&lPos, Veiculo("V1")), S_OK);
    ASSERT_TRUE(DeleteFileA(erros.c_str()));
  }
}

TEST_F(LogCom, EntradaESaidaDeUmaChamada) {
  apoio::EscreveArquivo(m_instalacao / "log.ini", "[Log]\r\nEntrada=1\r\nSaida=1\r\nPerformance=1\r\nMemory=1\r\n");
  const Veiculos spVeiculos = Abre(m_empresa.Codigo());
  ASSERT_NE(spVeiculos, nullptr);
  LONG lPos = 0;
  ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V1")), S_OK);
  tagREG_VEICULOPS veiculo;
  ASSERT_EQ(spVeiculos->Le(1, &veiculo), S_OK);
  ASSERT_EQ(spVeiculos->Existe(Texto("V1").Ponteiro(), &lPos, &veiculo), S_OK);

  const std::vector<Colunas> linhas = Linhas(m_instalacao / "QZProfiler.dat", 257);
  const auto acha = [&](const char *funcao, const char *tipo) {
    const auto achada = std::find_if(linhas.begin(), linhas.end(), [&](const Colunas &c) {
      return c.size() > 10 && c[4] == funcao && c[10] == tipo;
    });
    return achada != linhas.end() ? *achada : Colunas();
  };
  const Colunas entrou = acha("CQZDF_Veiculos::Le", "ENTROU");
  const Colunas saiu = acha("CQZDF_Veiculos::Le", "SAIU");
  ConfereComuns(entrou, "CQZDF_Veiculos::Le", "ENTROU");
  ConfereComuns(saiu, "CQZDF_Veiculos::Le", "SAIU");
  ASSERT_EQ(entrou.size(), 18U);
  ASSERT_EQ(saiu.size(), 17U);
  EXPECT_EQ(entrou[5], saiu[5]) << "one identifier for the pair";
  EXPECT_EQ(Colunas(entrou.begin() + 14, entrou.end()), (Colunas{"0", "0", "lPos = 1", ""}));
  EXPECT_LT(std::stoull(saiu[14]), 60000U);
  EXPECT_EQ(saiu[16], "");
  const Colunas existe = acha("CQZDF_Veiculos::Existe", "ENTROU");
  ASSERT_EQ(existe.size(), 19U);
  EXPECT_EQ(existe[16], "lpCodigo = V1");
  EXPECT_EQ(existe[17], "*pPos = 0") << "the marshalling carries no value in through an output";
  EXPECT_FALSE(acha("CQZFile<struct RegVeiculo>::GravaColecao", "SAIU").empty());
  EXPECT_FALSE(acha("CQZDF_Veiculos::Inicializa", "ENTROU").empty()) << "carries the caller's identity already";
}

// One object goes from one company to another while other threads call it: every call works on one of them, under the
// user that it was initialised for, and says so.
TEST_F(LogCom, InicializaAoLadoDeOutrasChamadas) {
  apoio::EscreveArquivo(m_instalacao / "log.ini", "[Log]\r\nEntrada=1\r\nPerformance=1\r\n");
  const Empresa outra;
  const std::string codigos[] = {m_empresa.Codigo(), outra.Codigo()};
  const Veiculos spVeiculos = Cria();
  ASSERT_NE(spVeiculos, nullptr);
  const auto inicializa = [&](unsigned short i) {
    return spVeiculos->Inicializa(Texto(codigos[i % 2]).Ponteiro(), i % 2 == 0 ? 100 : 200, i % 2 == 0 ? 1 : 2);
  };
  for (unsigned short i = 0; i < 2; ++i) {
    LONG lPos = 0;
    ASSERT_EQ(inicializa(i), S_OK);
    ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo(codigos[i])), S_OK);
  }
  std::atomic<int> iErradas{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t) {
    threads.emplace_back([&] {
      const Apartamento apartamento;
      tagREG_VEICULOPS veiculo;
      for (int i = 0; i < 40; ++i) {
        const bool bCerta = spVeiculos->Le(1, &veiculo) == S_OK &&
                            std::count(std::begin(codigos), std::end(codigos), CodigoDe(veiculo)) == 1;
        iErradas += bCerta ? 0 : 1;
      }
    });
  }
  for (unsigned short i = 0; i < 20; ++i) {
    EXPECT_EQ(inicializa(i), S_OK);
  }
  for (std::thread &thread : threads) {
    thread.join();
  }
  EXPECT_EQ(iErradas, 0);
  const Colunas identidades[] = {{"E" + codigos[0], "U100", "S00000001"}, {"E" + codigos[1], "U200", "S00000002"}};
  for (const Colunas &c : Linhas(m_instalacao / "QZProfiler.dat", 257)) {
    if (c[4] == "CQZDF_Veiculos::Le") {
      const Colunas identidade(c.begin() + 5, c.begin() + 8);
      EXPECT_EQ(std::count(std::begin(identidades), std::end(identidades), identidade), 1)
          << identidade[0] << identidade[1] << identidade[2];
    }
  }
}

}  // namespace
