// When and from where the settings are read. What the file says the fuzzer of log.ini holds against a reference.

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

TEST_F(ConfiguracaoLog, ContagemQueRecomeca) {
  m_relogio.m_ticks = 0;
  EXPECT_EQ(CarregaConfiguracaoLog(), 0U);
  EscreveIni("Entrada=1\r\nMemory=1");
  EXPECT_TRUE(RastreamentoHabilitado()) << "0 is never loaded";
}

}  // namespace
