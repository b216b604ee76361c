#include "core/log/EscritorLog.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "core/env/QZPath.h"
#include "core/platform/Plataforma.h"
#include "core/platform/PosseNoLivro.h"

// Nothing called from here reaches the error-check trace, which this layer brings in: a failure while a record is
// written can never ask for another record.

namespace {

using plataforma::CausaArquivo;
using plataforma::FalhaArquivo;
using plataforma::IArquivoAberto;

constexpr int kTentativas = 19;

constexpr char kCabecalhoProfiler[] =
    "Data\tHora\tProcesso\tUsuarioLocal\tClasseFuncao\tGuid\tEmpresa\tUsuario\tSessao\tThreadID\tTipo\t"
    "MemoriaDisponivel\tMemoriaTotal\tMemoriaComponente\tDuracao\tDeltaMemoria\t"
    "Parameter1\tParameter2\tParameter3\tParameter4\tParameter5\tParameter6\tParameter7\tParameter8\tParameter9\r\n";
constexpr char kCabecalhoErros[] =
    "Data\tHora\tProcesso\tUsuarioLocal\tClasseFuncao\tGuid\tEmpresa\tUsuario\tSessao\tThreadID\tTipo\t"
    "MemoriaDisponivel\tMemoriaTotal\tMemoriaComponente\tVersaoMiran\tVersaoSO\tArquivo\tLinha\tLog\t"
    "Parameter1\tParameter2\tParameter3\tParameter4\tParameter5\tParameter6\tParameter7\tParameter8\tParameter9\r\n";

CString CaminhoDoLog(ETipoRegistro eTipo, const IQZDF_Profiler *pProfiler) {
  if (eTipo != ETipoRegistro::Erro) {
    return CQZPath::CaminhoArquivo(kModuloInstalacao, "", kArquivoProfiler);
  }
  const CString sEmpresa = pProfiler != nullptr ? pProfiler->GetEmpresa() : CString();
  const CString sDiretorio = sEmpresa.empty() ? CString() : CQZPath::DiretorioEmpresa(QZ_DF, sEmpresa);
  return CQZPath::Junta(sDiretorio.empty() ? CQZPath::DiretorioInstalacao(QZ_DF) : sDiretorio, kArquivoErros);
}

/// Failures after which another attempt cannot do better.
bool Definitiva(const FalhaArquivo &falha) {
  return falha.causa == CausaArquivo::NaoEncontrado || falha.causa == CausaArquivo::CaminhoInvalido ||
         falha.causa == CausaArquivo::ArquivoInvalido || falha.causa == CausaArquivo::ErroFisico;
}

/// Null when the file could not be had.
std::unique_ptr<IArquivoAberto> Abre(const CString &sCaminho) {
  using namespace plataforma;
  const ModoAbertura modo{Acesso::Escrita, Compartilhamento::NegaEscrita, Criacao::AbreOuCria};
  std::unique_ptr<IArquivoAberto> arquivo;
  for (int i = 0; i < kTentativas; ++i) {
    const FalhaArquivo falha = Arquivos().Abre(sCaminho, modo, &arquivo);
    if (!falha || Definitiva(falha)) {
      break;
    }
  }
  return arquivo;
}

/// Appends at the end, with the header before it when `lpCabecalho` is given and the file is empty. False when nothing
/// was added.
bool Acrescenta(std::unique_ptr<IArquivoAberto> aberto, const char *lpCabecalho, const CString &sLinha) {
  const plataforma::CQZPosseNoLivro arquivo(std::move(aberto));
  std::uint64_t fim = 0;
  if (arquivo->Tamanho(&fim)) {
    return false;
  }
  // Of two writers that both found no file, the second one finds it with content.
  const CString sTexto = lpCabecalho != nullptr && fim == 0 ? lpCabecalho + sLinha : sLinha;
  if (!arquivo->Grava(fim, sTexto.data(), sTexto.size())) {
    return true;
  }
  static_cast<void>(arquivo->AjustaTamanho(fim));
  return false;
}

void Grava(const CString &sComuns, CString sResto, ETipoRegistro eTipo, const IQZDF_Profiler *pProfiler) {
  std::erase_if(sResto, [](char letra) { return letra == '\r' || letra == '\n'; });
  const char *const lpCabecalho = eTipo == ETipoRegistro::Erro ? kCabecalhoErros : kCabecalhoProfiler;
  const CString sCaminho = CaminhoDoLog(eTipo, pProfiler);
  plataforma::IArquivos &arquivos = plataforma::Arquivos();
  bool bExistia = false;
  const bool bSabido = !arquivos.Existe(sCaminho, &bExistia);
  std::unique_ptr<IArquivoAberto> aberto = Abre(sCaminho);
  if (!aberto || Acrescenta(std::move(aberto), bExistia ? nullptr : lpCabecalho, sComuns + sResto + "\r\n")) {
    return;
  }
  // Only who creates the file writes its header: left behind empty it would never get one.
  std::uint64_t tamanho = 0;
  if (bSabido && !bExistia && !arquivos.TamanhoDe(sCaminho, &tamanho) && tamanho == 0) {
    static_cast<void>(arquivos.Apaga(sCaminho));
  }
}

}  // namespace

void GravaLinhaLog(const CString &sComuns, const CString &sResto, ETipoRegistro eTipo,
                   const IQZDF_Profiler *pProfiler) noexcept {
  try {
    Grava(sComuns, sResto, eTipo, pProfiler);
  } catch (...) {
    // The record is lost; the operation that it tells of goes on.
  }
}
