#ifndef KALVO_CORE_QZDATABASE_BANCO_QZDATABASEUTIL_H
#define KALVO_CORE_QZDATABASE_BANCO_QZDATABASEUTIL_H

#include <functional>

#include "core/platform/CArray.h"
#include "core/qzdatabase/arquivo/QZFile.h"
#include "core/qzdatabase/arquivo/QZFileSingleReg.h"
#include "core/qzdatabase/banco/QZBancoTemporario.h"

/// One-shot work on the files of a company, without a database that stays open. `pOwner` is the calling routine: its
/// company, user and session are used. Any thread may call; files that a shared database holds open are not for these
/// operations.
class CQZDataBaseUtil {
public:
  /// Reads a single-record file; a missing one is success and a zero record.
  template <typename T>
  [[nodiscard]] static HRESULT LeSingleReg(const IQZDF_Profiler *pOwner, ModuloQZ eModulo, T *pReg,
                                           const CString &sNomeArquivo);

  /// Writes a single-record file, when the record differs from what it holds (a missing file holds zeros). It is on the
  /// storage device when this returns: what the record vouches for may be taken away.
  template <typename T>
  [[nodiscard]] static HRESULT GravaSingleReg(const IQZDF_Profiler *pOwner, ModuloQZ eModulo, const T &reg,
                                              const CString &sNomeArquivo);

  /// Rewrites a record file without its first record; with one record or none the file goes. On failure the file is
  /// untouched and no companion is left. `sNomeArquivo` with '?' is a mask for a run of digits: the first file of the
  /// directory that fits is processed, none is success.
  ///
  /// `antesDaTroca`, when given, runs once the rewritten companion is complete on the storage device and before it
  /// replaces the file; its failure stops the work. `desfaz` runs when the replacement failed and the companion is
  /// still there, before it is deleted; its failure keeps the companion. Where the companion has vanished it does not
  /// run: the replacement may have taken place.
  template <typename T>
  [[nodiscard]] static HRESULT RemoveRegistroZero(const IQZDF_Profiler *pOwner, ModuloQZ eModulo,
                                                  const CString &sNomeArquivo,
                                                  const std::function<HRESULT()> &antesDaTroca = {},
                                                  const std::function<HRESULT()> &desfaz = {});

  /// The mask form on its own: a name without '?' fails with 0x810809F1.
  template <typename T>
  [[nodiscard]] static HRESULT RemoveRegistroZeroMascara(const IQZDF_Profiler *pOwner, ModuloQZ eModulo,
                                                         const CString &sMascara,
                                                         const std::function<HRESULT()> &antesDaTroca = {},
                                                         const std::function<HRESULT()> &desfaz = {});

  /// Puts the finished "TRA" companion in place of its file. Without a companion the rewrite produced no records, and
  /// the file itself is deleted.
  [[nodiscard]] static HRESULT RenomeiaArquivoTRA(const CString &sEmpresa, ModuloQZ eModulo,
                                                  const CString &sNomeArquivo);

  /// The same, for a companion that must exist: without one fails with 0x810809D6 and deletes nothing.
  [[nodiscard]] static HRESULT MoveTRA(const CString &sEmpresa, ModuloQZ eModulo, const CString &sNomeArquivo,
                                       const AntesDeMoverDeNovo &antesDeMoverDeNovo = {});

  /// Deletes a file; a missing one is success. On failure the file is in the list of created files as it was before.
  [[nodiscard]] static HRESULT DeletaArquivo(const CString &sEmpresa, ModuloQZ eModulo, const CString &sNomeArquivo);

private:
  static constexpr char kFonteH[] = "QZDataBaseUtil.h";

  // The parts of RemoveRegistroZero trace their own failures, under its name.

  /// Deals with a companion that an interrupted run left. Where its file exists the companion is deleted; where the
  /// file is missing the companion is the only copy, and when it is a whole number of records it is moved in place and
  /// `*pbAdotado` is true.
  [[nodiscard]] static HRESULT ResolveTRAEsquecido(const IQZDF_Profiler *pOwner, ModuloQZ eModulo,
                                                   const CString &sNomeArquivo, std::size_t cbRegistro,
                                                   bool *pbAdotado);

