#ifndef KALVO_CORE_LOG_REGISTROLOG_H
#define KALVO_CORE_LOG_REGISTROLOG_H

#include "core/log/EscritorLog.h"
#include "core/log/QZProfilerEmpresa.h"
#include "core/platform/Tipos.h"

// What the records of the log files hold. Columns are texts, each followed by a tab.

/// Who a record is about, apart from the profiler's identity.
struct OrigemRegistro {
  CString sFuncao;        ///< qualified name of the operation
  CString sGuid;          ///< ties the exit record to its entry record
  CString sProcesso;      ///< base name of the program file, in lower case
  CString sUsuarioLocal;  ///< account that runs the process
};

/// The columns that all records begin with, from "Data" to "MemoriaTotal". An empty text of the origin is left out with
/// its tab, so that later columns move to the left. Without a profiler its four columns stay empty.
CString ColunasComuns(const IQZDF_Profiler *pProfiler, const OrigemRegistro &origem, ETipoRegistro eTipo);

/// Private bytes of the process; 0 when they cannot be had.
std::uint64_t MemoriaDoProcesso();

/// A number as it stands in a record: signed, with its tab.
CString ColunaNumero(std::uint64_t valor);

/// Writes the record of a traced failure, whatever the log switches say. `lpArquivo` is the base name of the source
/// file, `sLog` the described line. Never throws; a record that cannot be written is lost. Any thread may call.
void GravaRegistroErro(const IQZDF_Profiler *pProfiler, const CString &sFuncao, const char *lpArquivo, int iLinha,
                       const CString &sLog) noexcept;

#endif
