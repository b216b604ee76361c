#ifndef KALVO_CLIENT_EMPRESAREGISTRADA_H
#define KALVO_CLIENT_EMPRESAREGISTRADA_H

#include <stdexcept>
#include <string>

/// The text (Windows-1252) says what is wrong with the company.
class CErroEmpresa : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// Raises CErroEmpresa unless the registry has the company under this very code and the data directory that it names is
/// there. The server asks nothing of the kind: for a company that it does not find it works in its current directory,
/// in one base for all of them. A directory that this account may not look at is taken to be there.
void ExigeEmpresa(const std::string &sCodigo);

#endif
