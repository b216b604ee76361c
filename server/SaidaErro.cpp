#include "server/SaidaErro.h"

#include <windows.h>

#include <array>
#include <cstdio>

namespace {

void Escreve(HANDLE hSaida, const CString &linha) {
  DWORD dwEscritos = 0;
  WriteFile(hSaida, linha.data(), static_cast<DWORD>(linha.size()), &dwEscritos, nullptr);
}

}  // namespace

void DizErro(const CString &texto) {
  const CString linha = texto + "\r\n";
  const HANDLE hErro = GetStdHandle(STD_ERROR_HANDLE);
  if (hErro != nullptr && hErro != INVALID_HANDLE_VALUE) {
    Escreve(hErro, linha);
    return;
  }
  if (!AttachConsole(ATTACH_PARENT_PROCESS)) {
    return;
  }
  const HANDLE hConsole =
      CreateFileA("CONOUT$", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  if (hConsole != INVALID_HANDLE_VALUE) {
    Escreve(hConsole, linha);
    CloseHandle(hConsole);
  }
  FreeConsole();
}

CString TextoCodigo(unsigned long codigo) {
  std::array<char, 16> texto{};
  std::snprintf(texto.data(), texto.size(), "0x%08lX", codigo);
  return texto.data();
}
