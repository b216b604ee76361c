#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_QZFILE_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_QZFILE_H

#include <algorithm>
#include <atomic>

#include "core/platform/CArray.h"
#include "core/qzdatabase/arquivo/QZBlocosRegistros.h"
#include "core/qzdatabase/arquivo/QZFileBase.h"
#include "core/qzdatabase/disco/QZCrc64.h"

/// A file of fixed-length records of the plain structure T, stored byte for byte without separators and held in memory
/// as a whole. Reads are served from memory; a write goes to disk first and to memory after, so memory never holds a
/// record that is not on disk.
///
/// Positions are 1-based; 0 means "append" on a write and is invalid on a read. Any thread may read and write between
/// initialisation and finishing.
template <typename T>
class CQZFile : public CQZFileBase {
public:
  CQZFile(const CString &sNomeArquivo, CQZDataBase *pDataBase) : CQZFileBase(sNomeArquivo, pDataBase) {}
  ~CQZFile() override { FinalizaNoDestrutor(); }

  /// Copies the record at a position.
  [[nodiscard]] HRESULT Le(std::uint64_t uiPosicao, T *pReg);

  /// Writes one record: over the one at `uiPosicao`, or behind the last one when it is 0, which then becomes the new
  /// position. A record equal to the stored one touches nothing.
  [[nodiscard]] HRESULT Grava(std::uint64_t &uiPosicao, const T &reg);

  /// Writes consecutive records from `uiPosicao` on, which must not lie behind the last record; the range may run past
  /// it. An append hands back the position of its first record.
  [[nodiscard]] HRESULT GravaColecao(std::uint64_t &uiPosicao, const CArray<T> &aRegistros);

  /// Calls `visita(uiPosicao, reg)` for the positions from `uiPrimeira` to `uiUltima` in order until it returns false.
  /// Fails as Le would for the first position that cannot be read. The lock is held for a run of records at a time;
  /// `visita` must not call back into the file.
  template <typename F>
  [[nodiscard]] HRESULT Percorre(std::uint64_t uiPrimeira, std::uint64_t uiUltima, F &&visita);

  /// The records in memory. Not locked: for callers that share the file with no other thread.
  const CQZBlocosRegistros<T> *GetPtrArrayRegistros() const { return &m_aRegistros; }

  /// Number of records; any thread, without the lock. Changes as the last step of a write.
  std::uint64_t GetQuantidade() const { return m_uiQtd.load(std::memory_order_acquire); }

protected:
  [[nodiscard]] HRESULT OnInicializa() override;
  [[nodiscard]] HRESULT OnFinaliza() override;
  [[nodiscard]] HRESULT CarregaMemoria() override;
  void EsvaziaMemoria() override;

private:
  /// Range of record indices, [inicio, fim).
  struct Faixa {
    std::uint64_t uiInicio = 0;
    std::uint64_t uiFim = 0;
  };

  static constexpr char kFonte[] = "QZFile.h";
  static constexpr NomeFuncao Nome(const char *lpMetodo) { return {"CQZFile<", NomeTipoRegistro<T>::kNome, lpMetodo}; }

  [[nodiscard]] HRESULT GravaFaixa(std::uint64_t &uiPosicao, const T *pRegistros, std::size_t qtd);
  [[nodiscard]] HRESULT GravaRegistros(std::uint64_t uiIndice, const T *pRegistros, std::size_t qtd);
  bool PrecisaGravar(std::uint64_t uiPosicao, const T *pRegistros, std::size_t qtd) const;
  [[nodiscard]] HRESULT RestauraPendencia();
  plataforma::FalhaArquivo RestauraDados();
  std::uint64_t CrcAposGravar(std::size_t indice, const T *pRegistros, std::size_t qtd) const;
  std::uint64_t PosicaoNoArquivo(std::uint64_t uiIndice) const { return TamanhoCabecalho() + uiIndice * sizeof(T); }
  void PublicaQuantidade() { m_uiQtd.store(m_aRegistros.GetSize(), std::memory_order_release); }

