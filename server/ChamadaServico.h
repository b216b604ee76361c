#ifndef KALVO_SERVER_CHAMADASERVICO_H
#define KALVO_SERVER_CHAMADASERVICO_H

#include <type_traits>

#include "core/errors/guard/win32/ChamadaSEH.h"
#include "core/log/EscopoProfiler.h"
#include "core/log/QZProfilerEmpresa.h"
#include "core/log/Rastro.h"

/// Qualified name of an operation and the source line that a traced failure names: the line where the name is given.
struct NomeOperacao {
  /// Implicit: operations pass their name as a plain literal.
  NomeOperacao(const char *lpTexto, int iLinhaDeQuemChama = __builtin_LINE())
      : lpNome(lpTexto), iLinha(iLinhaDeQuemChama) {}

  const char *lpNome;
  int iLinha;
};

/// One operation of the service object from entry to exit. Lives on the stack of the operation, outside the frame that
/// a machine fault abandons.
///
/// Nothing leaves it but a result code: a machine fault and a thrown exception become one, are traced under the
/// operation's name, and are returned.
class CChamadaServico {
public:
  /// `profiler` and the texts must outlive the object; `lpVariavel` is the name under which a failure is traced.
  CChamadaServico(const IQZDF_Profiler &profiler, const NomeOperacao &nome, const char *lpVariavel = "hr")
      : CChamadaServico(profiler, nome, lpVariavel, [] { return ParametrosEscopo(); }) {}

  /// `formata` gives the parameters of the entry record; it is called only when one is written, outside the guard.
  template <class Formata>
  CChamadaServico(const IQZDF_Profiler &profiler, const NomeOperacao &nome, const char *lpVariavel,
                  const Formata &formata)
      : m_profiler(profiler),
        m_nome(nome),
        m_lpVariavel(lpVariavel),
        m_escopo(AposCeder(profiler), {nome.lpNome}, formata) {}

  /// Runs `corpo`, a callable that returns HRESULT, under the guard.
  template <class Corpo>
  HRESULT Guarda(Corpo &&corpo) const {
    return Guarda(corpo, [] {});
  }

  /// The same; `abandona` lets go of what stands outside the guard when somebody further out, such as the component
  /// platform, takes an exception that the guard lets pass, and goes on without ever coming back here. It must not
  /// throw.
  template <class Corpo, class Abandona>
  HRESULT Guarda(Corpo &&corpo, Abandona &&abandona) const {
    using TipoCorpo = std::remove_reference_t<Corpo>;
    using TipoAbandona = std::remove_reference_t<Abandona>;
    return Guarda([](void *pContexto) -> HRESULT { return (*static_cast<TipoCorpo *>(pContexto))(); }, &corpo,
                  {[](void *pContexto) { (*static_cast<TipoAbandona *>(pContexto))(); }, &abandona});
  }

private:
  /// The profiler, after yielding: every operation does once on entry, before its scope opens.
  static const IQZDF_Profiler *AposCeder(const IQZDF_Profiler &profiler);

  HRESULT Guarda(CorpoSEH corpo, void *pContexto, const plataforma::AbandonoSEH &abandono) const;
  void Rastreia(HRESULT hr, const char *lpExpressao) const;

  const IQZDF_Profiler &m_profiler;
  NomeOperacao m_nome;
  const char *m_lpVariavel;
  CQZEscopoProfiler m_escopo;
};

/// Runs work whose failure nobody can do anything about, such as letting go of an object that met a fault: neither an
/// exception nor a machine fault leaves it.
template <class Corpo>
void IgnoraFalhas(Corpo &&corpo) {
  try {
    auto semResultado = [&corpo]() -> HRESULT {
      corpo();
      return 0;
    };
    static_cast<void>(ChamaSEH(semResultado));
  } catch (...) {
    // Deliberately nothing: see above.
  }
}

#endif