  /// The first file of the directory that fits the mask and whose run of digits is a number; empty when none does.
  [[nodiscard]] static HRESULT ProcuraPelaMascara(const IQZDF_Profiler *pOwner, ModuloQZ eModulo,
                                                  const CString &sMascara, CString *psNome);

  /// Writes all records but the first to the companion and flushes it; `*pbTemCompanheiro` tells whether there were
  /// any.
  template <typename T>
  [[nodiscard]] static HRESULT GravaTRASemRegistroZero(const IQZDF_Profiler *pOwner, ModuloQZ eModulo,
                                                       const CString &sNomeArquivo, bool *pbTemCompanheiro);

  template <typename T>
  [[nodiscard]] static HRESULT RemoveRegistroZeroDe(const IQZDF_Profiler *pOwner, ModuloQZ eModulo,
                                                    const CString &sNomeArquivo,
                                                    const std::function<HRESULT()> &antesDaTroca,
                                                    const std::function<HRESULT()> &desfaz);
};

template <typename T>
HRESULT CQZDataBaseUtil::LeSingleReg(const IQZDF_Profiler *pOwner, ModuloQZ eModulo, T *pReg,
                                     const CString &sNomeArquivo) {
  const CQZRastro rastro(pOwner, {"CQZDataBaseUtil::LeSingleReg"}, kFonteH);
  *pReg = T{};
  CQZBancoTemporario<CQZFileSingleReg<T>> temporario(eModulo, sNomeArquivo);
  QZ_VERIFICA(rastro, "qzDB.Inicializa(pOwner)", temporario.Banco().Inicializa(*pOwner));
  if (temporario.Arquivo().TemRegistro()) {
    QZ_VERIFICA(rastro, "qzFile.Le(pReg)", temporario.Arquivo().Le(pReg));
  }
  return codigos::kOk;
}

template <typename T>
HRESULT CQZDataBaseUtil::GravaSingleReg(const IQZDF_Profiler *pOwner, ModuloQZ eModulo, const T &reg,
                                        const CString &sNomeArquivo) {
  const CQZRastro rastro(pOwner, {"CQZDataBaseUtil::GravaSingleReg"}, kFonteH);
  CQZBancoTemporario<CQZFileSingleReg<T>> temporario(eModulo, sNomeArquivo);
  QZ_VERIFICA(rastro, "qzDB.Inicializa(pOwner)", temporario.Banco().Inicializa(*pOwner));
  QZ_VERIFICA(rastro, "qzFile.Grava(reg)", temporario.Arquivo().Grava(reg));
  QZ_VERIFICA(rastro, "qzFile.DescarregaNoDisco()", temporario.Arquivo().DescarregaNoDisco());
  return codigos::kOk;
}

template <typename T>
HRESULT CQZDataBaseUtil::RemoveRegistroZero(const IQZDF_Profiler *pOwner, ModuloQZ eModulo, const CString &sNomeArquivo,
                                            const std::function<HRESULT()> &antesDaTroca,
                                            const std::function<HRESULT()> &desfaz) {
  if (sNomeArquivo.find('?') != CString::npos) {
    return RemoveRegistroZeroMascara<T>(pOwner, eModulo, sNomeArquivo, antesDaTroca, desfaz);
  }
  return RemoveRegistroZeroDe<T>(pOwner, eModulo, sNomeArquivo, antesDaTroca, desfaz);
}

template <typename T>
HRESULT CQZDataBaseUtil::RemoveRegistroZeroMascara(const IQZDF_Profiler *pOwner, ModuloQZ eModulo,
                                                   const CString &sMascara,
                                                   const std::function<HRESULT()> &antesDaTroca,
                                                   const std::function<HRESULT()> &desfaz) {
  CString sNome;
  const HRESULT hr = ProcuraPelaMascara(pOwner, eModulo, sMascara, &sNome);
  return sNome.empty() ? hr : RemoveRegistroZeroDe<T>(pOwner, eModulo, sNome, antesDaTroca, desfaz);
}

