#include "server/Modulo.h"

#include <windows.h>
//
#include <objbase.h>

#include "core/errors/QZMensagem.h"
#include "core/errors/guard/TraducaoExcecoes.h"
#include "core/log/QZProfilerEmpresa.h"
#include "core/log/Rastro.h"
#include "core/log/SumidouroErroLog.h"
#include "server/LinhaComando.h"
#include "server/MonitorEncerramento.h"
#include "server/RegistroServidor.h"
#include "server/SaidaErro.h"
#include "server/TratamentoExcecoes.h"

namespace {

constexpr char kFonteModulo[] = "Modulo.cpp";

/// Pause between the end of the message loop and the revocation of the class object, in milliseconds: what had begun
/// before the suspension comes through.
constexpr DWORD kPausa = 1000;

/// Time for which the class object still answers after its revocation, in milliseconds: a client that had found it a
/// moment before is about to create its object.
constexpr DWORD kUltimosClientes = 250;

/// The multithreaded apartment for a scope. A thread that is already in another apartment is left as it is.
class CApartamento {
public:
  CApartamento() : m_bEntrou(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {}
  ~CApartamento() {
    if (m_bEntrou) {
      CoUninitialize();
    }
  }
  CApartamento(const CApartamento &) = delete;
  CApartamento &operator=(const CApartamento &) = delete;

private:
  bool m_bEntrou;
};

HRESULT DefineSeguranca() {
  const HRESULT hr = CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_NONE,
                                          RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
  // A host of the common language runtime has chosen the apartment already.
  return hr == RPC_E_CHANGED_MODE && GetModuleHandleA("Mscoree.dll") != nullptr ? S_OK : hr;
}

/// Says why the process cannot serve, to whoever started it and to the error log: when the component platform started
/// it, nobody else listens.
void RelataFalha(const CString &sOque, const char *lpChamada, HRESULT hr) {
  DizErro("Kalvo: falha ao " + sOque + ": " + TextoCodigo(static_cast<unsigned long>(hr)));
  const CQZProfilerEmpresa profiler;
  static_cast<void>(CQZRastro(&profiler, {"CKalvoModule::Executa"}, kFonteModulo).Falha(hr, lpChamada, __LINE__));
}

/// Runs the message loop until a quit message.
void ProcessaMensagens() {
  MSG mensagem;
  while (GetMessageA(&mensagem, nullptr, 0, 0) > 0) {
    TranslateMessage(&mensagem);
    DispatchMessageA(&mensagem);
  }
}

}  // namespace

int CKalvoModule::Executa(const char *lpLinhaComando) {
  SetErrorMode(SEM_FAILCRITICALERRORS);
  // First of all: whatever fails from here on is to be found in the error log.
  InstalaLogDeErros();
  CQZMensagem::Instala();
  if (!m_contagem.Pronta()) {
    DizErro("Kalvo: o sistema n\xE3o deu os recursos para iniciar");
    return -1;
  }
  const CApartamento apartamento;
  DesligaTratamentoDeExcecoes();
  HRESULT hr = DefineSeguranca();
  if (FAILED(hr)) {
    RelataFalha(
        "definir a seguran\xE7"
        "a COM",
        "DefineSeguranca()", hr);
    return hr;
  }
  const EComando eComando = LeLinhaComando(lpLinhaComando);
  if (eComando != EComando::Serve) {
    return ExecutaRegistro(eComando);
  }
  m_msPrimeiroUso = IniciadoParaCliente(lpLinhaComando) ? kTempoPrimeiroUso : INFINITE;
  try {
    hr = Serve();
  } catch (...) {
    hr = QZTranslateThrownExceptionToHresult();
  }
  if (FAILED(hr)) {
    RelataFalha("iniciar o servidor", "Serve()", hr);
  }
  return hr;
}

HRESULT CKalvoModule::Serve() {
  // An activation that got in while the class object was being revoked has its object by now, or had it and let it go
  // a moment ago: the process goes on as if it had never thought of ending.
  HRESULT hr = S_OK;
  do {
    hr = Atende();
  } while (SUCCEEDED(hr) && m_contagem.EmUso());
  return hr;
}

/// Registers the class object and serves until the process is out of use; the class object is revoked on return.
/// Whoever found it before that has its object by then.
HRESULT CKalvoModule::Atende() {
  const CClasseAlcancavel alcancavel(m_classe);
  {
    const CRegistroClasse registro(m_classe);
    if (FAILED(registro.Resultado())) {
      return registro.Resultado();
    }
    MSG mensagem;
    PeekMessageA(&mensagem, nullptr, WM_USER, WM_USER, PM_NOREMOVE);  // makes the queue that the monitor posts to
    do {
      const CMonitorEncerramento monitor(m_contagem, GetCurrentThreadId(), m_msPrimeiroUso);
      const HRESULT hr = CoResumeClassObjects();
      if (FAILED(hr)) {
        return hr;
      }
      ProcessaMensagens();
      Sleep(kPausa);
    } while (m_contagem.EmUso());
  }
  Sleep(kUltimosClientes);
  return S_OK;
}
