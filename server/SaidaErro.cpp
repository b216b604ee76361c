#include "server/SaidaErro.h"

#include <windows.h>

#include <array>
#include <cstdio>

#include "core/platform/win32/Posses.h"

namespace {

constexpr UINT kPaginaTextos = 1252;

std::wstring TextoLargo(const CString &texto) {
  std::wstring largo(texto.size(), L'\0');
  const int iTamanho = static_cast<int>(texto.size());
  largo.resize(
      static_cast<std::size_t>(MultiByteToWideChar(kPaginaTextos, 0, texto.data(), iTamanho, largo.data(), iTamanho)));
  return largo;
}

/// False when there is no such output. A program without a console may have been handed numbers that are no handles.
bool EscreveNoRedirecionado(const CString &linha) {
  const HANDLE hErro = GetStdHandle(STD_ERROR_HANDLE);
  DWORD dwEscritos = 0;
  return hErro != nullptr && hErro != INVALID_HANDLE_VALUE && GetFileType(hErro) != FILE_TYPE_UNKNOWN &&
         WriteFile(hErro, linha.data(), static_cast<DWORD>(linha.size()), &dwEscritos, nullptr);
}

void EscreveNoConsoleDoPai(const std::wstring &linha) {
  // Without one to attach to, or with one already, the console's name tells.
  const BOOL bAnexou = AttachConsole(ATTACH_PARENT_PROCESS);
  if (const plataforma::PosseHandle console(plataforma::NuloSeInvalido(CreateFileA(
          "CONOUT$", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr)));
      console) {
    DWORD dwEscritos = 0;
    WriteConsoleW(console.get(), linha.data(), static_cast<DWORD>(linha.size()), &dwEscritos, nullptr);
  }
  if (bAnexou) {
    FreeConsole();
  }
}

}  // namespace

void DizErro(const CString &texto) {
  const CString linha = texto + "\r\n";
  if (!EscreveNoRedirecionado(linha)) {
    EscreveNoConsoleDoPai(TextoLargo(linha));
  }
}

CString Texto1252(const std::wstring &texto) {
  const int iTamanho = static_cast<int>(texto.size());
  CString saida(texto.size(), '\0');
  saida.resize(static_cast<std::size_t>(
      WideCharToMultiByte(kPaginaTextos, 0, texto.data(), iTamanho, saida.data(), iTamanho, nullptr, nullptr)));
  return saida;
}

CString TextoCodigo(unsigned long codigo) {
  std::array<char, 16> texto{};
  std::snprintf(texto.data(), texto.size(), "0x%08lX", codigo);
  return texto.data();
}
