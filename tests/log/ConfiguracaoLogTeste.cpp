#include "core/log/ConfiguracaoLog.h"

#include "tests/log/LogTeste.h"

namespace {

using namespace std::string_literals;

using ConfiguracaoLog = LogTeste;

TEST_F(ConfiguracaoLog, Chaves) {
  const struct {
    const char *ini;
    const char *ligadas;  ///< E, S, T, P, M
    bool bHabilitado;
  } casos[] = {
      {"Entrada=1\r\nSaida=-1", "E", false},
      {"Trace=1\r\nMemory=1", "TM", false},
      {"Entrada=2\r\nPerformance=1", "P", false},
      {"Saida=1\r\nPerformance=1", "SP", true},
  };
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.ini);
    Configura(caso.ini);
    std::string ligadas;
    ligadas.append(LogEntrada() ? "E" : "").append(LogSaida() ? "S" : "").append(LogTrace() ? "T" : "");
    ligadas.append(LogPerformance() ? "P" : "").append(LogMemory() ? "M" : "");
    EXPECT_EQ(ligadas, caso.ligadas);
    EXPECT_EQ(RastreamentoHabilitado(), caso.bHabilitado);
  }
}

TEST_F(ConfiguracaoLog, Processos) {
  const std::string sLonga(254, 'x');  // only the first 259 characters count
  const auto rastreado = [this](const std::string &sProcessos) {
    Configura("Processos=" + sProcessos);
    return ProcessoRastreado("kalvo.exe");
  };
  EXPECT_TRUE(ProcessoRastreado("kalvo.exe")) << "no list";
  for (const std::string &sProcessos : {"xtodosx"s, "outro;lvo"s, "outro,alvo"s, "outro kal"s, sLonga + "todos"}) {
    EXPECT_TRUE(rastreado(sProcessos)) << sProcessos;
  }
  for (const std::string &sProcessos : {""s, "Todos"s, ";, ;"s, "kalvo.exe.bak"s, sLonga + "xtodos"}) {
    EXPECT_FALSE(rastreado(sProcessos)) << sProcessos;
  }
}

TEST_F(ConfiguracaoLog, NovoTimeoutValeDaChamadaSeguinte) {
  Configura("TimeoutConfig=10");
  const std::uint32_t inicio = m_relogio.m_ticks;
  EscreveIni("TimeoutConfig=1\r\nEntrada=1\r\nMemory=1");
  m_relogio.m_ticks = inicio + 10000;
  EXPECT_FALSE(RastreamentoHabilitado());
  m_relogio.m_ticks = inicio + 10001;
  EXPECT_TRUE(RastreamentoHabilitado());
  EscreveIni("TimeoutConfig=5000000");  // more milliseconds than 32 bits hold
  m_relogio.m_ticks = inicio + 11001;
  EXPECT_TRUE(RastreamentoHabilitado());
  m_relogio.m_ticks = inicio + 11002;
  EXPECT_FALSE(RastreamentoHabilitado());
  m_relogio.m_ticks = 0xFFFFFFFF;
  EXPECT_EQ(CarregaConfiguracaoLog(), inicio + 11002);
  m_relogio.m_ticks = 0;
  EXPECT_EQ(CarregaConfiguracaoLog(), 0U) << "the count began again";
  EscreveIni("Entrada=1\r\nMemory=1");
  EXPECT_TRUE(RastreamentoHabilitado()) << "0 is never loaded";
}

TEST_F(ConfiguracaoLog, SemInstalacaoLeDoDiretorioAtual) {
  m_registro.m_textos.clear();
  CarregaEm(m_relogio.m_ticks - 1);
  EXPECT_FALSE(RastreamentoHabilitado());
  apoio::EscreveArquivo(m_dados / "log.ini", "[Log]\r\nSaida=1\r\nMemory=1");
  m_informacoes.m_diretorioAtual = m_dados.Caminho();
  CarregaEm(m_relogio.m_ticks - 1);
  EXPECT_TRUE(RastreamentoHabilitado());
}

}  // namespace
