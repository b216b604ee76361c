#ifndef KALVO_TESTS_LOG_LOGTESTE_H
#define KALVO_TESTS_LOG_LOGTESTE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "core/env/QZPath.h"
#include "core/log/ConfiguracaoLog.h"
#include "core/log/EscritorLog.h"
#include "core/log/QZProfilerEmpresa.h"
#include "core/platform/ServicosSistema.h"
#include "tests/apoio/ArquivosComFalha.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ServicosFalsos.h"

inline constexpr char kCabecalhoErrosEsperado[] =
    "Data|Hora|Processo|UsuarioLocal|ClasseFuncao|Guid|Empresa|Usuario|Sessao|ThreadID|Tipo|MemoriaDisponivel|"
    "MemoriaTotal|MemoriaComponente|VersaoMiran|VersaoSO|Arquivo|Linha|Log|Parameter1|Parameter2|Parameter3|Parameter4|"
    "Parameter5|Parameter6|Parameter7|Parameter8|Parameter9";
inline constexpr char kCabecalhoProfilerEsperado[] =
    "Data|Hora|Processo|UsuarioLocal|ClasseFuncao|Guid|Empresa|Usuario|Sessao|ThreadID|Tipo|MemoriaDisponivel|"
    "MemoriaTotal|MemoriaComponente|Duracao|DeltaMemoria|Parameter1|Parameter2|Parameter3|Parameter4|Parameter5|"
    "Parameter6|Parameter7|Parameter8|Parameter9";

/// Lines of a log file with '|' for its tabs. A line that does not end in CR LF shows as one that ends in "<torn>".
inline std::vector<std::string> LinhasDoLog(const CString &caminho) {
  std::vector<std::string> linhas;
  std::string resto = apoio::ExisteNoDisco(caminho) ? apoio::LeArquivo(caminho) : std::string();
  std::ranges::replace(resto, '\t', '|');
  while (!resto.empty()) {
    const std::size_t fim = resto.find("\r\n");
    linhas.push_back(fim == std::string::npos ? resto + "<torn>" : resto.substr(0, fim));
    resto.erase(0, fim == std::string::npos ? fim : fim + 2);
  }
  return linhas;
}

/// An installation of its own with one company, on the machine of the sample records.
class LogTeste : public ::testing::Test {
protected:
  LogTeste() {
    m_registro.m_textos[{CString(kChaveSuite) + "Miran Empresarial", "Path"}] = m_instalacao.Caminho();
    m_registro.m_textos[{CString(kChaveSuite) + "Empresas\\0001", "DF"}] = m_dados.Caminho();
    Configura("");
  }

  /// Writes the section of "log.ini" and has it read at `ticks`, whatever an earlier test has left.
  void Configura(const std::string &chaves, std::uint32_t ticks = 1000000) {
    EscreveIni("TimeoutConfig=0");
    CarregaEm(static_cast<std::uint32_t>(CarregaConfiguracaoLog()) - 1);
    CarregaEm(ticks + 1);
    EscreveIni(chaves);
    CarregaEm(ticks);
  }
  void EscreveIni(const std::string &chaves) { apoio::EscreveArquivo(m_instalacao / "log.ini", "[Log]\r\n" + chaves); }
  /// Asks for the settings at a moment. One before the last load makes a reload due.
  void CarregaEm(std::uint32_t ticks) {
    m_relogio.m_ticks = ticks;
    CarregaConfiguracaoLog();
  }

  std::vector<std::string> Profiler() const { return LinhasDoLog(m_instalacao / kArquivoProfiler); }
  std::vector<std::string> ErrosDaEmpresa() const { return LinhasDoLog(m_dados / kArquivoErros); }
  std::vector<std::string> ErrosDaInstalacao() const { return LinhasDoLog(m_instalacao / kArquivoErros); }

  apoio::PastaTemporaria m_instalacao;
  apoio::PastaTemporaria m_dados;
  apoio::RegistroFalso m_registro;
  apoio::RelogioFalso m_relogio;
  apoio::InformacoesFalsas m_informacoes;
  apoio::ArquivosComFalha m_falhas{plataforma::ArquivosDoSistema()};
  apoio::ServicosTrocados m_servicos{&m_falhas, &m_registro, &m_relogio, &m_informacoes};
  CQZProfilerEmpresa m_profiler{"0001", 7, 42};
};

#endif
