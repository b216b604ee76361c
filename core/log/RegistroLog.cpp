#include "core/log/RegistroLog.h"

#include <cstdio>

#include "core/env/QZRelogio.h"
#include "core/log/ConfiguracaoLog.h"
#include "core/platform/CException.h"
#include "core/platform/Plataforma.h"

namespace {

template <class... Argumentos>
CString Formata(const char *lpFormato, Argumentos... argumentos) {
  char texto[64] = "";
  std::snprintf(texto, sizeof(texto), lpFormato, argumentos...);
  return texto;
}

CString Coluna(const CString &sTexto) {
  return sTexto.empty() ? CString() : sTexto + "\t";
}

/// The system's time; the machine's own where a configured shift leads out of the calendar, so that the record is not
/// lost.
plataforma::CamposData Agora() {
  try {
    return QZRelogio::GetCurrentTime_LocalTime();
  } catch (CException *pExcecao) {
    pExcecao->Delete();
  } catch (...) {
    // As above.
  }
  return plataforma::Relogio().HoraLocal();
}

CString DataHora() {
  const plataforma::CamposData c = Agora();
  return Formata("%02d/%02d/%04d\t", c.dia, c.mes, c.ano) +
         Formata("%02d:%02d:%02d.%03d\t", c.hora, c.minuto, c.segundo, c.milissegundo);
}

CString Identidade(const IQZDF_Profiler *pProfiler) {
  if (pProfiler == nullptr) {
    return "\t\t\t\t";
  }
  return CString("E").append(pProfiler->GetEmpresa()) + "\t" + Formata("U%03d\t", pProfiler->GetUsuario()) +
         Formata("S%08d\t", static_cast<std::int32_t>(pProfiler->GetSessao())) +
         Formata("T%08d\t", static_cast<std::int32_t>(plataforma::Informacoes().IdThread()));
}

CString MemoriaDaMaquina() {
  std::uint64_t disponivel = 0;
  std::uint64_t total = 0;
  if (!plataforma::Informacoes().MemoriaMaquina(&disponivel, &total)) {
    disponivel = total = 0;
  }
  return ColunaNumero(disponivel) + ColunaNumero(total);
}

const char *NomeTipo(ETipoRegistro eTipo) {
  switch (eTipo) {
    case ETipoRegistro::Entrou:
      return "ENTROU\t";
    case ETipoRegistro::Saiu:
      return "SAIU\t";
    default:
      return "ERRO\t";
  }
}

/// The low double word is printed whole and signed, as readers of the file know it.
CString VersaoPrograma() {
  plataforma::VersaoArquivo versao;
  if (!plataforma::Informacoes().VersaoPrograma(&versao)) {
    versao = {};
  }
  const std::uint32_t alta = versao.maisSignificativa;
  return Formata("%u.%u.%d\t", alta >> 16, alta & 0xFFFF, static_cast<std::int32_t>(versao.menosSignificativa));
}

CString VersaoSO() {
  const plataforma::VersaoSistema versao = plataforma::Informacoes().VersaoSO();
  return Formata("%u.%u.%u\t", versao.maior, versao.menor, versao.compilacao);
}

}  // namespace

CString ColunasComuns(const IQZDF_Profiler *pProfiler, const OrigemRegistro &origem, ETipoRegistro eTipo) {
  return DataHora() + Coluna(origem.sProcesso) + Coluna(origem.sUsuarioLocal) + Coluna(origem.sFuncao) +
         Coluna(origem.sGuid) + Identidade(pProfiler) + NomeTipo(eTipo) + MemoriaDaMaquina();
}

std::uint64_t MemoriaDoProcesso() {
  std::uint64_t bytes = 0;
  return plataforma::Informacoes().MemoriaProcesso(&bytes) ? bytes : 0;
}

CString ColunaNumero(std::uint64_t valor) {
  return std::to_string(static_cast<std::int64_t>(valor)) + "\t";
}

void GravaRegistroErro(const IQZDF_Profiler *pProfiler, const CString &sFuncao, const char *lpArquivo, int iLinha,
                       const CString &sLog) noexcept {
  try {
    CarregaConfiguracaoLog();
    plataforma::IInformacoes &informacoes = plataforma::Informacoes();
    const OrigemRegistro origem{sFuncao, informacoes.NovoGuid(), informacoes.NomeProcesso(),
                                informacoes.UsuarioLocal()};
    const CString sResto = ColunaNumero(MemoriaDoProcesso()) + VersaoPrograma() + VersaoSO() + lpArquivo + "\t" +
                           std::to_string(iLinha) + "\t" + sLog + "\t";
    GravaLinhaLog(ColunasComuns(pProfiler, origem, ETipoRegistro::Erro), sResto, ETipoRegistro::Erro, pProfiler);
  } catch (...) {
    // The record is lost; the failure that it tells of is returned to the caller all the same.
  }
}
