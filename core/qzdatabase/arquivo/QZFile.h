#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_QZFILE_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_QZFILE_H

#include <algorithm>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "core/platform/CArray.h"
#include "core/platform/Travas.h"
#include "core/qzdatabase/arquivo/NomeTipoRegistro.h"
#include "core/qzdatabase/arquivo/QZBlocosRegistros.h"
#include "core/qzdatabase/arquivo/QZFileBase.h"
#include "core/qzdatabase/arquivo/QZIndices.h"
#include "core/qzdatabase/disco/QZCrc64.h"

/// A file of fixed-length records of the plain structure T, stored byte for byte without separators and held in memory
/// as a whole. Reads are served from memory; a write goes to disk first and to memory after, so memory never holds a
/// record that is not on disk.
///
/// Positions are 1-based; 0 means "append" on a write and is invalid on a read. Any thread may read and write between
/// initialisation and finishing. Readers share memory with each other, and with a writer but for the moment in which it
/// puts the records there: not while it is at the disk. Only where memory has to be loaded again does a reader wait for
/// the writers' lock.
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

  /// Calls `entrega(i, reg)` for the records at the positions `posicao(i)`, i from 0 to before `qtd`, in order. Answers
  /// as one Le after another would and stops where the first of them fails, but gets access for many at a time;
  /// `entrega` must not call back into the file, nor take any lock.
  template <typename P, typename F>
  [[nodiscard]] HRESULT LeVarios(std::size_t qtd, P &&posicao, F &&entrega);

  /// Calls `visita(uiPosicao, reg)` for the positions from `uiPrimeira` to `uiUltima` in order until it returns false.
  /// Fails as Le would for the first position that cannot be read. Readers' access is held for a run of records at a
  /// time; `visita` must not call back into the file, nor take any lock.
  template <typename F>
  [[nodiscard]] HRESULT Percorre(std::uint64_t uiPrimeira, std::uint64_t uiUltima, F &&visita);

  using TrechoLido = typename CQZBlocosRegistros<T>::template Trecho<const T>;

  /// The same by runs of records that lie together, with the digests of their block:
  /// `visita(uiPosicao, const TrechoLido &)`.
  template <typename F>
  [[nodiscard]] HRESULT PercorreTrechos(std::uint64_t uiPrimeira, std::uint64_t uiUltima, F &&visita);

  /// As Percorre from the first position on, but of the records that do not hold exactly the text `sTexto`, which is
  /// not empty and holds no zero byte, in the field `uiCampo` of CamposIndexados only some are visited, in their
  /// places, or none: those that do are found by an index, which the first call builds.
  template <typename F>
  [[nodiscard]] HRESULT PercorreTexto(std::size_t uiCampo, std::string_view sTexto, std::uint64_t uiUltima, F &&visita);

  /// The records in memory. Not locked: for callers that share the file with no other thread.
  const CQZBlocosRegistros<T> *GetPtrArrayRegistros() const {
    const CQZEscopoProfiler escopo(this, Nome(">::GetPtrArrayRegistros"));
    return &m_aRegistros;
  }

  /// Number of records. Changes as the last step of a write, so that no position is counted that cannot be read.
  [[nodiscard]] HRESULT GetQuantidade(std::uint64_t *puiQtd);

protected:
  [[nodiscard]] HRESULT OnInicializa() override;
  [[nodiscard]] HRESULT OnFinaliza() override;
  [[nodiscard]] HRESULT CarregaMemoria() override;
  plataforma::FalhaArquivo CrcDosDados(std::uint64_t *puiCrc) override;
  void EsvaziaMemoria() override;

