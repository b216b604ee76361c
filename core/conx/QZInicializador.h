#ifndef KALVO_CORE_CONX_QZINICIALIZADOR_H
#define KALVO_CORE_CONX_QZINICIALIZADOR_H

#include "core/log/QZProfilerEmpresa.h"
#include "core/platform/Tipos.h"

/// Lifecycle of everything that works for a company, a user and a session: routines, databases and their files.
///
/// An object is usable only between a successful Inicializa and its Finaliza. Not synchronised: whoever shares an
/// object between threads keeps lifecycle calls apart from all others.
///
/// Finaliza must run while the most-derived part is still alive, or the overridden OnFinaliza is never reached and
/// files stay open: every most-derived class calls FinalizaNoDestrutor in its own destructor; the base destructor does
/// not.
class CQZInicializador : public CQZProfilerEmpresa {
public:
  CQZInicializador() = default;
  CQZInicializador(const CQZInicializador &) = delete;
  CQZInicializador &operator=(const CQZInicializador &) = delete;

  /// Stores the identity and runs OnInicializa. An initialised object is first finished under its old identity. After a
  /// failure the object is not initialised and OnFinaliza does not run: OnInicializa undoes its own part.
  [[nodiscard]] HRESULT Inicializa(const CString &sEmpresa, std::uint16_t iUsuario, LONG lNumeroSessao);

  /// The same with the identity of another routine.
  [[nodiscard]] HRESULT Inicializa(const IQZDF_Profiler &profiler);

  /// Runs OnFinaliza and ends the routine; on an object that is not initialised does nothing and returns 0.
  [[nodiscard]] HRESULT Finaliza();

  LONG GetNumeroSessao() const { return static_cast<LONG>(GetSessao()); }

  /// True between a successful Inicializa and Finaliza.
  bool EstaInicializado() const { return m_bInicializado; }

protected:
  /// Finaliza for destructors: the result and any exception are dropped.
  void FinalizaNoDestrutor() noexcept;

  /// Brings the object up under the identity already stored.
  [[nodiscard]] virtual HRESULT OnInicializa() = 0;
  /// Lets go of all that OnInicializa obtained.
  [[nodiscard]] virtual HRESULT OnFinaliza() = 0;
  virtual void OnSetMostrarMensagens() {}
  [[nodiscard]] virtual HRESULT OnReloadBuffer() { return 0; }
  [[nodiscard]] virtual HRESULT OnResetBuffer() { return 0; }

private:
  bool m_bInicializado = false;
};

#endif
