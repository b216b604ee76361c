#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_QZFILESINGLEREG_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_QZFILESINGLEREG_H

#include <cstring>
#include <type_traits>

#include "core/platform/Travas.h"
#include "core/qzdatabase/arquivo/NomeTipoRegistro.h"
#include "core/qzdatabase/arquivo/QZFileBase.h"

/// A file that holds exactly one record of the plain structure T, such as a base's version. The record is read once, at
/// initialisation, and served from memory; a write reaches the disk only when it changes a byte, and memory only after
/// it has reached the disk.
template <typename T>
class CQZFileSingleReg : public CQZFileBase {
  static_assert(std::is_trivially_copyable_v<T>, "the record is copied and compared as bytes");

public:
  CQZFileSingleReg(const CString &sNomeArquivo, IDonoDeArquivos *pDataBase);
  ~CQZFileSingleReg() override { FinalizaNoDestrutor(); }

  /// Copies the record; with no file open (it did not exist and nothing was written since) fails with 0x810809E3 and
  /// leaves `*pReg` untouched.
  [[nodiscard]] HRESULT Le(T *pReg);

  /// Stores the record, creating a missing file; an unchanged record touches nothing.
  [[nodiscard]] HRESULT Grava(const T &reg);

  /// True when there was a record when the file was last looked at; does not look at the disk. A missing file has none,
  /// nor one whose creation was interrupted.
  bool TemRegistro() const { return m_bTemRegistro; }

protected:
  [[nodiscard]] HRESULT OnInicializa() override;
  [[nodiscard]] HRESULT OnFinaliza() override;
  [[nodiscard]] HRESULT CarregaMemoria() override;
  void EsvaziaMemoria() override;

private:
  static constexpr char kFonteH[] = "QZFileSingleReg.h";
  static constexpr NomeFuncao Nome(const char *lpMetodo) {
    return {"CQZFileSingleReg<", NomeTipoRegistro<T>::kNome, lpMetodo};
  }

  bool PrecisaGravar(const T &reg) const;
  [[nodiscard]] HRESULT GravaRegistro(const T &reg);
  bool SemConteudo();

  T m_reg{};
  bool m_bTemRegistro = false;  ///< the file holds m_reg; false for a missing file and one that is being created
};

template <typename T>
CQZFileSingleReg<T>::CQZFileSingleReg(const CString &sNomeArquivo, IDonoDeArquivos *pDataBase)
    : CQZFileBase(sNomeArquivo, pDataBase) {
  const CQZEscopoProfiler escopo(this, Nome(">::CQZFileSingleReg"), [&] {
    return ParametrosEscopo{{"sNomeArquivo", sNomeArquivo}};
  });
}

template <typename T>
HRESULT CQZFileSingleReg<T>::OnInicializa() {
  const CQZOperacao rastro(this, Nome(">::OnInicializa"), kFonteH);
  QZ_VERIFICA(rastro, "__super::OnInicializa()", CQZFileBase::OnInicializa());
  HRESULT hr = codigos::kOk;
  // A file without its record may be one that another program is creating at this moment, in several steps.
  Insiste(kTentativasAbertura, [&](bool bUltima) {
    if (QZ_FALHOU(rastro, hr, "AbreArquivo(eModoLeitura)", AbreArquivo(eModoLeitura)) || bUltima || !SemConteudo()) {
      return EVeredito::Acabou;
    }
    FechaArquivo();
    return EVeredito::OutraVez;
  });
  return Falhou(hr) ? hr : CarregaAoInicializar();
}

template <typename T>
HRESULT CQZFileSingleReg<T>::CarregaMemoria() {
  const CQZRastro rastro(this, Nome(">::OnInicializa"), kFonteH);
  std::uint64_t uiTamanho = 0;
  plataforma::FalhaArquivo falha = TamanhoDados(&uiTamanho);
  if (!falha && uiTamanho == 0 && ACriar()) {
    EsvaziaMemoria();
    return codigos::kOk;
  }
  if (falha.causa == plataforma::CausaArquivo::FimDeArquivo || (!falha && uiTamanho != sizeof(T))) {
    QZ_RETORNA_CODIGO(rastro, codigos::kTamanhoDiferente);
  }
  T reg{};
  if (!falha) {
    falha = Arquivo().Le(TamanhoCabecalho(), &reg, sizeof(T));
  }
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falha));
  m_reg = reg;
  m_bTemRegistro = true;
  return codigos::kOk;
}

