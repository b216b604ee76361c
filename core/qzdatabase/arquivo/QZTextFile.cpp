#include "core/qzdatabase/arquivo/QZTextFile.h"

#include <algorithm>

#include "core/platform/Travas.h"
#include "core/qzdatabase/disco/QZLeitorSequencial.h"

using plataforma::CQZTrava;
using plataforma::FalhaArquivo;

namespace {

constexpr char kFonteTextFile[] = "QZTextFile.cpp";

constexpr std::size_t kCrescimentoLinhas = 1000;

/// The length that stands before each line on disk.
using TamanhoLinha = std::uint32_t;

void AcrescentaLinha(CString *psBytes, const CString &sTexto) {
  const auto uiTamanho = static_cast<TamanhoLinha>(sTexto.size());
  psBytes->append(reinterpret_cast<const char *>(&uiTamanho), sizeof(uiTamanho));
  psBytes->append(sTexto);
}

/// The parameters of an entry record.
auto Parametros(std::uint64_t uiPosicao, const CStringArray &aRegistros) {
  return [uiPosicao, qtd = aRegistros.GetSize()] {
    return ParametrosEscopo{{"uiPosicao", std::to_string(uiPosicao)}, {"aRegistros.GetCount()", std::to_string(qtd)}};
  };
}

}  // namespace

CQZTextFile::CQZTextFile(const CString &sNomeArquivo, IDonoDeArquivos *pDataBase)
    : CQZFileBase(sNomeArquivo, pDataBase) {
  const CQZEscopoProfiler escopo(this, {"CQZTextFile::CQZTextFile"}, [&] {
    return ParametrosEscopo{{"sNomeArquivo", sNomeArquivo}};
  });
}

HRESULT CQZTextFile::OnInicializa() {
  const CQZOperacao rastro(this, {"CQZTextFile::OnInicializa"}, kFonteTextFile);
  QZ_VERIFICA(rastro, "__super::OnInicializa()", CQZFileBase::OnInicializa());
  QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AbreArquivo(eModoLeitura));
  return CarregaAoInicializar();
}

/// Takes what can be read of a damaged file: a line whose length reaches past the end of the file is cut there, and
/// fewer bytes than a length at the end are no line.
HRESULT CQZTextFile::CarregaMemoria() {
  const CQZRastro rastro(this, {"CQZTextFile::OnInicializa"}, kFonteTextFile);
  std::uint64_t uiTamanho = 0;
  FalhaArquivo falha = Arquivo().Tamanho(&uiTamanho);
  CQZLeitorSequencial leitor(Arquivo(), TamanhoCabecalho(), uiTamanho);
  CArray<CQZDataBaseTextPair> aRegistros;
  aRegistros.SetSize(0, kCrescimentoLinhas);
  CQZDataBaseTextPair linha;
  bool bFimDanificado = false;
  while (!falha && leitor.Restam() >= sizeof(TamanhoLinha)) {
    TamanhoLinha uiDeclarado = 0;
    falha = leitor.Le(&uiDeclarado, sizeof(uiDeclarado));
    if (!falha) {
      // A damaged length must not become a request for memory.
      linha.uiTamanhoNoArquivo = std::min<std::uint64_t>(uiDeclarado, leitor.Restam());
      bFimDanificado = linha.uiTamanhoNoArquivo != uiDeclarado;
      linha.sTexto.resize(static_cast<std::size_t>(linha.uiTamanhoNoArquivo));
      falha = leitor.Le(linha.sTexto.data(), linha.sTexto.size());
      // Programs of the suite see a line up to its first zero byte; its place on disk is that of all its bytes.
      linha.sTexto.resize(std::min(linha.sTexto.find('\0'), linha.sTexto.size()));
      aRegistros.Add(linha);
      linha.uiOffset += sizeof(uiDeclarado) + linha.uiTamanhoNoArquivo;
    }
  }
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falha));
  m_aRegistros = std::move(aRegistros);
  m_bFimDanificado = bFimDanificado || leitor.Restam() != 0;
  return codigos::kOk;
}

void CQZTextFile::EsvaziaMemoria() {
  m_aRegistros.SetSize(0, kCrescimentoLinhas);
  m_bFimDanificado = false;
}

