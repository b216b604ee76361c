#ifndef KALVO_CORE_LOG_ESCOPOPROFILER_H
#define KALVO_CORE_LOG_ESCOPOPROFILER_H

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "core/log/ConfiguracaoLog.h"
#include "core/log/QZProfilerEmpresa.h"
#include "core/log/Rastro.h"
#include "core/platform/Tipos.h"

/// Names and values of an operation's parameters, in the order of the record; at most nine.
using ParametrosEscopo = std::vector<std::pair<const char *, CString>>;

/// One operation from entry to exit, as the log switches want it recorded: an entry record with its parameters when the
/// object is made, an exit record with duration and memory growth when it goes, an exception passing through included.
/// Lives on the stack of the operation:
///
///   const CQZEscopoProfiler escopo(this, {"CQZTextFile::Le"}, [&] {
///     return ParametrosEscopo{{"uiPosicao", std::to_string(uiPosicao)}};
///   });
///
/// With the switches off it costs the settings check and no text is built; the parameters are not even asked for.
/// Company, user and session are copied on entry: the profiler may be gone at the exit. Nothing is ever thrown.
class CQZEscopoProfiler {
public:
  /// For an operation without parameters. `pProfiler` may be null.
  CQZEscopoProfiler(const IQZDF_Profiler *pProfiler, const NomeFuncao &funcao) noexcept
      : CQZEscopoProfiler(pProfiler, funcao, [] { return ParametrosEscopo(); }) {}

  /// `formata` is a callable that gives the parameters.
  template <class Formata>
  CQZEscopoProfiler(const IQZDF_Profiler *pProfiler, const NomeFuncao &funcao, const Formata &formata) noexcept {
    if (RastreamentoHabilitado()) {
      Inicia(pProfiler, funcao, std::cref(formata));
    }
  }

  ~CQZEscopoProfiler() {
    if (m_aberto) {
      Fim();
    }
  }
  CQZEscopoProfiler(const CQZEscopoProfiler &) = delete;
  CQZEscopoProfiler &operator=(const CQZEscopoProfiler &) = delete;

private:
  struct Aberto;
  struct Descarta {
    void operator()(Aberto *pAberto) const;
  };

  void Inicia(const IQZDF_Profiler *pProfiler, const NomeFuncao &funcao,
              const std::function<ParametrosEscopo()> &formata) noexcept;
  void Fim() noexcept;

  /// What the exit record needs; null when the scope is not open.
  std::unique_ptr<Aberto, Descarta> m_aberto;
};

#endif
