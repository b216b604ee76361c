#include <windows.h>

#include "server/Modulo.h"

int WINAPI WinMain(HINSTANCE /*hInstancia*/, HINSTANCE /*hAnterior*/, LPSTR lpLinhaComando, int /*iMostra*/) {
  return CKalvoModule().Executa(lpLinhaComando);
}