  CQZBlocosRegistros<T> m_aRegistros;
  std::atomic<std::uint64_t> m_uiQtd{0};

  /// Records on disk that an unfinished write may have damaged; memory still holds the good ones.
  std::optional<Faixa> m_pendencia;
};

template <typename T>
HRESULT CQZFile<T>::OnInicializa() {
  const CQZOperacao rastro(this, Nome(">::OnInicializa"), kFonte);
  QZ_VERIFICA(rastro, "__super::OnInicializa()", CQZFileBase::OnInicializa());
  QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AbreArquivo(eModoLeitura));
  EsvaziaMemoria();
  if (ExisteArquivo()) {
    const HRESULT hr = CarregaMemoria();
    if (Falhou(hr)) {
      return hr;
    }
  }
  MemoriaCarregada();
  return codigos::kOk;
}

template <typename T>
HRESULT CQZFile<T>::CarregaMemoria() {
  const CQZRastro rastro(this, Nome(">::OnInicializa"), kFonte);
  std::uint64_t uiTamanho = 0;
  plataforma::FalhaArquivo falha = TamanhoDados(&uiTamanho);
  if (falha.causa == plataforma::CausaArquivo::FimDeArquivo || (!falha && uiTamanho % sizeof(T) != 0)) {
    QZ_RETORNA_CODIGO(rastro, codigos::kTamanhoNaoMultiplo);
  }
  m_aRegistros.DefineTamanho(static_cast<std::size_t>(uiTamanho / sizeof(T)));
  for (std::size_t i = 0; !falha && i < m_aRegistros.GetSize();) {
    const auto trecho = m_aRegistros.TrechoEm(i, m_aRegistros.GetSize());
    falha = Arquivo().Le(PosicaoNoArquivo(i), trecho.pRegistros, trecho.qtd * sizeof(T));
    i += trecho.qtd;
  }
  if (falha) {
    EsvaziaMemoria();
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falha));
  }
  PublicaQuantidade();
  return codigos::kOk;
}

template <typename T>
void CQZFile<T>::EsvaziaMemoria() {
  m_aRegistros.Esvazia();
  m_pendencia.reset();
  PublicaQuantidade();
}

template <typename T>
HRESULT CQZFile<T>::OnFinaliza() {
  const CQZEscopoProfiler escopo(this, Nome(">::OnFinaliza"));
  const plataforma::CQZTrava trava(Secao());
  if (ExisteArquivo()) {
    static_cast<void>(RestauraPendencia());
  }
  EsvaziaMemoria();
  return CQZFileBase::OnFinaliza();
}

template <typename T>
HRESULT CQZFile<T>::Le(std::uint64_t uiPosicao, T *pReg) {
  const CQZOperacao rastro(this, Nome(">::Le"), kFonte);
  if (uiPosicao == 0) {
    QZ_RETORNA_CODIGO(rastro, codigos::kPosicaoZero);
  }
  const plataforma::CQZTrava trava(Secao());
  ReabreSePerdido();
  if (!ExisteArquivo()) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoAberto);
  }
  if (uiPosicao > m_aRegistros.GetSize()) {
    QZ_RETORNA_CODIGO(rastro, codigos::kPosicaoAlemDoFim);
  }
  *pReg = m_aRegistros[static_cast<std::size_t>(uiPosicao - 1)];
  return codigos::kOk;
}

template <typename T>
template <typename F>
HRESULT CQZFile<T>::Percorre(std::uint64_t uiPrimeira, std::uint64_t uiUltima, F &&visita) {
  for (std::uint64_t uiPosicao = uiPrimeira; uiPosicao <= uiUltima;) {
    const plataforma::CQZTrava trava(Secao());
    ReabreSePerdido();
    if (uiPosicao == 0 || !ExisteArquivo() || uiPosicao > m_aRegistros.GetSize()) {
      T descartado;
      return Le(uiPosicao, &descartado);
    }
    const std::uint64_t uiFim = std::min<std::uint64_t>(uiUltima, m_aRegistros.GetSize());
    const auto trecho = m_aRegistros.TrechoEm(static_cast<std::size_t>(uiPosicao - 1), static_cast<std::size_t>(uiFim));
    for (std::size_t i = 0; i < trecho.qtd; ++i, ++uiPosicao) {
      if (!visita(uiPosicao, trecho.pRegistros[i])) {
        return codigos::kOk;
      }
    }
  }
  return codigos::kOk;
}

