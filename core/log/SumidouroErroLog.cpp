#include "core/log/SumidouroErroLog.h"

#include "core/errors/DescricaoResultado.h"
#include "core/log/RegistroLog.h"

void SumidouroErroLog(const FalhaRastreada &falha) noexcept {
  try {
    GravaRegistroErro(falha.pProfiler, falha.funcao.Texto(), falha.lpArquivo, falha.iLinha,
                      LinhaDescrita(falha.lpExpressao, falha.lpVariavel, falha.hr));
  } catch (...) {
    // The record is lost; the failure that it tells of is returned to the caller all the same.
  }
}

void InstalaLogDeErros() {
  DefineSumidouroRastro(&SumidouroErroLog);
}