private:
  static constexpr char kFonteH[] = "QZFile.h";
  static constexpr NomeFuncao Nome(const char *lpMetodo) { return {"CQZFile<", NomeTipoRegistro<T>::kNome, lpMetodo}; }

  static constexpr std::size_t kLote = 64;     ///< records read under one lock
  static constexpr std::size_t kAdiante = 16;  ///< records fetched at a time before they are read
  /// As much of a record as is worth fetching ahead: what lies further behind is fetched by reading what lies here.
  static constexpr std::size_t kBytesAdiante = std::min<std::size_t>(sizeof(T), 192);

  /// Access to memory for a scope. Shared with other readers where memory serves; with the writers' lock where it has
  /// to be made so first.
  class Acesso {
  public:
    explicit Acesso(const CQZFile &file)
        : m_file(file), m_leitura(std::in_place, file.Leitores()), m_eMemoria(file.Memoria()) {
      if (m_eMemoria == EMemoria::Recarregar) {
        m_leitura.reset();
        m_escrita.emplace(file.Secao());
      }
    }
    /// AsseguraMemoria is to be called before memory is looked at.
    bool AAssegurar() const { return m_escrita.has_value(); }
    /// Memory is what the open file holds, or held when access was given: a writer may open it again meanwhile.
    bool MemoriaIgual() const { return (AAssegurar() ? m_file.Memoria() : m_eMemoria) == EMemoria::IgualAoArquivo; }

  private:
    const CQZFile &m_file;
    std::optional<plataforma::CQZTravaLeitura> m_leitura;
    const EMemoria m_eMemoria;
    std::optional<plataforma::CQZTrava> m_escrita;
  };

  [[nodiscard]] HRESULT Examina(const Acesso &acesso, std::uint64_t uiPosicao, T *pReg) const;
  template <typename P, typename F>
  [[nodiscard]] std::size_t LeLote(std::size_t inicio, std::size_t qtd, P &&posicao, F &&entrega);
  template <typename P>
  void Antecipa(std::size_t inicio, std::size_t qtd, P &&posicao) const;
  plataforma::FalhaArquivo LeCarga(std::uint64_t *puiCrc);

  template <typename F>
  [[nodiscard]] HRESULT VisitaTrecho(std::uint64_t uiUltima, F &&visita, std::uint64_t *puiPosicao, bool *pbFim);
  [[nodiscard]] HRESULT TrabalhaNoIndice(std::size_t uiCampo, std::uint64_t uiHash);
  template <typename F>
  [[nodiscard]] HRESULT VisitaPorIndice(std::size_t uiCampo, std::uint64_t uiHash, std::uint64_t uiUltima, F &&visita,
                                        std::optional<std::uint64_t> *puiResto);

  [[nodiscard]] HRESULT GravaFaixa(std::uint64_t &uiPosicao, const T *pRegistros, std::size_t qtd);
  [[nodiscard]] HRESULT GravaRegistros(std::uint64_t uiIndice, const T *pRegistros, std::size_t qtd);
  bool PrecisaGravar(std::uint64_t uiPosicao, const T *pRegistros, std::size_t qtd) const;
  void NotaAntigos(std::size_t indice, std::size_t qtd);
  void TomaRegistros(std::size_t indice, const T *pRegistros, std::size_t qtd);
  std::uint64_t PosicaoNoArquivo(std::uint64_t uiIndice) const { return TamanhoCabecalho() + uiIndice * sizeof(T); }

  CQZBlocosRegistros<T> m_aRegistros;
  CQZBlocosRegistros<T> m_aCarga;  ///< read and not in use yet
  bool m_bCargaLida = false;       ///< m_aCarga is what CrcDosDados has read last
  CQZIndices<T> m_indices;         ///< of m_aRegistros
};

template <typename T>
HRESULT CQZFile<T>::OnInicializa() {
  const CQZOperacao rastro(this, Nome(">::OnInicializa"), kFonteH);
  QZ_VERIFICA(rastro, "__super::OnInicializa()", CQZFileBase::OnInicializa());
  QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AbreArquivo(eModoLeitura));
  return CarregaAoInicializar();
}

template <typename T>
HRESULT CQZFile<T>::CarregaMemoria() {
  const CQZRastro rastro(this, Nome(">::OnInicializa"), kFonteH);
  std::uint64_t uiTamanho = 0;
  plataforma::FalhaArquivo falha = TamanhoDados(&uiTamanho);
  if (falha.causa == plataforma::CausaArquivo::FimDeArquivo || (!falha && uiTamanho % sizeof(T) != 0)) {
    QZ_RETORNA_CODIGO(rastro, codigos::kTamanhoNaoMultiplo);
  }
  if (!falha && !(DadosConferidos() && m_bCargaLida)) {
    falha = LeCarga(nullptr);
  }
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falha));
  m_bCargaLida = false;
  {
    const plataforma::CQZTravaEscrita trava(Leitores());
    m_aRegistros.Troca(m_aCarga);
    Leitores().Confia();
  }
  m_aCarga.Esvazia();
  return codigos::kOk;
}