HRESULT CQZTextFile::OnFinaliza() {
  const CQZEscopoProfiler escopo(this, {"CQZTextFile::OnFinaliza"});
  const CQZTrava trava(Secao());
  const HRESULT hr = CQZFileBase::OnFinaliza();
  EsvaziaMemoria();
  return hr;
}

const CArray<CQZDataBaseTextPair> *CQZTextFile::GetPtrArrayRegistros() const {
  const CQZEscopoProfiler escopo(this, {"CQZTextFile::GetPtrArrayRegistros"});
  return &m_aRegistros;
}

HRESULT CQZTextFile::Le(std::uint64_t uiPosicao, CString &sRegistro) {
  const CQZOperacao rastro(this, {"CQZTextFile::Le"}, kFonteTextFile, [&] {
    return ParametrosEscopo{{"uiPosicao", std::to_string(uiPosicao)}};
  });
  if (uiPosicao == 0) {
    QZ_RETORNA_CODIGO(rastro, codigos::kPosicaoZero);
  }
  const CQZTrava trava(Secao());
  QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
  if (!ExisteArquivo()) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoAberto);
  }
  if (uiPosicao > m_aRegistros.GetSize()) {
    QZ_RETORNA_CODIGO(rastro, codigos::kPosicaoAlemDoFim);
  }
  sRegistro = m_aRegistros[IndiceDe(uiPosicao)].sTexto;
  return codigos::kOk;
}

HRESULT CQZTextFile::Grava(std::uint64_t &uiPosicao, const CString &sRegistro) {
  const CQZOperacao rastro(this, {"CQZTextFile::Grava"}, kFonteTextFile, [&] {
    return ParametrosEscopo{{"uiPosicao", std::to_string(uiPosicao)}};
  });
  if (sRegistro.empty()) {
    uiPosicao = 0;
    return codigos::kOk;
  }
  CStringArray aRegistros;
  aRegistros.Add(sRegistro);
  QZ_VERIFICA(rastro, "GravaColecao(uiPosicao, aRegistros)", GravaColecao(uiPosicao, aRegistros));
  return codigos::kOk;
}

HRESULT CQZTextFile::GravaSeNova(std::uint64_t &uiPosicao, const CString &sRegistro) {
  const CQZOperacao rastro(this, {"CQZTextFile::Grava"}, kFonteTextFile);
  CStringArray aRegistros;
  aRegistros.Add(sRegistro);
  uiPosicao = 0;
  QZ_VERIFICA(rastro, "GravaColecao(uiPosicao, aRegistros)", GravaLinhas(uiPosicao, aRegistros, true));
  return codigos::kOk;
}

std::uint64_t CQZTextFile::Procura(const CString &sRegistro) const {
  for (std::size_t idx = 0; idx < m_aRegistros.GetSize(); ++idx) {
    if (m_aRegistros[idx].sTexto == sRegistro) {
      return idx + 1;
    }
  }
  return 0;
}

HRESULT CQZTextFile::GravaColecao(std::uint64_t &uiPosicao, const CStringArray &aRegistros) {
  return GravaLinhas(uiPosicao, aRegistros, false);
}

