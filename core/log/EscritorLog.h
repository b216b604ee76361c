#ifndef KALVO_CORE_LOG_ESCRITORLOG_H
#define KALVO_CORE_LOG_ESCRITORLOG_H

#include "core/log/QZProfilerEmpresa.h"
#include "core/platform/Tipos.h"

/// Kinds of records of the log files.
enum class ETipoRegistro { Entrou, Saiu, Erro };

inline constexpr char kArquivoProfiler[] = "QZProfiler.dat";
inline constexpr char kArquivoErros[] = "QZProfilerErros.dat";

/// Appends one line: the common columns, then `sResto` without its carriage returns and line feeds.
///
/// Errors go to "QZProfilerErros.dat" in the data directory of the profiler's company, or in the installation directory
/// when there is no profiler, no company or no such directory; the rest goes to "QZProfiler.dat" in the installation
/// directory. Whoever creates a file puts the header line first. Writers of all threads and processes share the files;
/// one that finds a file taken tries again at once, up to 19 attempts in all, and then drops its line. A line is in the
/// file whole or not at all. Every failure is swallowed. Any thread may call, several at once.
void GravaLinhaLog(const CString &sComuns, const CString &sResto, ETipoRegistro eTipo,
                   const IQZDF_Profiler *pProfiler) noexcept;

#endif
