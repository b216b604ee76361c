#ifndef KALVO_SERVER_VALORESREGISTRO_H
#define KALVO_SERVER_VALORESREGISTRO_H

#include <string>
#include <vector>

// What the registration consists of. Keys are relative to a classes root (`Software\Classes` of the machine or of a
// user).

/// One text value; an empty name is the key's default value.
struct ValorRegistro {
  std::wstring chave;
  std::wstring nome;
  std::wstring texto;
};

/// Application identity and class, served by this executable.
std::vector<ValorRegistro> ValoresDoServidor(const std::wstring &sExecutavel);

/// Whose classes: 32-bit programs have keys of their own for interfaces and the DLLs that they load. All other keys of
/// the registration, those of the local server among them, programs of both kinds find in the one place.
enum class EVisao { De64Bits, De32Bits };

/// The interface and its proxy/stub for the programs of one kind, as the DLL's own registration writes them.
std::vector<ValorRegistro> ValoresDoProxy(EVisao eVisao, const std::wstring &sProxy);

/// Keys that a registration may create or change, the type library's included, each with all below it.
std::vector<std::wstring> ChavesTocadas();

/// Keys that an unregistration removes with all below them; that of the type library is the platform's to remove. The
/// application identity stays.
std::vector<std::wstring> ChavesRemovidas();

/// Key of version 1.0 of the type library.
std::wstring ChaveDaBiblioteca();

#endif
