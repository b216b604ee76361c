#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_QZFILESINGLEREG_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_QZFILESINGLEREG_H

#include <cstring>
#include <type_traits>

#include "core/platform/Plataforma.h"
#include "core/qzdatabase/arquivo/QZFileBase.h"
#include "core/qzdatabase/disco/QZCrc64.h"

/// A file that holds exactly one record of the plain structure T, such as a base's version. The record is read once, at
/// initialisation, and served from memory; a write reaches the disk only when it changes a byte, and memory only after
/// it has reached the disk.
template <typename T>
class CQZFileSingleReg : public CQZFileBase {
  static_assert(std::is_trivially_copyable_v<T>, "the record is copied and compared as bytes");

public:
  CQZFileSingleReg(const CString &sNomeArquivo, CQZDataBase *pDataBase);
  ~CQZFileSingleReg() override { FinalizaNoDestrutor(); }

  /// Copies the record; with no file open (it did not exist and nothing was written since) fails with 0x810809E3 and
  /// leaves `*pReg` untouched.
  [[nodiscard]] HRESULT Le(T *pReg) const;

  /// Stores the record, creating a missing file; an unchanged record touches nothing.
  [[nodiscard]] HRESULT Grava(const T &reg);

protected:
  [[nodiscard]] HRESULT OnInicializa() override;
  [[nodiscard]] HRESULT OnFinaliza() override;
  [[nodiscard]] HRESULT CarregaMemoria() override;
  void EsvaziaMemoria() override;

private:
  static constexpr char kFonte[] = "QZFileSingleReg.h";
  static constexpr NomeFuncao Nome(const char *lpMetodo) {
    return {"CQZFileSingleReg<", NomeTipoRegistro<T>::kNome, lpMetodo};
  }

  bool PrecisaGravar(const T &reg) const { return m_bDiscoDiverge || std::memcmp(&m_reg, &reg, sizeof(T)) != 0; }
  [[nodiscard]] HRESULT GravaRegistro(const T &reg);
  void DesfazGravacao();
  void DesfazCriacao();
  bool CabecalhoConfere();

  T m_reg{};
  /// The disk may hold something else than memory: from before a write until memory has it, and after one that failed
  /// and could not be undone.
  bool m_bDiscoDiverge = false;
  /// The file did not exist before a write that has not succeeded yet.
  bool m_bCriacaoPendente = false;
};

template <typename T>
CQZFileSingleReg<T>::CQZFileSingleReg(const CString &sNomeArquivo, CQZDataBase *pDataBase)
    : CQZFileBase(sNomeArquivo, pDataBase) {
  const CQZEscopoProfiler escopo(this, Nome(">::CQZFileSingleReg"), [&] {
    return ParametrosEscopo{{"sNomeArquivo", sNomeArquivo}};
  });
}

template <typename T>
HRESULT CQZFileSingleReg<T>::OnInicializa() {
  const CQZOperacao rastro(this, Nome(">::OnInicializa"), kFonte);
  QZ_VERIFICA(rastro, "__super::OnInicializa()", CQZFileBase::OnInicializa());
  QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AbreArquivo(eModoLeitura));
  if (ExisteArquivo()) {
    const HRESULT hr = CarregaMemoria();
    if (Falhou(hr)) {
      return hr;
    }
  } else {
    EsvaziaMemoria();
  }
  MemoriaCarregada();
  return codigos::kOk;
}

template <typename T>
HRESULT CQZFileSingleReg<T>::CarregaMemoria() {
  const CQZRastro rastro(this, Nome(">::OnInicializa"), kFonte);
  std::uint64_t uiTamanho = 0;
  plataforma::FalhaArquivo falha = TamanhoDados(&uiTamanho);
  if (falha.causa == plataforma::CausaArquivo::FimDeArquivo || (!falha && uiTamanho != sizeof(T))) {
    QZ_RETORNA_CODIGO(rastro, codigos::kTamanhoDiferente);
  }
  T reg{};
  if (!falha) {
    falha = Arquivo().Le(TamanhoCabecalho(), &reg, sizeof(T));
  }
  if (falha) {
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falha));
  }
  m_reg = reg;
  m_bDiscoDiverge = false;
  return codigos::kOk;
}

template <typename T>
void CQZFileSingleReg<T>::EsvaziaMemoria() {
  m_reg = T{};
  m_bDiscoDiverge = false;
}

