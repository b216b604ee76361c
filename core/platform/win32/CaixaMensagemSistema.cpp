#include "core/platform/CaixaMensagem.h"

#include <windows.h>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

/// True when somebody sits before the windows of this process.
bool AlguemVe() {
  USEROBJECTFLAGS opcoes{};
  const HWINSTA estacao = ::GetProcessWindowStation();
  return estacao != nullptr && ::GetUserObjectInformationA(estacao, UOI_FLAGS, &opcoes, sizeof(opcoes), nullptr) &&
         (opcoes.dwFlags & WSF_VISIBLE) != 0 && ::GetThreadDesktop(::GetCurrentThreadId()) != nullptr;
}

BOOL CALLBACK GuardaPrincipal(HWND janela, LPARAM lDestino) {
  if (::GetWindow(janela, GW_OWNER) != nullptr || !::IsWindowVisible(janela)) {
    return TRUE;
  }
  *reinterpret_cast<HWND *>(lDestino) = janela;  // NOLINT(performance-no-int-to-ptr): how the platform hands it on
  return FALSE;
}

/// The first visible window of the calling thread that no other one owns.
HWND JanelaPrincipal() {
  HWND janela = nullptr;
  ::EnumThreadWindows(::GetCurrentThreadId(), GuardaPrincipal, reinterpret_cast<LPARAM>(&janela));
  return janela;
}

class CaixaMensagemSistema final : public ICaixaMensagem {
public:
  int Mostra(const CString &sTexto, const CString &sTitulo, std::uint32_t tipo, DonoCaixa eDono) override {
    if (!AlguemVe()) {
      return 0;
    }
    const HWND janela = eDono == DonoCaixa::JanelaDaThread ? JanelaPrincipal() : nullptr;
    return ::MessageBoxA(janela, sTexto.c_str(), sTitulo.c_str(), tipo);
  }
};

}  // namespace

ICaixaMensagem &CaixaMensagemDoSistema() {
  return Permanente<CaixaMensagemSistema>();
}

}  // namespace plataforma
