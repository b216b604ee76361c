#ifndef KALVO_CLIENT_DIAGNOSTICO_H
#define KALVO_CLIENT_DIAGNOSTICO_H

#include <cstdint>
#include <string>

/// Whose base is looked at.
struct CAbertura {
  std::string sEmpresa;  ///< empty: none
  std::uint16_t iUsuario = 0;
  std::int32_t iSessao = 0;
};

/// Looks at the installation from a client's side and writes what it finds, a line per finding, and below each fault
/// what to do: the registration of class, type library and interface with the files that it names, the suite's
/// directories, the company's registration when one is given, whether data files carry headers, which servers run,
/// whether a service object can be created and how long that takes. Changes nothing but for starting the server. With
/// bAbre it opens the company, as every client does, and counts its records; the company must be given then.
///
/// True when nothing is wrong. That all is in order it says only when the company was opened.
bool Diagnostica(const CAbertura &abertura, bool bAbre);

#endif
