#ifndef KALVO_CORE_QZDATABASE_BANCO_QZDATABASE_H
#define KALVO_CORE_QZDATABASE_BANCO_QZDATABASE_H

#include "core/conx/QZInicializador.h"
#include "core/platform/CArray.h"
#include "core/platform/SecaoCritica.h"
#include "core/qzdatabase/arquivo/DonoDeArquivos.h"

/// The set of files of one module for one company. It does not own its files: they are members of the concrete database
/// (or locals beside a temporary one), register themselves on construction and leave on destruction.
///
/// A concrete database finishes itself in its own destructor, while its files are alive.
class CQZDataBase : public CQZInicializador, public IDonoDeArquivos {
public:
  /// `eNivelArquivos` is the place of the files' locks in the lock order: ArquivoDados for a shared database.
  explicit CQZDataBase(ModuloQZ eModulo, plataforma::NivelTrava eNivelArquivos = plataforma::NivelTrava::Temporario);
  ~CQZDataBase() override;

  void AddFile(CQZFileBase *pFile) override;
  void RemoveFile(CQZFileBase *pFile) override;

  ModuloQZ GetModulo() const override { return m_eModulo; }
  plataforma::NivelTrava NivelDosArquivos() const override { return m_eNivelArquivos; }

  /// From now on new files of this database bring their headers up to date only when they are finished.
  void AdiaFlush() { m_bFlushAdiado = true; }
  bool FlushAdiado() const override { return m_bFlushAdiado; }

  /// Puts the finished "TRA" companions of a group of files in place. `sFileName` is the name of the group's files,
  /// without directory, with '?' for each digit in which they differ, anywhere in the name. The first failure stops;
  /// companions not yet moved stay.
  [[nodiscard]] HRESULT RenomeiaGroup(const CString &sFileName);

  /// The database's own lock, taken briefly around reading a record count.
  plataforma::SecaoCritica &Secao() { return m_secao; }

protected:
  /// Initialises the files in the order of their registration; the first failure stops, and the files that were
  /// already up are finished.
  [[nodiscard]] HRESULT OnInicializa() override;

  /// Finishes all files; failures are traced, the last result is returned.
  [[nodiscard]] HRESULT OnFinaliza() override;

private:
  ModuloQZ m_eModulo;
  plataforma::NivelTrava m_eNivelArquivos;
  bool m_bFlushAdiado = false;
  plataforma::SecaoCritica m_secao;
  CArray<CQZFileBase *> m_aFiles;
};

#endif
