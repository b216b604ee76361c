#ifndef KALVO_CORE_LOG_RASTRO_H
#define KALVO_CORE_LOG_RASTRO_H

#include <cstdint>

#include "core/log/QZProfilerEmpresa.h"
#include "core/platform/Tipos.h"

// The error-check trace. Every inner call whose result matters is made through it:
//
//   const CQZRastro rastro(this, {"CQZFileBase::AbreArquivo"}, "QZFileBase.cpp");
//   QZ_VERIFICA(rastro, "GerenciaCabecalho()", GerenciaCabecalho());
//
// A failing result that is not among the expected codes leaves one error record and is returned from the enclosing
// function unchanged. The expression text is a literal of its own, never the text of the compiled call: readers of the
// error file search for these texts, and they must not change with the code.

/// Qualified name of a function, in pieces so that the names of templates cost nothing until a record is written:
/// {"CQZFile<", "struct RegVeiculo", ">::Le"}.
struct NomeFuncao {
  const char *inicio;
  const char *tipo = "";
  const char *fim = "";

  /// The whole name.
  CString Texto() const { return CString(inicio) + tipo + fim; }
};

/// One failure as it is handed to the sink.
struct FalhaRastreada {
  const IQZDF_Profiler *pProfiler;  ///< may be null
  NomeFuncao funcao;
  const char *lpArquivo;    ///< base name of the source file, with extension
  int iLinha;               ///< source line of the check
  const char *lpVariavel;   ///< name of the checked variable, "hr" nearly everywhere
  const char *lpExpressao;  ///< source text of the checked call
  HRESULT hr;
};

/// Receives every traced failure. Must not throw.
using SumidouroRastro = void (*)(const FalhaRastreada &falha);

/// Puts a sink in place, null for none; returns the one before. Any thread.
SumidouroRastro DefineSumidouroRastro(SumidouroRastro sumidouro);

/// Terminator of a list of expected codes.
inline constexpr HRESULT kFimCodigosEsperados = CodigoResultado(0xFFFFFFFF);

/// True when `hr` is in the list. Each entry is compared before it is tested for being the terminator, so a result of
/// 0xFFFFFFFF always counts as expected; readers of the error file rely on that.
bool ErroEsperado(HRESULT hr, const HRESULT *pCodigos);

/// The checks of one function: who it works for, its name and its source file. Lives on the function's stack.
class CQZRastro {
public:
  CQZRastro(const IQZDF_Profiler *pProfiler, NomeFuncao funcao, const char *lpArquivo)
      : m_pProfiler(pProfiler), m_funcao(funcao), m_lpArquivo(lpArquivo) {}

  /// Traces `hr` when it is negative and not expected. True when it was traced: the caller stops and returns `hr`.
  [[nodiscard]] bool Falha(HRESULT hr, const char *lpExpressao, int iLinha) const {
    return Falhou(hr) && Rastreia(hr, lpExpressao, "hr", iLinha);
  }

  /// The same for a result kept in a variable of another name.
  [[nodiscard]] bool FalhaVariavel(HRESULT hr, const char *lpExpressao, const char *lpVariavel, int iLinha) const {
    return Falhou(hr) && Rastreia(hr, lpExpressao, lpVariavel, iLinha);
  }

  /// Traces a code that the function raises itself and returns it, for `return rastro.Codigo(E_..., __LINE__)`. The
  /// expression is the code as it would be written: "((HRESULT)0x810809D9L)".
  [[nodiscard]] HRESULT Codigo(HRESULT hr, int iLinha) const;

private:
  bool Rastreia(HRESULT hr, const char *lpExpressao, const char *lpVariavel, int iLinha) const;

  const IQZDF_Profiler *m_pProfiler;
  NomeFuncao m_funcao;
  const char *m_lpArquivo;
};

/// Evaluates `chamada` once; on a traced failure returns its result from the enclosing function.
#define QZ_VERIFICA(rastro, texto, chamada)               \
  do {                                                    \
    const HRESULT hrVerificado_ = (chamada);              \
    if ((rastro).Falha(hrVerificado_, texto, __LINE__)) { \
      return hrVerificado_;                               \
    }                                                     \
  } while (false)

/// Evaluates `chamada` once into the variable `hr`, tracing a failure; true when it was traced.
#define QZ_FALHOU(rastro, hr, texto, chamada) ((rastro).Falha((hr) = (chamada), texto, __LINE__))

/// Returns a code of the function's own through the trace.
#define QZ_RETORNA_CODIGO(rastro, codigo) return (rastro).Codigo(codigo, __LINE__)

#endif
