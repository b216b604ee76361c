#ifndef KALVO_CLIENT_REGISTROCLASSES_H
#define KALVO_CLIENT_REGISTROCLASSES_H

// What the component platform finds in the registry about the service.

#include <windows.h>

#include <optional>
#include <string>

/// A text value below Software\Classes and the hive that it came from.
struct CValorClasse {
  std::wstring sTexto;
  const char *pRaiz;  ///< "HKCU" or "HKLM"
};

/// The default value of a key, the user's before the machine's, as the platform looks for it.
std::optional<CValorClasse> ProcuraClasse(const std::wstring &sChave);

/// The same in one hive.
std::optional<CValorClasse> ProcuraClasseEm(HKEY hRaiz, const std::wstring &sChave);

/// "{68409b5a-adf8-424f-a93a-bac1844e3253}"
std::wstring TextoGuid(const GUID &guid);

/// The program of a LocalServer32 command line: without quotes and arguments.
std::wstring ProgramaDaLinha(const std::wstring &sLinha);

bool ExisteArquivo(const std::wstring &sCaminho);

/// "1.0.0.0"; empty for a file without version information.
std::string VersaoDoArquivo(const std::wstring &sCaminho);

#endif