/// With `bSeNova` a single line, for the end, that is not written when it is there.
HRESULT CQZTextFile::GravaLinhas(std::uint64_t &uiPosicao, const CStringArray &aRegistros, bool bSeNova) {
  const CQZOperacao rastro(this, {"CQZTextFile::GravaColecao"}, kFonteTextFile, Parametros(uiPosicao, aRegistros));
  if (aRegistros.IsEmpty()) {
    return codigos::kOk;
  }
  const CQZTrava trava(Secao());
  QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
  if (uiPosicao > m_aRegistros.GetSize()) {
    QZ_RETORNA_CODIGO(rastro, codigos::kGravacaoAlemDoFim);
  }
  if (!PrecisaGravar(uiPosicao, aRegistros)) {
    // What an earlier failure left on disk gets its chance of repair even when there is nothing new to write. There may
    // be, where that finds the file changed by others.
    QZ_VERIFICA(rastro, "RestauraPendencia()", RestauraPendencia());
    if (!PrecisaGravar(uiPosicao, aRegistros)) {
      return codigos::kOk;
    }
  }
  // Callers find 0 there when lines that were to go to the end could not be written.
  const std::uint64_t uiPedida = uiPosicao;
  uiPosicao = DeveGravarNoFinal(uiPedida, aRegistros) ? 0 : uiPedida;
  bool bShrink = false;
  std::uint64_t uiIgual = 0;
  // The way of writing is chosen once for all attempts, lest a retry decide by what its own failed attempt left.
  const auto fixaLugar = [&]() -> HRESULT {
    QZ_VERIFICA(rastro, "AbreArquivo()", AbreArquivo());
    uiPosicao = uiPedida;
    if (uiPosicao > m_aRegistros.GetSize()) {
      // Opening for writing found the file changed by others and loaded fewer lines.
      QZ_RETORNA_CODIGO(rastro, codigos::kGravacaoAlemDoFim);
    }
    uiPosicao = DeveGravarNoFinal(uiPosicao, aRegistros) ? 0 : uiPosicao;
    bShrink = DeveExecutarShrink(uiPosicao, aRegistros) || (uiPosicao == 0 && m_bFimDanificado);
    uiIgual = bSeNova ? Procura(aRegistros[0]) : 0;
    return codigos::kOk;
  };
  const auto grava = [&]() -> HRESULT {
    if (uiIgual == 0) {
      QZ_VERIFICA(rastro, "GravaRegistros(uiPosicao, aRegistros)", GravaRegistros(uiPosicao, aRegistros, bShrink));
    }
    return codigos::kOk;
  };
  const HRESULT hr = TentaGravar(fixaLugar, grava);
  uiPosicao = uiIgual != 0 ? uiIgual : uiPosicao;
  return hr;
}

/// An append always needs writing, and so does a range that runs past the last line.
bool CQZTextFile::PrecisaGravar(std::uint64_t uiPosicao, const CStringArray &aRegistros) const {
  const CQZEscopoProfiler escopo(this, {"CQZTextFile::PrecisaGravar"}, Parametros(uiPosicao, aRegistros));
  if (!FaixaExistente(uiPosicao, aRegistros)) {
    return true;
  }
  for (std::size_t i = 0; i < aRegistros.GetSize(); ++i) {
    if (aRegistros[i] != m_aRegistros[IndiceDe(uiPosicao) + i].sTexto) {
      return true;
    }
  }
  return false;
}

bool CQZTextFile::DeveGravarNoFinal(std::uint64_t uiPosicao, const CStringArray &aRegistros) const {
  const CQZEscopoProfiler escopo(this, {"CQZTextFile::DeveGravarNoFinal"}, Parametros(uiPosicao, aRegistros));
  if (!FaixaExistente(uiPosicao, aRegistros)) {
    return false;
  }
  for (std::size_t i = 0; i < aRegistros.GetSize(); ++i) {
    if (aRegistros[i].size() > m_aRegistros[IndiceDe(uiPosicao) + i].sTexto.size()) {
      return true;
    }
  }
  return false;
}

/// A line of which the disk holds more than its text counts as longer than whatever replaces it: writing the text's
/// length over it would leave the rest standing between the lines.
bool CQZTextFile::DeveExecutarShrink(std::uint64_t uiPosicao, const CStringArray &aRegistros) const {
  const CQZEscopoProfiler escopo(this, {"CQZTextFile::DeveExecutarShrink"}, Parametros(uiPosicao, aRegistros));
  const std::size_t inicio = IndiceDe(uiPosicao);
  const std::size_t fim = std::min(m_aRegistros.GetSize(), inicio + aRegistros.GetSize());
  for (std::size_t idx = inicio; idx < fim; ++idx) {
    const CQZDataBaseTextPair &linha = m_aRegistros[idx];
    if (aRegistros[idx - inicio].size() < linha.sTexto.size() || linha.uiTamanhoNoArquivo != linha.sTexto.size()) {
      return true;
    }
  }
  return false;
}

/// True when every line of the write replaces one that exists.
bool CQZTextFile::FaixaExistente(std::uint64_t uiPosicao, const CStringArray &aRegistros) const {
  const std::uint64_t uiLinhas = m_aRegistros.GetSize();
  return uiPosicao != 0 && uiPosicao <= uiLinhas && aRegistros.GetSize() <= uiLinhas - uiPosicao + 1;
}

