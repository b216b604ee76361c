// The log switches, from a "log.ini" of any bytes.
//
// Property: loading never fails; a switch is on exactly when the system reads its value as 1; the fragments of
// "Processos" are taken apart as a plain tokeniser does; the file is read again when the time-out that it gives is
// over, and not before.

#include "core/log/ConfiguracaoLog.h"

#include <algorithm>
#include <limits>
#include <sstream>
#include <string_view>
#include <utility>

#include "core/env/QZPath.h"
#include "core/platform/Plataforma.h"
#include "fuzz/Entrada.h"
#include "fuzz/Exige.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ServicosFalsos.h"
#include "tests/apoio/ServicosTrocados.h"

namespace {

using fuzz::Exige;

constexpr std::uint32_t kPrimeiroTick = 1000000000;

/// A moment at which a load is due, whatever was loaded before: one that lies before the last load.
std::uint32_t MomentoDeCarga() {
  static std::uint32_t ticks = kPrimeiroTick;
  return --ticks;
}

/// A line for "Processos" with pieces of the process's name, which any bytes hardly ever hold.
CString LinhaProcessos(fuzz::CEntrada *pEntrada, const CString &sProcesso) {
  constexpr std::string_view kSeparadores = ";, \t";
  CString sLinha = "Processos=";
  for (std::size_t pedacos = pEntrada->Ate(4); pedacos > 0; --pedacos) {
    const std::size_t uiInicio = pEntrada->Ate(sProcesso.size());
    sLinha += sProcesso.substr(uiInicio, pEntrada->Ate(4)) + pEntrada->Bytes(pEntrada->Ate(2));
    sLinha += kSeparadores[pEntrada->Ate(kSeparadores.size() - 1)];
  }
  return sLinha + "\r\n";
}

bool Rastreado(const CString &sProcesso, CString sProcessos) {
  bool bAchado = sProcessos.find("todos") != CString::npos;
  std::replace(sProcessos.begin(), sProcessos.end(), ';', ' ');
  std::replace(sProcessos.begin(), sProcessos.end(), ',', ' ');
  std::istringstream trechos(sProcessos);
  for (std::string sTrecho; std::getline(trechos, sTrecho, ' ');) {
    bAchado = bAchado || (!sTrecho.empty() && sProcesso.find(sTrecho) != CString::npos);
  }
  return bAchado;
}

void ConfereChaves(const CString &sIni) {
  const std::pair<const char *, bool> chaves[] = {{"Entrada", LogEntrada()},
                                                  {"Saida", LogSaida()},
                                                  {"Trace", LogTrace()},
                                                  {"Performance", LogPerformance()},
                                                  {"Memory", LogMemory()}};
  for (const auto &[lpNome, bLigada] : chaves) {
    Exige(bLigada == (plataforma::ArquivosIni().LeInteiro(sIni, "Log", lpNome, 0) == 1), "a switch is on for 1 alone");
  }
  Exige(RastreamentoLigado() == ((LogPerformance() || LogMemory()) && (LogEntrada() || LogSaida())),
        "something to measure and something to write");
}

}  // namespace

void fuzz::Executa(CEntrada *pEntrada) {
  static const apoio::PastaTemporaria pasta;
  apoio::RegistroFalso registro;
  registro.m_textos[{CString(kChaveSuite) + "Miran Empresarial", "Path"}] = pasta.Caminho();
  apoio::RelogioFalso relogio;
  apoio::InformacoesFalsas sistema;
  const apoio::ServicosTrocados servicos(nullptr, &registro, &relogio, &sistema);
  const CString sIni = pasta / "log.ini";

  const std::size_t uiForma = pEntrada->Ate(7);
  const CString sProcesso = pEntrada->Bytes(pEntrada->Ate(12));
  CString sConteudo = uiForma != 0 ? "[Log]\r\n" : "";
  if (uiForma > 3) {
    sConteudo += LinhaProcessos(pEntrada, sProcesso);
  }
  apoio::EscreveArquivo(sIni, sConteudo + pEntrada->Resto());

  relogio.m_ticks = MomentoDeCarga();
  Exige(CarregaConfiguracaoLog() == relogio.m_ticks, "loaded");
  ConfereChaves(sIni);
  const CString sProcessos = plataforma::ArquivosIni().LeTexto(sIni, "Log", "Processos", "todos", 259);
  Exige(ProcessoRastreado(sProcesso) == Rastreado(sProcesso, sProcessos), "the processes to be traced");

  const std::uint64_t uiVale =
      std::uint64_t{1000} * plataforma::ArquivosIni().LeInteiro(sIni, "Log", "TimeoutConfig", 600);
  const std::uint64_t uiCarga = relogio.m_ticks;
  const std::uint64_t uiUltimo = std::numeric_limits<std::uint32_t>::max();
  relogio.m_ticks = static_cast<std::uint32_t>(std::min(uiCarga + uiVale, uiUltimo));
  Exige(CarregaConfiguracaoLog() == uiCarga, "not due yet");
  if (uiCarga + uiVale < uiUltimo) {
    relogio.m_ticks += 1;
    Exige(CarregaConfiguracaoLog() == relogio.m_ticks, "due");
  }
}
