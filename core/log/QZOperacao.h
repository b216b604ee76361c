#ifndef KALVO_CORE_LOG_QZOPERACAO_H
#define KALVO_CORE_LOG_QZOPERACAO_H

#include "core/log/EscopoProfiler.h"
#include "core/log/Rastro.h"

/// The checks of a public operation, which also leaves entry and exit records when the log switches want them. Lives on
/// the operation's stack.
class CQZOperacao : public CQZRastro {
public:
  CQZOperacao(const IQZDF_Profiler *pProfiler, const NomeFuncao &funcao, const char *lpArquivo)
      : CQZRastro(pProfiler, funcao, lpArquivo), m_escopo(pProfiler, funcao) {}

  /// `formata` gives the parameters of the entry record; it is called only when one is written.
  template <class Formata>
  CQZOperacao(const IQZDF_Profiler *pProfiler, const NomeFuncao &funcao, const char *lpArquivo, const Formata &formata)
      : CQZRastro(pProfiler, funcao, lpArquivo), m_escopo(pProfiler, funcao, formata) {}

private:
  CQZEscopoProfiler m_escopo;
};

#endif