template <typename T>
HRESULT CQZFileSingleReg<T>::OnFinaliza() {
  const CQZEscopoProfiler escopo(this, Nome(">::OnFinaliza"));
  const plataforma::CQZTrava trava(Secao());
  if (m_bCriacaoPendente) {
    // An exception, such as memory running out, ended the write before it could undo its own creation.
    DesfazCriacao();
  }
  EsvaziaMemoria();
  return CQZFileBase::OnFinaliza();
}

template <typename T>
HRESULT CQZFileSingleReg<T>::Le(T *pReg) const {
  const CQZOperacao rastro(this, Nome(">::Le"), kFonte);
  const plataforma::CQZTrava trava(Secao());
  if (!ExisteArquivo()) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoAberto);
  }
  *pReg = m_reg;
  return codigos::kOk;
}

template <typename T>
HRESULT CQZFileSingleReg<T>::Grava(const T &reg) {
  const CQZOperacao rastro(this, Nome(">::Grava"), kFonte);
  const plataforma::CQZTrava trava(Secao());
  if (!PrecisaGravar(reg)) {
    return codigos::kOk;
  }
  if (m_bCriacaoPendente) {
    DesfazCriacao();
  }
  m_bCriacaoPendente = m_bCriacaoPendente || !ExisteArquivo();
  HRESULT hr = codigos::kOk;
  if (!QZ_FALHOU(rastro, hr, "AbreArquivo()", AbreArquivo())) {
    hr = TentaGravar(rastro, "GravaRegistro(reg)", [&] { return GravaRegistro(reg); });
  }
  if (Falhou(hr)) {
    DesfazGravacao();
  }
  return hr;
}

/// One attempt.
template <typename T>
HRESULT CQZFileSingleReg<T>::GravaRegistro(const T &reg) {
  const CQZRastro rastro(this, Nome(">::GravaRegistro"), kFonte);
  m_bDiscoDiverge = true;
  NotaCrcDados(CalculaCrc64(&reg, sizeof(T)));
  if (const plataforma::FalhaArquivo falha = Arquivo().Grava(TamanhoCabecalho(), &reg, sizeof(T))) {
    QZ_VERIFICA(rastro, "CatchGravacao(pEx)", CatchGravacao(falha));
  }
  QZ_VERIFICA(rastro, "Flush()", Flush());
  m_reg = reg;
  m_bDiscoDiverge = false;
  m_bCriacaoPendente = false;
  return codigos::kOk;
}

/// Puts the disk back to the record in memory after a write that failed for good.
template <typename T>
void CQZFileSingleReg<T>::DesfazGravacao() {
  if (m_bCriacaoPendente) {
    DesfazCriacao();
  } else {
    NotaCrcDados(CalculaCrc64(&m_reg, sizeof(T)));
    m_bDiscoDiverge = !ExisteArquivo() || Arquivo().Grava(TamanhoCabecalho(), &m_reg, sizeof(T)) || Falhou(Flush(true));
  }
}

/// Deletes the file that an unfinished write created: one of another length, or with a header that does not hold, would
/// keep the base from opening. A whole one is somebody else's by now and stays.
template <typename T>
void CQZFileSingleReg<T>::DesfazCriacao() {
  FechaArquivo();
  const CString sCaminho = CaminhoCompleto();
  std::uint64_t uiTamanho = 0;
  const plataforma::FalhaArquivo falha = plataforma::Arquivos().TamanhoDe(sCaminho, &uiTamanho);
  const bool bAusente = falha.causa == plataforma::CausaArquivo::NaoEncontrado;
  const bool bInacabado = !falha && (uiTamanho < TamanhoCabecalho() + sizeof(T) || !CabecalhoConfere());
  if (bAusente || (bInacabado && !Falhou(Controle().Remove()) && !plataforma::Arquivos().Apaga(sCaminho))) {
    m_bCriacaoPendente = false;
    EsvaziaMemoria();
    MemoriaCarregada();
  }
}

/// False when the closed file on disk is refused for its header.
template <typename T>
bool CQZFileSingleReg<T>::CabecalhoConfere() {
  const HRESULT hr = AbreArquivo(eModoLeitura);
  FechaArquivo();
  return hr != codigos::kDadosNaoConferem && hr != codigos::kCabecalhoDanificado;
}

#endif
