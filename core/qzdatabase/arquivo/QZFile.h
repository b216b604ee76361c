#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_QZFILE_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_QZFILE_H

#include <algorithm>
#include <atomic>

#include "core/platform/CArray.h"
#include "core/qzdatabase/arquivo/QZBlocosRegistros.h"
#include "core/qzdatabase/arquivo/QZFileBase.h"

/// A file of fixed-length records of the plain structure T, stored byte for byte without separators and held in memory
/// as a whole. Reads are served from memory; a write goes to disk first and to memory after, so memory never holds a
/// record that is not on disk.
///
/// Positions are 1-based; 0 means "append" on a write and is invalid on a read. Any thread may read and write between
/// initialisation and finishing.
template <typename T>
class CQZFile : public CQZFileBase {
public:
  CQZFile(const CString &sNomeArquivo, IDonoDeArquivos *pDataBase) : CQZFileBase(sNomeArquivo, pDataBase) {}
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
  const CQZBlocosRegistros<T> *GetPtrArrayRegistros() const {
    const CQZEscopoProfiler escopo(this, Nome(">::GetPtrArrayRegistros"));
    return &m_aRegistros;
  }

  /// Number of records. Changes as the last step of a write, so that no position is counted that cannot be read. Waits
  /// for the lock only when memory has to be loaded again.
  [[nodiscard]] HRESULT GetQuantidade(std::uint64_t *puiQtd);

protected:
  [[nodiscard]] HRESULT OnInicializa() override;
  [[nodiscard]] HRESULT OnFinaliza() override;
  [[nodiscard]] HRESULT CarregaMemoria() override;
  void EsvaziaMemoria() override;

private:
  static constexpr char kFonte[] = "QZFile.h";
  static constexpr NomeFuncao Nome(const char *lpMetodo) { return {"CQZFile<", NomeTipoRegistro<T>::kNome, lpMetodo}; }

  [[nodiscard]] HRESULT GravaFaixa(std::uint64_t &uiPosicao, const T *pRegistros, std::size_t qtd);
  [[nodiscard]] HRESULT GravaRegistros(std::uint64_t uiIndice, const T *pRegistros, std::size_t qtd);
  bool PrecisaGravar(std::uint64_t uiPosicao, const T *pRegistros, std::size_t qtd) const;
  void NotaAntigos(std::size_t indice, std::size_t qtd);
  std::uint64_t PosicaoNoArquivo(std::uint64_t uiIndice) const { return TamanhoCabecalho() + uiIndice * sizeof(T); }
  void PublicaQuantidade() { m_uiQtd.store(m_aRegistros.GetSize(), std::memory_order_release); }

  CQZBlocosRegistros<T> m_aRegistros;
  std::atomic<std::uint64_t> m_uiQtd{0};
};

template <typename T>
HRESULT CQZFile<T>::OnInicializa() {
  const CQZOperacao rastro(this, Nome(">::OnInicializa"), kFonte);
  QZ_VERIFICA(rastro, "__super::OnInicializa()", CQZFileBase::OnInicializa());
  QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AbreArquivo(eModoLeitura));
  return CarregaAoInicializar();
}

template <typename T>
HRESULT CQZFile<T>::CarregaMemoria() {
  const CQZRastro rastro(this, Nome(">::OnInicializa"), kFonte);
  std::uint64_t uiTamanho = 0;
  plataforma::FalhaArquivo falha = TamanhoDados(&uiTamanho);
  if (falha.causa == plataforma::CausaArquivo::FimDeArquivo || (!falha && uiTamanho % sizeof(T) != 0)) {
    QZ_RETORNA_CODIGO(rastro, codigos::kTamanhoNaoMultiplo);
  }
  m_aRegistros.Esvazia();  // first, so that two contents need not fit into memory
  m_aRegistros.DefineTamanho(static_cast<std::size_t>(uiTamanho / sizeof(T)));
  for (std::size_t i = 0; !falha && i < m_aRegistros.GetSize();) {
    const auto trecho = m_aRegistros.TrechoEm(i, m_aRegistros.GetSize());
    falha = Arquivo().Le(PosicaoNoArquivo(i), trecho.pRegistros, trecho.qtd * sizeof(T));
    i += trecho.qtd;
  }
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falha));
  PublicaQuantidade();
  return codigos::kOk;
}

template <typename T>
void CQZFile<T>::EsvaziaMemoria() {
  m_aRegistros.Esvazia();
  PublicaQuantidade();
}

template <typename T>
HRESULT CQZFile<T>::OnFinaliza() {
  const CQZEscopoProfiler escopo(this, Nome(">::OnFinaliza"));
  const plataforma::CQZTrava trava(Secao());
  const HRESULT hr = CQZFileBase::OnFinaliza();
  EsvaziaMemoria();
  return hr;
}