/// What is read for the check of the header need not be read again to be loaded.
template <typename T>
plataforma::FalhaArquivo CQZFile<T>::CrcDosDados(std::uint64_t *puiCrc) {
  m_bCargaLida = false;
  if (VaiCarregar()) {
    try {
      const plataforma::FalhaArquivo falha = LeCarga(puiCrc);
      m_bCargaLida = !falha;
      return falha;
    } catch (const std::bad_alloc &) {
      // A damaged file is told from one that is too large.
      m_aCarga.Esvazia();
    }
  }
  return CQZFileBase::CrcDosDados(puiCrc);
}

/// Reads all whole records into m_aCarga and, where it is asked for, the CRC of them and of what follows them.
template <typename T>
plataforma::FalhaArquivo CQZFile<T>::LeCarga(std::uint64_t *puiCrc) {
  std::uint64_t uiTamanho = 0;
  plataforma::FalhaArquivo falha = TamanhoDados(&uiTamanho);
  if (falha) {
    return falha;
  }
  m_aCarga.Esvazia();
  EsvaziaMemoria();  // no longer served; two contents need not fit into memory
  m_aCarga.DefineTamanho(static_cast<std::size_t>(uiTamanho / sizeof(T)));
  std::uint64_t uiCrc = 0;
  // A block at a time, while it is in the processor's cache: read, digested and taken into the CRC.
  for (std::size_t i = 0; !falha && i < m_aCarga.GetSize();) {
    const auto trecho = m_aCarga.TrechoEm(i, m_aCarga.GetSize());
    falha = Arquivo().Le(PosicaoNoArquivo(i), trecho.pRegistros, trecho.qtd * sizeof(T));
    if (!falha) {
      m_aCarga.Resume(i, trecho);
    }
    uiCrc = falha || puiCrc == nullptr ? 0 : CalculaCrc64(trecho.pRegistros, trecho.qtd * sizeof(T), uiCrc);
    i += trecho.qtd;
  }
  // The header vouches for a torn record at the end too.
  const auto cbResto = static_cast<std::size_t>(uiTamanho % sizeof(T));
  if (!falha && puiCrc != nullptr && cbResto != 0) {
    T resto;
    falha = Arquivo().Le(PosicaoNoArquivo(m_aCarga.GetSize()), &resto, cbResto);
    uiCrc = falha ? 0 : CalculaCrc64(&resto, cbResto, uiCrc);
  }
  if (puiCrc != nullptr) {
    *puiCrc = uiCrc;
  }
  return falha;
}

template <typename T>
void CQZFile<T>::EsvaziaMemoria() {
  CQZBlocosRegistros<T> velhos;
  const plataforma::CQZTravaEscrita trava(Leitores());
  m_indices.Esvazia();
  m_aRegistros.Troca(velhos);  // their memory goes when the lock has gone
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
  const CQZRastro rastro(this, Nome(">::GetQuantidade"), kFonteH);
  *puiQtd = 0;
  const Acesso acesso(*this);
  if (acesso.AAssegurar()) {
    QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
  }
  *puiQtd = m_aRegistros.GetSize();
  return codigos::kOk;
}

template <typename T>
HRESULT CQZFile<T>::Le(std::uint64_t uiPosicao, T *pReg) {
  const CQZOperacao rastro(this, Nome(">::Le"), kFonteH);
  if (uiPosicao == 0) {
    QZ_RETORNA_CODIGO(rastro, codigos::kPosicaoZero);
  }
  HRESULT hr = codigos::kOk;
  {
    const Acesso acesso(*this);
    if (acesso.AAssegurar()) {
      QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
    }
    hr = Examina(acesso, uiPosicao, pReg);
  }
  // Not before access is given back: recording a failure takes locks and touches files.
  return Falhou(hr) ? rastro.Codigo(hr, __LINE__) : hr;
}

