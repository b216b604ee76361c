#include "server/SaidaErro.h"

#include <windows.h>

#include <array>
#include <cstdio>

#include "core/platform/win32/Posses.h"

namespace {

constexpr UINT kPaginaTextos = 1252;

std::wstring TextoLargo(const CString &sTexto) {
  std::wstring sLargo(sTexto.size(), L'\0');
  const int iTamanho = static_cast<int>(sTexto.size());
  sLargo.resize(static_cast<std::size_t>(
      MultiByteToWideChar(kPaginaTextos, 0, sTexto.data(), iTamanho, sLargo.data(), iTamanho)));
  return sLargo;
}

/// False when there is no such output. A program without a console may have been handed numbers that are no handles.
bool EscreveNoRedirecionado(const CString &sLinha) {
  const HANDLE hErro = GetStdHandle(STD_ERROR_HANDLE);
  DWORD dwEscritos = 0;
  return hErro != nullptr && hErro != INVALID_HANDLE_VALUE && GetFileType(hErro) != FILE_TYPE_UNKNOWN &&
         WriteFile(hErro, sLinha.data(), static_cast<DWORD>(sLinha.size()), &dwEscritos, nullptr);
}

void EscreveNoConsoleDoPai(const std::wstring &sLinha) {
  // Without one to attach to, or with one already, the console's name tells.
  const BOOL bAnexou = AttachConsole(ATTACH_PARENT_PROCESS);
  if (const plataforma::PosseHandle console(plataforma::NuloSeInvalido(CreateFileA(
          "CONOUT$", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr)));
      console) {
    DWORD dwEscritos = 0;
    WriteConsoleW(console.get(), sLinha.data(), static_cast<DWORD>(sLinha.size()), &dwEscritos, nullptr);
  }
  if (bAnexou) {
    FreeConsole();
  }
}

}  // namespace

void DizErro(const CString &sTexto) {
  const CString sLinha = sTexto + "\r\n";
  if (!EscreveNoRedirecionado(sLinha)) {
    EscreveNoConsoleDoPai(TextoLargo(sLinha));
  }
}

CString Texto1252(const std::wstring &sTexto) {
  const int iTamanho = static_cast<int>(sTexto.size());
  CString sSaida(sTexto.size(), '\0');
  sSaida.resize(static_cast<std::size_t>(
      WideCharToMultiByte(kPaginaTextos, 0, sTexto.data(), iTamanho, sSaida.data(), iTamanho, nullptr, nullptr)));
  return sSaida;
}

CString TextoCodigo(unsigned long codigo) {
  std::array<char, 16> sTexto{};
  std::snprintf(sTexto.data(), sTexto.size(), "0x%08lX", codigo);
  return sTexto.data();
}