/// Index of the first line of a write: position 0 is behind the last line.
std::size_t CQZTextFile::IndiceDe(std::uint64_t uiPosicao) const {
  return uiPosicao != 0 ? static_cast<std::size_t>(uiPosicao - 1) : m_aRegistros.GetSize();
}

/// Place in the file of a write over an existing line.
std::uint64_t CQZTextFile::OndeGravar(std::size_t indice) const {
  std::uint64_t uiOffset = m_aRegistros[indice].uiOffset;
  if (m_aRegistros[indice].bOffsetIncerto) {
    uiOffset = 0;
    for (std::size_t idx = 0; idx < indice; ++idx) {
      uiOffset += sizeof(TamanhoLinha) + m_aRegistros[idx].uiTamanhoNoArquivo;
    }
  }
  return TamanhoCabecalho() + uiOffset;
}

/// One attempt. All memory is obtained before the disk is touched: once the lines are on disk, taking them into memory
/// must not fail.
HRESULT CQZTextFile::GravaRegistros(std::uint64_t &uiPosicao, const CStringArray &aRegistros, bool bShrink) {
  const CQZOperacao rastro(this, {"CQZTextFile::GravaRegistros"}, kFonteTextFile, Parametros(uiPosicao, aRegistros));
  const std::size_t indice = IndiceDe(uiPosicao);
  const bool bNoFinal = uiPosicao == 0;
  if (bShrink) {
    QZ_VERIFICA(rastro, "ExecutaShrink(uiPosicao, aRegistros)", ExecutaShrink(uiPosicao, aRegistros));
  } else {
    CString sBytes;
    for (std::size_t i = 0; i < aRegistros.GetSize(); ++i) {
      AcrescentaLinha(&sBytes, aRegistros[i]);
    }
    // The copies that memory will take over, made while they may still fail.
    CStringArray aTextos = aRegistros;
    m_aRegistros.Reserva(indice + aRegistros.GetSize());
    std::uint64_t uiTamanho = 0;
    QZ_VERIFICA(rastro, "CatchGravacao(pEx)", CatchGravacao(Arquivo().Tamanho(&uiTamanho)));
    const std::uint64_t uiOnde = bNoFinal ? uiTamanho : OndeGravar(indice);
    // One write for all lines: a failure leaves all of them or none.
    const HRESULT hr = GravaBytes(rastro, uiOnde, uiTamanho, sBytes, false);
    if (Falhou(hr)) {
      return hr;
    }
    TomaLinhas(indice, std::move(aTextos));
    if (bNoFinal) {
      DefineOffsets(indice, uiOnde);
    }
    ConfirmaGravacao();
  }
  if (bNoFinal) {
    uiPosicao = m_aRegistros.GetSize();
  }
  return codigos::kOk;
}

/// Writes all lines anew, the given ones in their places. The header stays, and the file is cut to its new length only
/// after everything is written.
HRESULT CQZTextFile::ExecutaShrink(std::uint64_t uiPosicao, const CStringArray &aRegistros) {
  const CQZOperacao rastro(this, {"CQZTextFile::ExecutaShrink"}, kFonteTextFile, Parametros(uiPosicao, aRegistros));
  const std::size_t inicio = IndiceDe(uiPosicao);
  const std::size_t fim = inicio + aRegistros.GetSize();
  CString sBytes;
  for (std::size_t idx = 0; idx < std::max(fim, m_aRegistros.GetSize()); ++idx) {
    AcrescentaLinha(&sBytes, idx >= inicio && idx < fim ? aRegistros[idx - inicio] : m_aRegistros[idx].sTexto);
  }
  CStringArray aTextos = aRegistros;
  m_aRegistros.Reserva(fim);
  std::uint64_t uiTamanho = 0;
  QZ_VERIFICA(rastro, "CatchGravacao(pEx)", CatchGravacao(Arquivo().Tamanho(&uiTamanho)));
  const HRESULT hr = GravaBytes(rastro, TamanhoCabecalho(), uiTamanho, sBytes, true);
  if (Falhou(hr)) {
    return hr;
  }
  TomaLinhas(inicio, std::move(aTextos));
  DefineOffsets(0, 0);
  m_bFimDanificado = false;
  ConfirmaGravacao();
  return codigos::kOk;
}

