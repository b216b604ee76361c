#include "core/log/ConfiguracaoLog.h"

#include "tests/log/LogTeste.h"

namespace {

class ConfiguracaoLog : public LogTeste {};

TEST_F(ConfiguracaoLog, Chaves) {
  const struct {
    const char *ini;
    const char *ligadas;  ///< E, S, T, P, M
    bool bHabilitado;
  } casos[] = {
      {"Entrada=1", "E", false},
      {"Trace=1\r\nMemory=1", "TM", false},
      {"Entrada=2\r\nPerformance=1", "P", false},
      {"Entrada=-1\r\nSaida=x\r\nMemory=1", "M", false},
      {"entrada = 1abc \r\nperformance=\"1\"", "EP", true},
      {"[Outra]\r\nEntrada=1\r\nPerformance=1", "", false},
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
  const auto confere = [this](bool bRastreado, auto... processos) {
    for (const std::string &sProcessos : {std::string(processos)...}) {
      Configura("Processos=" + sProcessos);
      EXPECT_EQ(ProcessoRastreado("kalvo.exe"), bRastreado) << sProcessos;
    }
  };
  EXPECT_TRUE(ProcessoRastreado("kalvo.exe")) << "no list";
  confere(true, "todos", "xtodosx", "kalvo.exe", "outro;lvo", "outro,alvo", "outro kal", "outro, ;;.exe ");
  confere(false, "", "Todos", ";, ;", "outro.exe", "KALVO", "kalvo.exe.bak");
  // Only the first 259 characters count.
  confere(true, std::string(254, 'x') + "todos", std::string(254, 'x') + ";kalvo");
  confere(false, std::string(255, 'x') + "todos");
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
  m_relogio.m_ticks = inicio;
  EXPECT_EQ(CarregaConfiguracaoLog(), inicio) << "the count began again";
}

TEST_F(ConfiguracaoLog, TickZeroContaComoNuncaCarregada) {
  Configura("", 0);
  EscreveIni("Entrada=1\r\nMemory=1");
  EXPECT_TRUE(RastreamentoHabilitado());
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
