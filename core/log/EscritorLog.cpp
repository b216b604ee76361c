#include "core/log/EscritorLog.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "core/env/QZPath.h"
#include "core/platform/ArquivoNoLivro.h"
#include "core/platform/Plataforma.h"

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

CString CaminhoDoLog(TipoRegistro eTipo, const IQZDF_Profiler *pProfiler) {
  if (eTipo != TipoRegistro::Erro) {
    return CQZPath::CaminhoArquivo(kModuloInstalacao, "", kArquivoProfiler);
  }
  const CString sEmpresa = pProfiler != nullptr ? pProfiler->GetEmpresa() : CString();
  const CString diretorio = sEmpresa.empty() ? CString() : CQZPath::DiretorioEmpresa(QZ_DF, sEmpresa);
  return CQZPath::Junta(diretorio.empty() ? CQZPath::DiretorioInstalacao(QZ_DF) : diretorio, kArquivoErros);
}

/// Failures after which another attempt cannot do better.
bool Definitiva(const FalhaArquivo &falha) {
  return falha.causa == CausaArquivo::NaoEncontrado || falha.causa == CausaArquivo::CaminhoInvalido ||
         falha.causa == CausaArquivo::ArquivoInvalido || falha.causa == CausaArquivo::ErroFisico;
}

/// Null when the file could not be had.
std::unique_ptr<IArquivoAberto> Abre(const CString &caminho) {
  using namespace plataforma;
  const ModoAbertura modo{Acesso::Escrita, Compartilhamento::NegaEscrita, Criacao::AbreOuCria};
  std::unique_ptr<IArquivoAberto> arquivo;
  for (int i = 0; i < kTentativas; ++i) {
    const FalhaArquivo falha = Arquivos().Abre(caminho, modo, &arquivo);
    if (!falha || Definitiva(falha)) {
      break;
    }
  }
  return arquivo;
}

/// Appends at the end, with the header before it when `cabecalho` is given and the file is empty. False when nothing
/// was added.
bool Acrescenta(std::unique_ptr<IArquivoAberto> aberto, const char *cabecalho, const CString &linha) {
  const plataforma::CQZArquivoNoLivro arquivo(std::move(aberto));
  std::uint64_t fim = 0;
  if (arquivo->Tamanho(&fim)) {
    return false;
  }
  // Of two writers that both found no file, the second one finds it with content.
  const CString texto = cabecalho != nullptr && fim == 0 ? cabecalho + linha : linha;
  if (!arquivo->Grava(fim, texto.data(), texto.size())) {
    return true;
  }
  static_cast<void>(arquivo->AjustaTamanho(fim));
  return false;
}

void Grava(const CString &comuns, CString resto, TipoRegistro eTipo, const IQZDF_Profiler *pProfiler) {
  std::erase_if(resto, [](char letra) { return letra == '\r' || letra == '\n'; });
  const char *const cabecalho = eTipo == TipoRegistro::Erro ? kCabecalhoErros : kCabecalhoProfiler;
  const CString caminho = CaminhoDoLog(eTipo, pProfiler);
  plataforma::IArquivos &arquivos = plataforma::Arquivos();
  bool bExistia = false;
  const bool bSabido = !arquivos.Existe(caminho, &bExistia);
  std::unique_ptr<IArquivoAberto> aberto = Abre(caminho);
  if (!aberto || Acrescenta(std::move(aberto), bExistia ? nullptr : cabecalho, comuns + resto + "\r\n")) {
    return;
  }
  // Only who creates the file writes its header: left behind empty it would never get one.
  std::uint64_t tamanho = 0;
  if (bSabido && !bExistia && !arquivos.TamanhoDe(caminho, &tamanho) && tamanho == 0) {
    static_cast<void>(arquivos.Apaga(caminho));
  }
}

}  // namespace

void GravaLinhaLog(const CString &comuns, const CString &resto, TipoRegistro eTipo,
                   const IQZDF_Profiler *pProfiler) noexcept {
  try {
    Grava(comuns, resto, eTipo, pProfiler);
  } catch (...) {
    // The record is lost; the operation that it tells of goes on.
  }
}
