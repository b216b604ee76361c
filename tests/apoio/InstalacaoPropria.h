#ifndef KALVO_TESTS_APOIO_INSTALACAOPROPRIA_H
#define KALVO_TESTS_APOIO_INSTALACAOPROPRIA_H

#include "core/env/QZPath.h"
#include "tests/apoio/RegistroFalso.h"
#include "tests/apoio/ServicosTrocados.h"

namespace apoio {

/// The installation directory, for a scope and this process alone; none when empty. The one in the machine's registry
/// belongs to the tests of the registered server, whose log.ini would have every process write entry and exit records.
class InstalacaoPropria {
public:
  explicit InstalacaoPropria(const CString &sDiretorio = CString()) { Define(sDiretorio); }

  void Define(const CString &sDiretorio) {
    m_registro.m_textos[{CString(kChaveSuite) + "Miran Empresarial", "Path"}] = sDiretorio;
  }

private:
  RegistroFalso m_registro{plataforma::Registro()};
  ServicosTrocados m_servicos{nullptr, &m_registro};
};

}  // namespace apoio

#endif
