#include "core/conx/QZInicializador.h"

HRESULT CQZInicializador::Inicializa(const CString &sEmpresa, std::uint16_t iUsuario, LONG lNumeroSessao) {
  static_cast<void>(Finaliza());
  DefineIdentidade(sEmpresa, iUsuario, static_cast<std::uint32_t>(lNumeroSessao));
  const HRESULT hr = OnInicializa();
  m_bInicializado = !Falhou(hr);
  return hr;
}

HRESULT CQZInicializador::Inicializa(const IQZDF_Profiler &profiler) {
  return Inicializa(profiler.GetEmpresa(), profiler.GetUsuario(), static_cast<LONG>(profiler.GetSessao()));
}

HRESULT CQZInicializador::Finaliza() {
  if (!m_bInicializado) {
    return 0;
  }
  m_bInicializado = false;
  return OnFinaliza();
}

void CQZInicializador::FinalizaNoDestrutor() noexcept {
  try {
    static_cast<void>(Finaliza());
  } catch (...) {
    // Nobody is left to tell; the members' own destructors still close what is open.
    return;
  }
}
