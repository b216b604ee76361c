#ifndef KALVO_CORE_QZDATABASE_BANCO_CONTROLECRIACAO_H
#define KALVO_CORE_QZDATABASE_BANCO_CONTROLECRIACAO_H

#include "core/env/QZPath.h"
#include "core/log/QZProfilerEmpresa.h"

/// The list of the data files that the system has created in a module directory, so that one which has gone since is
/// reported instead of being created again empty. It is a text file of the same directory, one file name a line; the
/// line of a file that was deleted on purpose is empty.
inline constexpr char kArquivoControle[] = "QZDATABASE_FILE_CTRL.DAT";

/// One file's part in the list of its directory. Every operation opens the list, exclusively, and closes it again;
/// other processes' holds are waited for. Names are compared exactly, letter case included.
class CQZControleCriacao {
public:
  /// `dono` gives company, user and session; it and the name must outlive the object.
  CQZControleCriacao(const IQZDF_Profiler &dono, ModuloQZ eModulo, const CString &sNomeArquivo)
      : m_dono(dono), m_eModulo(eModulo), m_sNomeArquivo(sNomeArquivo) {}

  /// False for files that are never listed: "TRA" and "OFL" companions and the list itself.
  static bool Controlado(const CString &sNomeArquivo);

  /// Whether the file is listed.
  [[nodiscard]] HRESULT Possui(bool *pbPossui) const;
  /// Adds the file.
  [[nodiscard]] HRESULT Cria() const;
  /// Empties the file's first line; a file that is not listed, or a missing list, is no matter.
  [[nodiscard]] HRESULT Remove() const;

private:
  const IQZDF_Profiler &m_dono;
  ModuloQZ m_eModulo;
  const CString &m_sNomeArquivo;
};

#endif