/// Copies the record at a position other than 0.
template <typename T>
HRESULT CQZFile<T>::Examina(const Acesso &acesso, std::uint64_t uiPosicao, T *pReg) const {
  if (!acesso.MemoriaIgual()) {
    return codigos::kArquivoNaoAberto;
  }
  if (uiPosicao > m_aRegistros.GetSize()) {
    return codigos::kPosicaoAlemDoFim;
  }
  *pReg = m_aRegistros[static_cast<std::size_t>(uiPosicao - 1)];
  return codigos::kOk;
}

template <typename T>
template <typename P, typename F>
HRESULT CQZFile<T>::LeVarios(std::size_t qtd, P &&posicao, F &&entrega) {
  for (std::size_t i = 0; i < qtd;) {
    // Where entry and exit are recorded, those of every record are.
    const std::size_t lidos = RastreamentoHabilitado() ? 0 : LeLote(i, std::min(qtd - i, kLote), posicao, entrega);
    i += lidos;
    if (lidos == 0) {
      T reg;
      const HRESULT hr = Le(posicao(i), &reg);
      if (Falhou(hr)) {
        return hr;
      }
      entrega(i++, std::as_const(reg));
    }
  }
  return codigos::kOk;
}

/// How many records from `inicio` on were handed over: all, or those before the first with which Le would have more to
/// do than to copy it.
template <typename T>
template <typename P, typename F>
std::size_t CQZFile<T>::LeLote(std::size_t inicio, std::size_t qtd, P &&posicao, F &&entrega) {
  const plataforma::CQZTravaLeitura trava(Leitores());
  if (Memoria() != EMemoria::IgualAoArquivo) {
    return 0;
  }
  for (std::size_t i = 0; i < qtd; ++i) {
    if (i % kAdiante == 0) {
      Antecipa(inicio + i, std::min(kAdiante, qtd - i), posicao);
    }
    const std::uint64_t uiPosicao = posicao(inicio + i);
    if (uiPosicao == 0 || uiPosicao > m_aRegistros.GetSize()) {
      return i;
    }
    entrega(inicio + i, m_aRegistros[static_cast<std::size_t>(uiPosicao - 1)]);
  }
  return qtd;
}

/// Fetches records that lie anywhere, by reading from each line: the processor waits for many reads at the same time,
/// but drops mere hints for pages that it would have to look up first.
template <typename T>
template <typename P>
void CQZFile<T>::Antecipa(std::size_t inicio, std::size_t qtd, P &&posicao) const {
  constexpr std::size_t kLinha = 64;
  for (std::size_t i = inicio; i < inicio + qtd; ++i) {
    const std::uint64_t uiPosicao = posicao(i);
    if (uiPosicao != 0 && uiPosicao <= m_aRegistros.GetSize()) {
      const auto *pBytes = reinterpret_cast<const char *>(&m_aRegistros[static_cast<std::size_t>(uiPosicao - 1)]);
      for (std::size_t j = 0; j < kBytesAdiante; j += kLinha) {
        static_cast<void>(*static_cast<const volatile char *>(pBytes + j));
      }
    }
  }
}

template <typename T>
template <typename F>
HRESULT CQZFile<T>::Percorre(std::uint64_t uiPrimeira, std::uint64_t uiUltima, F &&visita) {
  return PercorreTrechos(uiPrimeira, uiUltima, [&](std::uint64_t uiPosicao, const TrechoLido &trecho) {
    for (std::size_t i = 0; i < trecho.qtd; ++i) {
      if (!visita(uiPosicao + i, trecho.pRegistros[i])) {
        return false;
      }
    }
    return true;
  });
}

