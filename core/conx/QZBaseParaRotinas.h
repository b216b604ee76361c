#ifndef KALVO_CORE_CONX_QZBASEPARAROTINAS_H
#define KALVO_CORE_CONX_QZBASEPARAROTINAS_H

#include "core/conx/QZInicializador.h"
#include "core/conx/QZUltimoErro.h"

/// Base of the business routines. Its OnInicializa and OnFinaliza are the defaults that every routine's override calls
/// first and checks.
class CQZBaseParaRotinas : public CQZInicializador, public CQZUltimoErro {
protected:
  [[nodiscard]] HRESULT OnInicializa() override { return 0; }
  [[nodiscard]] HRESULT OnFinaliza() override { return 0; }
};

#endif
