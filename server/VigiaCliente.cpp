#include "server/VigiaCliente.h"

#include <objbase.h>

#include <algorithm>
#include <mutex>
#include <new>
#include <vector>

#include "server/EsperaProcesso.h"

namespace {

/// Time for the first call of a process that took the object over from the last one known, in milliseconds.
constexpr DWORD kPrimeiraChamada = 3000;

void *Exportada(const char *lpBiblioteca, const char *lpFuncao) {
  return reinterpret_cast<void *>(GetProcAddress(GetModuleHandleA(lpBiblioteca), lpFuncao));
}

/// True when the component platform releases by itself what dead clients held.
bool PlataformaRecolhe() {
  static const bool s_bRecolhe = Exportada("ntdll.dll", "wine_get_version") == nullptr;
  return s_bRecolhe;
}

}  // namespace

/// Shared with the waits, which may outlive the watch for a moment.
struct CVigiaCliente::Estado {
  std::mutex mutex;
  IObjetoVigiado *pObjeto;  ///< null once the watch is gone
  std::vector<std::unique_ptr<CEsperaProcesso>> chamadores;

  /// True when every caller has ended; false when none is known. Under the mutex.
  bool TodosTerminaram() const {
    return !chamadores.empty() && std::all_of(chamadores.begin(), chamadores.end(),
                                              [](const auto &spChamador) { return spChamador->Terminou(); });
  }

  /// The object, to be disconnected, or null when somebody may still hold it.
  IUnknown *Abandonado() {
    const std::lock_guard<std::mutex> trava(mutex);
    return pObjeto != nullptr && TodosTerminaram() ? pObjeto->SeguraSeVivo() : nullptr;
  }

  /// On a thread of the pool, when one of the callers has ended.
  void AoTerminar() {
    if (!AlguemVive()) {
      Sleep(kPrimeiraChamada);
      if (IUnknown *pVivo = Abandonado()) {
        CoDisconnectObject(pVivo, 0);
        pVivo->Release();
      }
    }
  }

  bool AlguemVive() {
    const std::lock_guard<std::mutex> trava(mutex);
    return !TodosTerminaram();
  }
};

CVigiaCliente::~CVigiaCliente() {
  if (m_spEstado != nullptr) {
    const std::lock_guard<std::mutex> trava(m_spEstado->mutex);
    m_spEstado->pObjeto = nullptr;
    m_spEstado->chamadores.clear();
  }
}

void CVigiaCliente::Comeca() noexcept {
  if (PlataformaRecolhe()) {
    return;
  }
  try {
    m_spEstado = std::make_shared<Estado>();
    m_spEstado->pObjeto = &m_objeto;
    m_bVigia = true;
  } catch (const std::bad_alloc &) {
    // Nobody is watched.
  }
}

/// The routine is looked up by name: it is exported by the runtime without a promise that it stays. The documented one,
/// RpcServerInqCallAttributes, raises an exception on the only platform where this runs.
DWORD CVigiaCliente::ProcessoQueChama() noexcept {
  using Consulta = LONG(WINAPI *)(void *hLigacao, unsigned long *pPid);
  static const auto consulta = reinterpret_cast<Consulta>(Exportada("rpcrt4.dll", "I_RpcBindingInqLocalClientPID"));
  unsigned long ulPid = 0;
  return consulta != nullptr && consulta(nullptr, &ulPid) == RPC_S_OK ? ulPid : 0;
}

void CVigiaCliente::Conhece(DWORD idProcesso) noexcept {
  const std::lock_guard<std::mutex> trava(m_spEstado->mutex);
  auto &chamadores = m_spEstado->chamadores;
  const auto mesmo = [idProcesso](const auto &spChamador) { return spChamador->IdProcesso() == idProcesso; };
  if (!m_bVigia || std::any_of(chamadores.begin(), chamadores.end(), mesmo)) {
    m_idUltimo = idProcesso;
    return;
  }
  try {
    auto spNovo = idProcesso != 0 && idProcesso != GetCurrentProcessId()
                      ? CEsperaProcesso::Comeca(idProcesso, [spEstado = m_spEstado] { spEstado->AoTerminar(); })
                      : nullptr;
    if (spNovo != nullptr) {
      std::erase_if(chamadores, [](const auto &spChamador) { return spChamador->Terminou(); });
      chamadores.push_back(std::move(spNovo));
      m_idUltimo = idProcesso;
      return;
    }
  } catch (...) {
    // As when the system does not allow the wait.
  }
  m_bVigia = false;
  chamadores.clear();
}