template <typename T>
template <typename F>
HRESULT CQZFile<T>::PercorreTrechos(std::uint64_t uiPrimeira, std::uint64_t uiUltima, F &&visita) {
  bool bFim = false;
  for (std::uint64_t uiPosicao = uiPrimeira; !bFim;) {
    const std::uint64_t uiAntes = uiPosicao;
    const HRESULT hr = VisitaTrecho(uiUltima, visita, &uiPosicao, &bFim);
    if (Falhou(hr)) {
      return hr;
    }
    // No step: whatever is wrong with the position, Le finds it again and traces it outside the readers' access. Where
    // it finds nothing, the record has come meanwhile and is still to be visited.
    if (!bFim && uiPosicao == uiAntes) {
      T descartado;
      const HRESULT hrLe = Le(uiPosicao, &descartado);
      if (Falhou(hrLe)) {
        return hrLe;
      }
    }
  }
  return codigos::kOk;
}

/// One run from `*puiPosicao` on, which moves behind it; it stays where it is when that position cannot be read.
/// `*pbFim` tells that the range, or the visitor, has come to its end.
template <typename T>
template <typename F>
HRESULT CQZFile<T>::VisitaTrecho(std::uint64_t uiUltima, F &&visita, std::uint64_t *puiPosicao, bool *pbFim) {
  const CQZRastro rastro(this, Nome(">::Le"), kFonteH);
  const Acesso acesso(*this);
  // Before the range is looked at: an empty one of a file that cannot be had is not an answer.
  if (acesso.AAssegurar()) {
    QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
  }
  *pbFim = *puiPosicao > uiUltima;
  if (*pbFim || *puiPosicao == 0 || !acesso.MemoriaIgual() || *puiPosicao > m_aRegistros.GetSize()) {
    return codigos::kOk;
  }
  const std::uint64_t uiFim = std::min<std::uint64_t>(uiUltima, m_aRegistros.GetSize());
  const TrechoLido trecho =
      std::as_const(m_aRegistros).TrechoEm(static_cast<std::size_t>(*puiPosicao - 1), static_cast<std::size_t>(uiFim));
  *pbFim = !visita(*puiPosicao, trecho);
  *puiPosicao += trecho.qtd;
  return codigos::kOk;
}

template <typename T>
template <typename F>
HRESULT CQZFile<T>::PercorreTexto(std::size_t uiCampo, std::string_view sTexto, std::uint64_t uiUltima, F &&visita) {
  const std::uint64_t uiHash = CQZIndices<T>::HashDoTexto(uiCampo, sTexto);
  std::optional<std::uint64_t> uiResto;
  for (;;) {
    HRESULT hr = VisitaPorIndice(uiCampo, uiHash, uiUltima, visita, &uiResto);
    if (!Falhou(hr) && !uiResto) {
      hr = TrabalhaNoIndice(uiCampo, uiHash);
    }
    if (Falhou(hr)) {
      return hr;
    }
    if (uiResto) {
      break;
    }
  }
  return *uiResto == 0 ? codigos::kOk : Percorre(*uiResto, uiUltima, visita);
}

/// One step of what the index was found to lack.
template <typename T>
HRESULT CQZFile<T>::TrabalhaNoIndice(std::size_t uiCampo, std::uint64_t uiHash) {
  const CQZRastro rastro(this, Nome(">::Le"), kFonteH);
  const plataforma::CQZTrava trava(Secao());
  QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
  const plataforma::CQZTravaEscrita travaEscrita(Leitores());
  m_indices.Trabalha(uiCampo, uiHash, m_aRegistros);
  return codigos::kOk;
}

