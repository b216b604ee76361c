#include "client/RegistroClasses.h"

#include <objbase.h>

#include <array>
#include <vector>

std::optional<CValorClasse> ProcuraClasse(const std::wstring &sChave) {
  const std::optional<CValorClasse> valor = ProcuraClasseEm(HKEY_CURRENT_USER, sChave);
  return valor ? valor : ProcuraClasseEm(HKEY_LOCAL_MACHINE, sChave);
}

std::optional<CValorClasse> ProcuraClasseEm(HKEY hRaiz, const std::wstring &sChave) {
  const std::wstring sCaminho = L"Software\\Classes\\" + sChave;
  DWORD dwBytes = 0;
  if (RegGetValueW(hRaiz, sCaminho.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, nullptr, &dwBytes) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  std::vector<wchar_t> aTexto(dwBytes / sizeof(wchar_t) + 1);
  dwBytes = static_cast<DWORD>(aTexto.size() * sizeof(wchar_t));
  if (RegGetValueW(hRaiz, sCaminho.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, aTexto.data(), &dwBytes) !=
      ERROR_SUCCESS) {
    return std::nullopt;
  }
  return CValorClasse{aTexto.data(), hRaiz == HKEY_CURRENT_USER ? "HKCU" : "HKLM"};
}

std::wstring TextoGuid(const GUID &guid) {
  std::array<wchar_t, 40> aTexto{};
  StringFromGUID2(guid, aTexto.data(), static_cast<int>(aTexto.size()));
  return aTexto.data();
}

std::wstring ProgramaDaLinha(const std::wstring &sLinha) {
  if (sLinha.empty() || sLinha.front() != L'"') {
    return sLinha;
  }
  return sLinha.substr(1, sLinha.find(L'"', 1) - 1);
}

bool ExisteArquivo(const std::wstring &sCaminho) {
  const DWORD dwAtributos = GetFileAttributesW(sCaminho.c_str());
  return dwAtributos != INVALID_FILE_ATTRIBUTES && (dwAtributos & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::string VersaoDoArquivo(const std::wstring &sCaminho) {
  std::vector<char> aBytes(GetFileVersionInfoSizeW(sCaminho.c_str(), nullptr));
  void *pFixa = nullptr;
  UINT uiTamanho = 0;
  if (aBytes.empty() || !GetFileVersionInfoW(sCaminho.c_str(), 0, static_cast<DWORD>(aBytes.size()), aBytes.data()) ||
      !VerQueryValueW(aBytes.data(), L"\\", &pFixa, &uiTamanho) || uiTamanho < sizeof(VS_FIXEDFILEINFO)) {
    return "";
  }
  const auto &fixa = *static_cast<const VS_FIXEDFILEINFO *>(pFixa);
  return std::to_string(HIWORD(fixa.dwFileVersionMS)) + "." + std::to_string(LOWORD(fixa.dwFileVersionMS)) + "." +
         std::to_string(HIWORD(fixa.dwFileVersionLS)) + "." + std::to_string(LOWORD(fixa.dwFileVersionLS));
}