template <typename T>
HRESULT CQZFile<T>::Grava(std::uint64_t &uiPosicao, const T &reg) {
  const CQZOperacao rastro(this, Nome(">::Grava"), kFonte);
  QZ_VERIFICA(rastro, "GravaColecao(uiPosicao, aRegistros)", GravaFaixa(uiPosicao, &reg, 1));
  return codigos::kOk;
}

template <typename T>
HRESULT CQZFile<T>::GravaColecao(std::uint64_t &uiPosicao, const CArray<T> &aRegistros) {
  return GravaFaixa(uiPosicao, aRegistros.GetData(), aRegistros.GetSize());
}

template <typename T>
HRESULT CQZFile<T>::GravaFaixa(std::uint64_t &uiPosicao, const T *pRegistros, std::size_t qtd) {
  const CQZOperacao rastro(this, Nome(">::GravaColecao"), kFonte);
  if (qtd == 0) {
    return codigos::kOk;
  }
  const plataforma::CQZTrava trava(Secao());
  ReabreSePerdido();
  if (uiPosicao > m_aRegistros.GetSize()) {
    QZ_RETORNA_CODIGO(rastro, codigos::kGravacaoAlemDoFim);
  }
  if (!PrecisaGravar(uiPosicao, pRegistros, qtd)) {
    return codigos::kOk;
  }
  QZ_VERIFICA(rastro, "AbreArquivo()", AbreArquivo());
  if (uiPosicao > m_aRegistros.GetSize()) {
    // Opening for writing found the file changed by others and loaded fewer records.
    QZ_RETORNA_CODIGO(rastro, codigos::kGravacaoAlemDoFim);
  }

  const std::uint64_t uiIndice = uiPosicao != 0 ? uiPosicao - 1 : m_aRegistros.GetSize();
  // Room first: once the records are on disk, taking them into memory must not fail.
  m_aRegistros.Reserva(static_cast<std::size_t>(uiIndice) + qtd);
  const HRESULT hr = TentaGravar(rastro, "GravaRegistros(uiPosicao, aRegistros)",
                                 [&] { return GravaRegistros(uiIndice, pRegistros, qtd); });
  if (Falhou(hr)) {
    static_cast<void>(RestauraPendencia());
    return hr;
  }
  uiPosicao = uiIndice + 1;
  return hr;
}

/// A given position needs writing only when it changes something; an append always does. While an earlier failure
/// awaits repair every write goes through, so that the repair gets its chance.
template <typename T>
bool CQZFile<T>::PrecisaGravar(std::uint64_t uiPosicao, const T *pRegistros, std::size_t qtd) const {
  const std::uint64_t uiRegistros = m_aRegistros.GetSize();
  if (m_pendencia || uiPosicao == 0 || uiPosicao > uiRegistros || qtd > uiRegistros - uiPosicao + 1) {
    return true;
  }
  return !m_aRegistros.Iguais(static_cast<std::size_t>(uiPosicao - 1), pRegistros, qtd);
}