/// Asks the index once. `*puiResto` receives the position from which on all records have to be visited, 0 for none; it
/// stays empty while the index has no answer yet.
template <typename T>
template <typename F>
HRESULT CQZFile<T>::VisitaPorIndice(std::size_t uiCampo, std::uint64_t uiHash, std::uint64_t uiUltima, F &&visita,
                                    std::optional<std::uint64_t> *puiResto) {
  const CQZRastro rastro(this, Nome(">::Le"), kFonteH);
  const Acesso acesso(*this);
  if (acesso.AAssegurar()) {
    QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
  }
  // Where Percorre would fail it is left to it, so that the failure is the same.
  if (!acesso.MemoriaIgual() || uiUltima > m_aRegistros.GetSize()) {
    *puiResto = 1;
    return codigos::kOk;
  }
  std::uint64_t uiPosicao = 0;
  const EResposta eResposta = m_indices.Procura(uiCampo, uiHash, m_aRegistros, &uiPosicao);
  switch (eResposta) {
    case EResposta::NaoSei:
      *puiResto = 1;
      break;
    case EResposta::FaltaFazer:
      break;
    case EResposta::Nenhum:
      *puiResto = 0;
      break;
    case EResposta::SoUm:
    case EResposta::Varios: {
      const bool bSegue =
          uiPosicao <= uiUltima && visita(uiPosicao, m_aRegistros[static_cast<std::size_t>(uiPosicao - 1)]);
      // The first is visited under the access under which the index answered; the others are Percorre's.
      *puiResto = bSegue && eResposta == EResposta::Varios ? uiPosicao + 1 : 0;
      break;
    }
  }
  return codigos::kOk;
}

template <typename T>
HRESULT CQZFile<T>::Grava(std::uint64_t &uiPosicao, const T &reg) {
  const CQZOperacao rastro(this, Nome(">::Grava"), kFonteH);
  QZ_VERIFICA(rastro, "GravaColecao(uiPosicao, aRegistros)", GravaFaixa(uiPosicao, &reg, 1));
  return codigos::kOk;
}

template <typename T>
HRESULT CQZFile<T>::GravaColecao(std::uint64_t &uiPosicao, const CArray<T> &aRegistros) {
  return GravaFaixa(uiPosicao, aRegistros.GetData(), aRegistros.GetSize());
}

template <typename T>
HRESULT CQZFile<T>::GravaFaixa(std::uint64_t &uiPosicao, const T *pRegistros, std::size_t qtd) {
  const CQZOperacao rastro(this, Nome(">::GravaColecao"), kFonteH);
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
    auto espaco = std::as_const(m_aRegistros).PreparaEspaco(static_cast<std::size_t>(uiIndice) + qtd);
    const plataforma::CQZTravaEscrita travaEscrita(Leitores());
    m_aRegistros.Adota(std::move(espaco));
    m_indices.Prepara(pRegistros, qtd);
    return codigos::kOk;
  };
  const auto grava = [&]() -> HRESULT {
    QZ_VERIFICA(rastro, "GravaRegistros(uiPosicao, aRegistros)", GravaRegistros(uiIndice, pRegistros, qtd));
    return codigos::kOk;
  };
  // The caller's position changes only with a write that has happened.
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
  const CQZRastro rastro(this, Nome(">::GravaRegistros"), kFonteH);
  const auto indice = static_cast<std::size_t>(uiIndice);
  Transacao().Inicia(PosicaoNoArquivo(uiIndice), PosicaoNoArquivo(m_aRegistros.GetSize()));
  NotaAntigos(indice, qtd);
  QZ_VERIFICA(rastro, "CatchGravacao(pEx)",
              CatchGravacao(Transacao().Grava(Arquivo(), pRegistros, qtd * sizeof(T), false)));
  QZ_VERIFICA(rastro, "Flush()", Flush());
  TomaRegistros(indice, pRegistros, qtd);
  ConfirmaGravacao();
  return codigos::kOk;
}

/// What is on disk into memory, for which there is room. Readers are kept out for as little as can be: what lies behind
/// the last record they do not look at.
template <typename T>
void CQZFile<T>::TomaRegistros(std::size_t indice, const T *pRegistros, std::size_t qtd) {
  const std::size_t sobrepostos = std::min(qtd, m_aRegistros.GetSize() - indice);
  m_aRegistros.Copia(indice + sobrepostos, pRegistros + sobrepostos, qtd - sobrepostos);
  const plataforma::CQZTravaEscrita trava(Leitores());
  m_indices.Troca(m_aRegistros, indice, pRegistros, qtd);
  m_aRegistros.Copia(indice, pRegistros, sobrepostos);
  m_aRegistros.Abrange(indice, qtd);
  m_aRegistros.DefineTamanho(std::max(indice + qtd, m_aRegistros.GetSize()));
  Transacao().Confirma();
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