/// Writes `sBytes` at `uiOnde` into the file, which is `uiTamanho` bytes long, and brings the header up to date; with
/// `bCorta` the file ends behind them. The caller confirms the transaction once memory holds the lines.
HRESULT CQZTextFile::GravaBytes(const CQZRastro &rastro, std::uint64_t uiOnde, std::uint64_t uiTamanho,
                                const CString &sBytes, bool bCorta) {
  Transacao().Inicia(uiOnde, uiTamanho);
  FalhaArquivo falha = NotaAntigos(uiOnde, uiTamanho, bCorta ? uiTamanho : sBytes.size());
  if (!falha) {
    falha = Transacao().Grava(Arquivo(), sBytes.data(), sBytes.size(), bCorta);
  }
  QZ_VERIFICA(rastro, "CatchGravacao(pEx)", CatchGravacao(falha));
  QZ_VERIFICA(rastro, "Flush()", Flush());
  return codigos::kOk;
}

/// Read from the disk: memory does not hold what stands behind a zero byte or behind a damaged end.
FalhaArquivo CQZTextFile::NotaAntigos(std::uint64_t uiOnde, std::uint64_t uiTamanho, std::uint64_t cb) {
  CString sAntes(static_cast<std::size_t>(std::min(cb, uiTamanho - std::min(uiOnde, uiTamanho))), '\0');
  const FalhaArquivo falha = Arquivo().Le(uiOnde, sAntes.data(), sAntes.size());
  Transacao().NotaAntigo(sAntes.data(), sAntes.size());
  return falha;
}

/// Puts the written texts into memory from `indice` on; room for all of them must be reserved. Added lines have the
/// offset of a new entry, which is not their place, and a line that changed its length moves those behind it.
void CQZTextFile::TomaLinhas(std::size_t indice, CStringArray aTextos) {
  const std::size_t linhas = m_aRegistros.GetSize();
  m_aRegistros.SetSize(std::max(linhas, indice + aTextos.GetSize()));
  bool bDeslocadas = false;
  for (std::size_t i = 0; i < aTextos.GetSize(); ++i) {
    CQZDataBaseTextPair &linha = m_aRegistros[indice + i];
    linha.bOffsetIncerto = linha.bOffsetIncerto || bDeslocadas || indice + i >= linhas;
    bDeslocadas = bDeslocadas || linha.uiTamanhoNoArquivo != aTextos[i].size();
    linha.sTexto = std::move(aTextos[i]);
    linha.uiTamanhoNoArquivo = linha.sTexto.size();
  }
}

/// The lines from `indice` on lie one behind another from `uiOffset` on, with their texts as they are in memory.
void CQZTextFile::DefineOffsets(std::size_t indice, std::uint64_t uiOffset) {
  for (std::size_t idx = indice; idx < m_aRegistros.GetSize(); ++idx) {
    CQZDataBaseTextPair &linha = m_aRegistros[idx];
    linha.uiOffset = uiOffset;
    linha.uiTamanhoNoArquivo = linha.sTexto.size();
    linha.bOffsetIncerto = false;
    uiOffset += sizeof(TamanhoLinha) + linha.uiTamanhoNoArquivo;
  }
}

HRESULT CQZTextFile::GeraArquivoOffline() {
  const CQZOperacao rastro(this, {"CQZTextFile::GeraArquivoOffline"}, kFonteTextFile);
  const CQZTrava trava(Secao());
  QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
  QZ_VERIFICA(rastro, "DeletaArquivoOffline()", DeletaArquivoOffline());
  const auto pOffline = ServicosDeArquivo().TextoNovo(GetModulo(), CQZPath::ChangeExtension(GetNomeArquivo(), "OFL"));
  QZ_VERIFICA(rastro, "qzDB.Inicializa(this)", pOffline->Inicializa(*this));
  CStringArray aRegistros;
  aRegistros.Reserva(m_aRegistros.GetSize());
  for (std::size_t idx = 0; idx < m_aRegistros.GetSize(); ++idx) {
    aRegistros.Add(m_aRegistros[idx].sTexto);
  }
  std::uint64_t uiPosicao = 0;
  QZ_VERIFICA(rastro, "qzFile.GravaColecao(uiPosicao, aRegistros)", pOffline->GravaColecao(uiPosicao, aRegistros));
  return codigos::kOk;
}