template <typename T>
HRESULT CQZFile<T>::GetQuantidade(std::uint64_t *puiQtd) {
  *puiQtd = 0;
  if (!MemoriaServe()) {
    const CQZRastro rastro(this, Nome(">::GetQuantidade"), kFonte);
    const plataforma::CQZTrava trava(Secao());
    QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
  }
  *puiQtd = m_uiQtd.load(std::memory_order_acquire);
  return codigos::kOk;
}

template <typename T>
HRESULT CQZFile<T>::Le(std::uint64_t uiPosicao, T *pReg) {
  const CQZOperacao rastro(this, Nome(">::Le"), kFonte);
  if (uiPosicao == 0) {
    QZ_RETORNA_CODIGO(rastro, codigos::kPosicaoZero);
  }
  const plataforma::CQZTrava trava(Secao());
  QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
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
  for (std::uint64_t uiPosicao = uiPrimeira;;) {
    const CQZRastro rastro(this, Nome(">::Le"), kFonte);
    const plataforma::CQZTrava trava(Secao());
    // Before the range is looked at: an empty one of a file that cannot be had is not an answer.
    QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
    if (uiPosicao > uiUltima) {
      return codigos::kOk;
    }
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
  QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
  if (uiPosicao > m_aRegistros.GetSize()) {
    QZ_RETORNA_CODIGO(rastro, codigos::kGravacaoAlemDoFim);
  }
  if (!PrecisaGravar(uiPosicao, pRegistros, qtd)) {
    // What an earlier failure left on disk gets its chance of repair even when there is nothing new to write. There may
    // be, where that finds the file changed by others.
    QZ_VERIFICA(rastro, "RestauraPendencia()", RestauraPendencia());
    if (!PrecisaGravar(uiPosicao, pRegistros, qtd)) {
      return codigos::kOk;
    }
  }
  std::uint64_t uiIndice = 0;
  const auto fixaLugar = [&]() -> HRESULT {
    QZ_VERIFICA(rastro, "AbreArquivo()", AbreArquivo());
    if (uiPosicao > m_aRegistros.GetSize()) {
      // Opening for writing found the file changed by others and loaded fewer records.
      QZ_RETORNA_CODIGO(rastro, codigos::kGravacaoAlemDoFim);
    }
    uiIndice = uiPosicao != 0 ? uiPosicao - 1 : m_aRegistros.GetSize();
    // Room first: once the records are on disk, taking them into memory must not fail.
    m_aRegistros.Reserva(static_cast<std::size_t>(uiIndice) + qtd);
    return codigos::kOk;
  };
  const auto grava = [&]() -> HRESULT {
    QZ_VERIFICA(rastro, "GravaRegistros(uiPosicao, aRegistros)", GravaRegistros(uiIndice, pRegistros, qtd));
    return codigos::kOk;
  };
  const HRESULT hr = TentaGravar(fixaLugar, grava);
  if (!Falhou(hr)) {
    uiPosicao = uiIndice + 1;
  }
  return hr;
}

/// A given position needs writing only when it changes something; an append always does.
template <typename T>
bool CQZFile<T>::PrecisaGravar(std::uint64_t uiPosicao, const T *pRegistros, std::size_t qtd) const {
  const std::uint64_t uiRegistros = m_aRegistros.GetSize();
  if (uiPosicao == 0 || uiPosicao > uiRegistros || qtd > uiRegistros - uiPosicao + 1) {
    return true;
  }
  return !m_aRegistros.Iguais(static_cast<std::size_t>(uiPosicao - 1), pRegistros, qtd);
}

/// One attempt.
template <typename T>
HRESULT CQZFile<T>::GravaRegistros(std::uint64_t uiIndice, const T *pRegistros, std::size_t qtd) {
  const CQZRastro rastro(this, Nome(">::GravaRegistros"), kFonte);
  const auto indice = static_cast<std::size_t>(uiIndice);
  Transacao().Inicia(PosicaoNoArquivo(uiIndice), PosicaoNoArquivo(m_aRegistros.GetSize()));
  NotaAntigos(indice, qtd);
  QZ_VERIFICA(rastro, "CatchGravacao(pEx)",
              CatchGravacao(Transacao().Grava(Arquivo(), pRegistros, qtd * sizeof(T), false)));
  QZ_VERIFICA(rastro, "Flush()", Flush());
  if (indice + qtd > m_aRegistros.GetSize()) {
    m_aRegistros.DefineTamanho(indice + qtd);
  }
  m_aRegistros.Copia(indice, pRegistros, qtd);
  ConfirmaGravacao();
  PublicaQuantidade();
  return codigos::kOk;
}

/// Memory holds what the disk holds, so the old records need not be read.
template <typename T>
void CQZFile<T>::NotaAntigos(std::size_t indice, std::size_t qtd) {
  const std::size_t fim = std::min(indice + qtd, m_aRegistros.GetSize());
  while (indice < fim) {
    const auto trecho = m_aRegistros.TrechoEm(indice, fim);
    Transacao().NotaAntigo(trecho.pRegistros, trecho.qtd * sizeof(T));
    indice += trecho.qtd;
  }
}

#endif
