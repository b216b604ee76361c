#ifndef KALVO_CLIENT_DIAGNOSTICO_H
#define KALVO_CLIENT_DIAGNOSTICO_H

#include <string>

// Looks at the installation from a client's side and writes what it finds, a line per finding: the registration of
// class, type library and interface with the files that it names, the suite's directories (for a company when sEmpresa
// is not empty), and whether a service object can be created and how long that takes. Changes nothing but for starting
// the server. True when nothing is wrong.
bool Diagnostica(const std::string &sEmpresa);

#endif