template <typename T>
HRESULT CQZDataBaseUtil::RemoveRegistroZeroDe(const IQZDF_Profiler *pOwner, ModuloQZ eModulo,
                                              const CString &sNomeArquivo, const std::function<HRESULT()> &antesDaTroca,
                                              const std::function<HRESULT()> &desfaz) {
  const CQZRastro rastro(pOwner, {"CQZDataBaseUtil::RemoveRegistroZero"}, kFonteH);
  const CString sEmpresa = pOwner->GetEmpresa();
  const CString sNomeTRA = CQZPath::ChangeExtension(sNomeArquivo, "TRA");
  bool bAdotado = false;
  HRESULT hr = ResolveTRAEsquecido(pOwner, eModulo, sNomeArquivo, sizeof(T), &bAdotado);
  if (Falhou(hr) || bAdotado) {
    return hr;
  }

  bool bTemCompanheiro = false;
  hr = GravaTRASemRegistroZero<T>(pOwner, eModulo, sNomeArquivo, &bTemCompanheiro);
  if (Falhou(hr) || (bTemCompanheiro && antesDaTroca && QZ_FALHOU(rastro, hr, "antesDaTroca()", antesDaTroca()))) {
    static_cast<void>(DeletaArquivo(sEmpresa, eModulo, sNomeTRA));
    return hr;
  }
  // Nothing is left but the dropped record: the file goes, as a rewrite without records asks for.
  if (!bTemCompanheiro) {
    QZ_VERIFICA(rastro, "RenomeiaArquivoTRA(pOwner->GetEmpresa(), eModulo, sNomeArquivo)",
                RenomeiaArquivoTRA(sEmpresa, eModulo, sNomeArquivo));
    return codigos::kOk;
  }
  if (QZ_FALHOU(rastro, hr, "RenomeiaArquivoTRA(pOwner->GetEmpresa(), eModulo, sNomeArquivo)",
                MoveTRA(sEmpresa, eModulo, sNomeArquivo))) {
    // Gone, it may have been moved although the call said otherwise: then nothing may be taken back.
    bool bAindaEsta = false;
    const CString sCaminhoTRA = CQZPath::CaminhoArquivo(eModulo, sEmpresa, sNomeTRA);
    if (!plataforma::Arquivos().Existe(sCaminhoTRA, &bAindaEsta) && bAindaEsta && (!desfaz || !Falhou(desfaz()))) {
      static_cast<void>(DeletaArquivo(sEmpresa, eModulo, sNomeTRA));
    }
  }
  return hr;
}

template <typename T>
HRESULT CQZDataBaseUtil::GravaTRASemRegistroZero(const IQZDF_Profiler *pOwner, ModuloQZ eModulo,
                                                 const CString &sNomeArquivo, bool *pbTemCompanheiro) {
  const CQZRastro rastro(pOwner, {"CQZDataBaseUtil::RemoveRegistroZero"}, kFonteH);
  CQZBancoTemporario<CQZFile<T>> origem(eModulo, sNomeArquivo);
  CQZBancoTemporario<CQZFile<T>> companheiro(eModulo, CQZPath::ChangeExtension(sNomeArquivo, "TRA"));
  QZ_VERIFICA(rastro, "qzDB.Inicializa(pOwner)", origem.Banco().Inicializa(*pOwner));
  QZ_VERIFICA(rastro, "qzDB.Inicializa(pOwner)", companheiro.Banco().Inicializa(*pOwner));

  if (companheiro.Arquivo().ExisteArquivo()) {
    // Deleted before, and somebody else's now: appending to it would mix two files.
    QZ_RETORNA_CODIGO(rastro, codigos::kTraNaoRenomeado);
  }
  const CQZBlocosRegistros<T> *pRegistros = origem.Arquivo().GetPtrArrayRegistros();
  *pbTemCompanheiro = pRegistros->GetSize() > 1;
  if (!*pbTemCompanheiro) {
    return codigos::kOk;
  }
  CArray<T> aRegistros;
  aRegistros.SetSize(pRegistros->GetSize() - 1);
  for (std::size_t idx = 0; idx < aRegistros.GetSize(); ++idx) {
    aRegistros[idx] = (*pRegistros)[idx + 1];
  }
  std::uint64_t uiPosicao = 0;
  QZ_VERIFICA(rastro, "qzFileTRA.GravaColecao(uiPosicao, aRegistros)",
              companheiro.Arquivo().GravaColecao(uiPosicao, aRegistros));
  QZ_VERIFICA(rastro, "qzFileTRA.DescarregaNoDisco()", companheiro.Arquivo().DescarregaNoDisco());
  return codigos::kOk;
}

#endif
