#include "server/ChamadaServico.h"

#include <windows.h>

#include "core/errors/guard/TraducaoExcecoes.h"

namespace {

/// The operations' own, in whose name this class traces.
constexpr char kFonteVeiculos[] = "QZDF_Veiculos.cpp";

}  // namespace

const IQZDF_Profiler *CChamadaServico::AposCeder(const IQZDF_Profiler &profiler) {
  Sleep(0);
  return &profiler;
}

HRESULT CChamadaServico::Guarda(CorpoSEH corpo, void *pContexto, const plataforma::AbandonoSEH &abandono) const {
  HRESULT hr = 0;
  const char *lpExpressao = "pfInSEHFuncao()";
  try {
    hr = ChamaSEH(corpo, pContexto, abandono);
  } catch (...) {
    hr = QZTranslateThrownExceptionToHresult();
    lpExpressao = "QZTranslateThrownExceptionToHresult()";
  }
  Rastreia(hr, lpExpressao);
  return hr;
}

void CChamadaServico::Rastreia(HRESULT hr, const char *lpExpressao) const {
  if (Falhou(hr)) {
    IgnoraFalhas([&] {
      const CQZRastro rastro(&m_profiler, {m_nome.lpNome}, kFonteVeiculos);
      static_cast<void>(rastro.FalhaVariavel(hr, lpExpressao, m_lpVariavel, m_nome.iLinha));
    });
  }
}
