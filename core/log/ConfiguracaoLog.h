#ifndef KALVO_CORE_LOG_CONFIGURACAOLOG_H
#define KALVO_CORE_LOG_CONFIGURACAOLOG_H

#include <cstdint>

#include "core/platform/Tipos.h"

// The log switches of the process, from section "Log" of "log.ini" in the installation directory (in the current
// directory when none is installed). They are read when first needed and again once they are older than the time-out
// that they themselves give ("TimeoutConfig", in seconds, 600 when absent). Any thread may call everything here,
// several at once; nothing throws. A reader sees each setting as it was before a reload or after it.

/// Reads the file again when that is due. Returns the time of the last load, in ticks of the machine; 0 means never.
std::uint64_t CarregaConfiguracaoLog() noexcept;

/// Reads the file again when that is due, then answers whether entry and exit records are wanted at all: something to
/// measure is on, and something to write. Costs a few nanoseconds when nothing is due.
bool RastreamentoHabilitado() noexcept;

/// The same answer from the settings in hand.
bool RastreamentoLigado() noexcept;

/// True when the processes to be traced ("Processos", fragments of names separated by ';', ',' or blanks) include this
/// one. `sProcesso` is in lower case and fragments are compared as written. "todos" anywhere in the setting means all.
bool ProcessoRastreado(const CString &sProcesso) noexcept;

// The switches in hand. A switch is on when its value is exactly 1.

bool LogEntrada() noexcept;      ///< write entry records
bool LogSaida() noexcept;        ///< write exit records
bool LogTrace() noexcept;        ///< read and kept; nothing depends on it
bool LogPerformance() noexcept;  ///< measure durations
bool LogMemory() noexcept;       ///< measure the process's memory

#endif