template <typename T>
void CQZFileSingleReg<T>::EsvaziaMemoria() {
  m_reg = T{};
  m_bTemRegistro = false;
}

template <typename T>
HRESULT CQZFileSingleReg<T>::OnFinaliza() {
  const CQZEscopoProfiler escopo(this, Nome(">::OnFinaliza"));
  const plataforma::CQZTrava trava(Secao());
  if (ACriar()) {
    // An exception, such as memory running out, ended the write before it could undo its own creation.
    static_cast<void>(RestauraPendencia());
    DesfazCriacao();
  }
  const HRESULT hr = CQZFileBase::OnFinaliza();
  EsvaziaMemoria();
  return hr;
}

template <typename T>
HRESULT CQZFileSingleReg<T>::Le(T *pReg) {
  const CQZOperacao rastro(this, Nome(">::Le"), kFonteH);
  const plataforma::CQZTrava trava(Secao());
  QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
  if (!ExisteArquivo() || !m_bTemRegistro) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoAberto);
  }
  *pReg = m_reg;
  return codigos::kOk;
}

template <typename T>
HRESULT CQZFileSingleReg<T>::Grava(const T &reg) {
  const CQZOperacao rastro(this, Nome(">::Grava"), kFonteH);
  const plataforma::CQZTrava trava(Secao());
  QZ_VERIFICA(rastro, "AbreArquivo(eModoLeitura)", AsseguraMemoria());
  if (!PrecisaGravar(reg)) {
    QZ_VERIFICA(rastro, "RestauraPendencia()", RestauraPendencia());
    if (!PrecisaGravar(reg)) {
      return codigos::kOk;
    }
  }
  const auto abre = [&]() -> HRESULT {
    QZ_VERIFICA(rastro, "AbreArquivo()", AbreArquivo());
    return codigos::kOk;
  };
  const auto grava = [&]() -> HRESULT {
    QZ_VERIFICA(rastro, "GravaRegistro(reg)", GravaRegistro(reg));
    return codigos::kOk;
  };
  const HRESULT hr = TentaGravar(abre, grava);
  if (Falhou(hr)) {
    // A file without its record would keep the base from opening.
    DesfazCriacao();
  }
  return hr;
}

template <typename T>
bool CQZFileSingleReg<T>::PrecisaGravar(const T &reg) const {
  const CQZEscopoProfiler escopo(this, Nome(">::PrecisaGravar"));
  return std::memcmp(&m_reg, &reg, sizeof(T)) != 0;
}

/// True for an open file that ends with its header, or is empty.
template <typename T>
bool CQZFileSingleReg<T>::SemConteudo() {
  std::uint64_t uiTamanho = 0;
  return ExisteArquivo() && !TamanhoDados(&uiTamanho) && uiTamanho == 0;
}

/// One attempt. A file that this write creates has no old record.
template <typename T>
HRESULT CQZFileSingleReg<T>::GravaRegistro(const T &reg) {
  const CQZOperacao rastro(this, Nome(">::GravaRegistro"), kFonteH);
  // Without one, undoing cuts the file back to its header instead of leaving a record of zeros.
  const std::size_t cbAntes = m_bTemRegistro ? sizeof(T) : 0;
  Transacao().Inicia(TamanhoCabecalho(), TamanhoCabecalho() + cbAntes);
  Transacao().NotaAntigo(&m_reg, cbAntes);
  QZ_VERIFICA(rastro, "CatchGravacao(pEx)", CatchGravacao(Transacao().Grava(Arquivo(), &reg, sizeof(T), false)));
  QZ_VERIFICA(rastro, "Flush()", Flush());
  m_reg = reg;
  m_bTemRegistro = true;
  ConfirmaGravacao();
  return codigos::kOk;
}

#endif
