// The log switches, from a "log.ini" of any bytes.
//
// Property: loading never fails; a switch is on exactly when the system reads its value as 1; the fragments of
// "Processos" are taken apart as a plain tokeniser does; the file is read again when the time-out that it gives is
// over, and not before.

#include "core/log/ConfiguracaoLog.h"

#include <algorithm>
#include <limits>
#include <sstream>
#include <utility>

#include "core/env/QZPath.h"
#include "core/platform/Plataforma.h"
#include "fuzz/Entrada.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ServicosFalsos.h"

namespace {

using fuzz::Exige;

constexpr std::uint32_t kPrimeiroTick = 1000000000;

/// A moment at which a load is due, whatever was loaded before: one that lies before the last load.
std::uint32_t MomentoDeCarga() {
  static std::uint32_t ticks = kPrimeiroTick;
  return --ticks;
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

  const bool bComSecao = pEntrada->Ate(7) != 0;
  const CString sProcesso = pEntrada->Bytes(pEntrada->Ate(12));
  apoio::EscreveArquivo(sIni, (bComSecao ? "[Log]\r\n" : "") + pEntrada->Resto());

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
