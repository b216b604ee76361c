#include "core/log/EscopoProfiler.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "core/log/RegistroLog.h"
#include "core/platform/Plataforma.h"

struct CQZEscopoProfiler::Aberto {
  OrigemRegistro origem;
  std::optional<CQZProfilerEmpresa> profiler;
  std::uint64_t uiMemoria = 0;  ///< private bytes at entry, 0 when not measured
  std::uint64_t uiTicks = 0;    ///< tick count at entry, 0 when not measured

  const IQZDF_Profiler *Profiler() const { return profiler ? &*profiler : nullptr; }

  void Grava(ETipoRegistro eTipo, const CString &sResto) const {
    GravaLinhaLog(ColunasComuns(Profiler(), origem, eTipo), sResto, eTipo, Profiler());
  }
};

namespace {

constexpr std::size_t kMaximoParametros = 9;

std::uint64_t Crescimento(std::uint64_t antes, std::uint64_t agora) {
  return agora > antes ? agora - antes : 0;
}

}  // namespace

void CQZEscopoProfiler::Descarta::operator()(Aberto *pAberto) const {
  delete pAberto;
}

void CQZEscopoProfiler::Inicia(const IQZDF_Profiler *pProfiler, const NomeFuncao &funcao,
                               const std::function<ParametrosEscopo()> &formata) noexcept {
  try {
    plataforma::IInformacoes &informacoes = plataforma::Informacoes();
    const std::uint64_t uiTicks = plataforma::Relogio().Ticks();
    CString sProcesso = informacoes.NomeProcesso();
    if (!ProcessoRastreado(sProcesso)) {
      return;
    }
    std::unique_ptr<Aberto, Descarta> aberto(new Aberto);
    const bool bPar = LogEntrada() && LogSaida();
    aberto->origem = {funcao.Texto(), bPar ? informacoes.NovoGuid() : CString(), std::move(sProcesso),
                      informacoes.UsuarioLocal()};
    if (pProfiler != nullptr) {
      aberto->profiler.emplace(pProfiler->GetEmpresa(), pProfiler->GetUsuario(), pProfiler->GetSessao());
    }
    aberto->uiTicks = LogPerformance() ? uiTicks : 0;
    aberto->uiMemoria = LogMemory() ? MemoriaDoProcesso() : 0;
    m_aberto = std::move(aberto);
    if (!LogEntrada()) {
      return;
    }
    CString sResto = ColunaNumero(m_aberto->uiMemoria) + ColunaNumero(0) + ColunaNumero(0);
    ParametrosEscopo parametros = formata();
    parametros.resize(std::min(parametros.size(), kMaximoParametros));
    for (const auto &[nome, valor] : parametros) {
      sResto.append(nome).append(" = ").append(valor).append("\t");
    }
    m_aberto->Grava(ETipoRegistro::Entrou, sResto);
  } catch (...) {
    // The record is lost; the operation goes on.
  }
}

void CQZEscopoProfiler::Fim() noexcept {
  try {
    const std::unique_ptr<Aberto, Descarta> aberto = std::move(m_aberto);
    const CString &sProcesso = aberto->origem.sProcesso;
    if (!RastreamentoLigado() || !LogSaida() || sProcesso.empty() || !ProcessoRastreado(sProcesso)) {
      return;
    }
    const std::uint64_t uiDuracao = LogPerformance() ? Crescimento(aberto->uiTicks, plataforma::Relogio().Ticks()) : 0;
    const std::uint64_t uiMemoria = LogMemory() ? MemoriaDoProcesso() : 0;
    aberto->Grava(ETipoRegistro::Saiu, ColunaNumero(uiMemoria) + ColunaNumero(uiDuracao) +
                                           ColunaNumero(Crescimento(aberto->uiMemoria, uiMemoria)));
  } catch (...) {
    // The record is lost; the operation's result stands.
  }
}
