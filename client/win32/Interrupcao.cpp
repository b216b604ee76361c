#include "client/Interrupcao.h"

#include <windows.h>

#include <atomic>

#include "client/Console.h"

namespace {

std::atomic<int> g_iTrabalhos{0};
std::atomic<bool> g_bPedida{false};

/// Runs in a thread of its own.
BOOL WINAPI AoInterromper(DWORD dwMotivo) {
  if (g_iTrabalhos == 0 || g_bPedida.exchange(true)) {
    CPaginaConsole::Restaura();
    return FALSE;
  }
  if (dwMotivo != CTRL_C_EVENT && dwMotivo != CTRL_BREAK_EVENT) {
    // The system ends the process when this function returns, or in a few seconds. The work ends it before.
    Sleep(INFINITE);
  }
  return TRUE;
}

}  // namespace

void ObedeceInterrupcao() {
  SetConsoleCtrlHandler(AoInterromper, TRUE);
}

CTrabalhoInterrompivel::CTrabalhoInterrompivel() {
  ++g_iTrabalhos;
}

CTrabalhoInterrompivel::~CTrabalhoInterrompivel() {
  --g_iTrabalhos;
}

bool CTrabalhoInterrompivel::Pedida() {
  return g_bPedida;
}
