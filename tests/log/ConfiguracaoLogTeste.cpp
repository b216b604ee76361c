// When and from where the settings are read, and what they say.

#include "core/log/ConfiguracaoLog.h"

#include "tests/log/LogTeste.h"

namespace {

using ConfiguracaoLog = LogTeste;

TEST_F(ConfiguracaoLog, SemInstalacaoLeDoDiretorioAtual) {
  m_registro.m_textos.clear();
  CarregaEm(m_relogio.m_ticks - 1);
  EXPECT_FALSE(RastreamentoHabilitado());
  apoio::EscreveArquivo(m_dados / "log.ini", "[Log]\r\nSaida=1\r\nMemory=1");
  m_informacoes.m_diretorioAtual = m_dados.Caminho();
  CarregaEm(m_relogio.m_ticks - 1);
  EXPECT_TRUE(RastreamentoHabilitado());
}

TEST_F(ConfiguracaoLog, ProcessosValidadeEChaves) {
  const std::pair<std::string, bool> casos[] = {{"outro;Xtodos", true},
                                                {"outro, alvo", true},
                                                {";,outro", false},
                                                {std::string(250, ';') + "kalvo.exeZ", true}};  // at most 259
  for (const auto &[sProcessos, bRastreado] : casos) {
    Configura("Processos=" + sProcessos);
    EXPECT_EQ(ProcessoRastreado("kalvo.exe"), bRastreado) << sProcessos;
  }
  for (const auto &[lpSegundos, uiDepois] : {std::pair("4294968", 3000000000U), std::pair("2", 2000U)}) {
    Configura(std::string("TimeoutConfig=") + lpSegundos, 1000);
    m_relogio.m_ticks = 1000 + uiDepois;
    EXPECT_EQ(CarregaConfiguracaoLog(), 1000U) << "not due yet";
  }
  EscreveIni("Entrada=2\r\nMemory=1");
  ++m_relogio.m_ticks;
  EXPECT_EQ(CarregaConfiguracaoLog(), 3001U) << "due";
  EXPECT_FALSE(RastreamentoLigado()) << "on for 1 alone";
}

TEST_F(ConfiguracaoLog, ContagemQueRecomeca) {
  m_relogio.m_ticks = 0;
  EXPECT_EQ(CarregaConfiguracaoLog(), 0U);
  EscreveIni("Entrada=1\r\nMemory=1");
  EXPECT_TRUE(RastreamentoHabilitado()) << "0 is never loaded";
}

}  // namespace