/// One attempt. The place is fixed before the first attempt, so that a retry never writes behind its own fragment. The
/// range counts as damaged from before the write until memory has it, so that a write that fails, or is abandoned half
/// way, is put right before the next one.
template <typename T>
HRESULT CQZFile<T>::GravaRegistros(std::uint64_t uiIndice, const T *pRegistros, std::size_t qtd) {
  const CQZRastro rastro(this, Nome(">::GravaRegistros"), kFonte);
  QZ_VERIFICA(rastro, "CatchGravacao(pEx)", RestauraPendencia());
  m_pendencia = Faixa{uiIndice, uiIndice + qtd};
  if (const auto falha = Arquivo().Grava(PosicaoNoArquivo(uiIndice), pRegistros, qtd * sizeof(T))) {
    QZ_VERIFICA(rastro, "CatchGravacao(pEx)", CatchGravacao(falha));
  }
  const auto indice = static_cast<std::size_t>(uiIndice);
  const std::optional<std::uint64_t> uiCrcAnterior = CrcDados();
  if (uiCrcAnterior) {
    NotaCrcDados(CrcAposGravar(indice, pRegistros, qtd));
  }
  HRESULT hr = codigos::kOk;
  if (QZ_FALHOU(rastro, hr, "Flush()", Flush())) {
    NotaCrcDados(uiCrcAnterior);
    return hr;
  }
  if (indice + qtd > m_aRegistros.GetSize()) {
    m_aRegistros.DefineTamanho(indice + qtd);
  }
  m_aRegistros.Copia(indice, pRegistros, qtd);
  m_pendencia.reset();
  PublicaQuantidade();
  return codigos::kOk;
}

/// CRC of the data once the records are written, from the CRC of those that memory holds. A change of length L with so
/// many bytes behind it changes the CRC by that of the difference, moved over these bytes.
template <typename T>
std::uint64_t CQZFile<T>::CrcAposGravar(std::size_t indice, const T *pRegistros, std::size_t qtd) const {
  const std::size_t registros = m_aRegistros.GetSize();
  const std::size_t fim = std::min(indice + qtd, registros);
  std::uint64_t uiCrcAntigos = 0;
  for (std::size_t i = indice; i < fim;) {
    const auto trecho = m_aRegistros.TrechoEm(i, fim);
    uiCrcAntigos = CalculaCrc64(trecho.pRegistros, trecho.qtd * sizeof(T), uiCrcAntigos);
    i += trecho.qtd;
  }
  const std::size_t substituidos = fim - indice;
  const std::uint64_t uiDiferenca = uiCrcAntigos ^ CalculaCrc64(pRegistros, substituidos * sizeof(T));
  const std::uint64_t uiCrc = *CrcDados() ^ Crc64ComZeros(uiDiferenca, (registros - fim) * sizeof(T));
  return CalculaCrc64(pRegistros + substituidos, (qtd - substituidos) * sizeof(T), uiCrc);
}

/// Puts the disk back to what memory holds; no damage is no work.
template <typename T>
HRESULT CQZFile<T>::RestauraPendencia() {
  if (!m_pendencia) {
    return codigos::kOk;
  }
  if (const plataforma::FalhaArquivo falha = RestauraDados()) {
    return CatchGravacao(falha);
  }
  // A write that was abandoned may have left its own CRC behind.
  NotaCrcDados(std::nullopt);
  const HRESULT hr = Flush(true);
  if (!Falhou(hr)) {
    m_pendencia.reset();
  }
  return hr;
}

/// Writes the damaged range from memory and cuts the file to the records that memory holds.
template <typename T>
plataforma::FalhaArquivo CQZFile<T>::RestauraDados() {
  const std::size_t registros = m_aRegistros.GetSize();
  const auto fim = static_cast<std::size_t>(std::min<std::uint64_t>(m_pendencia->uiFim, registros));
  for (auto i = static_cast<std::size_t>(m_pendencia->uiInicio); i < fim;) {
    const auto trecho = m_aRegistros.TrechoEm(i, fim);
    if (const auto falha = Arquivo().Grava(PosicaoNoArquivo(i), trecho.pRegistros, trecho.qtd * sizeof(T))) {
      return falha;
    }
    i += trecho.qtd;
  }
  std::uint64_t uiTamanho = 0;
  if (const auto falha = Arquivo().Tamanho(&uiTamanho)) {
    return falha;
  }
  const std::uint64_t uiCerto = PosicaoNoArquivo(registros);
  return uiTamanho > uiCerto ? Arquivo().AjustaTamanho(uiCerto) : plataforma::kSemFalha;
}

#endif
