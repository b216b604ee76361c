#ifndef KALVO_CORE_LOG_SUMIDOUROERROLOG_H
#define KALVO_CORE_LOG_SUMIDOUROERROLOG_H

#include "core/log/Rastro.h"

/// Turns a traced failure into a record of the error file. Never throws. Any thread may call.
void SumidouroErroLog(const FalhaRastreada &falha) noexcept;

/// Makes SumidouroErroLog the sink of the error-check trace; the process does so once, when it starts.
void InstalaLogDeErros();

#endif
