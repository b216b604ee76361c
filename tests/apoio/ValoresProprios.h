#ifndef KALVO_TESTS_APOIO_VALORESPROPRIOS_H
#define KALVO_TESTS_APOIO_VALORESPROPRIOS_H

#include "core/env/QZPath.h"
#include "tests/apoio/ServicosFalsos.h"

namespace apoio {

inline constexpr char kValorCabecalho[] = "QZDataBase_HabilitarCabecalho";

/// Whether new files get headers.
inline bool CabecalhosLigados() {
  return plataforma::Registro().LeNumero(kChaveSuite, kValorCabecalho).value_or(0) != 0;
}

/// Values of the registry for a scope and this process alone: the registry that all test processes of the machine share
/// stays as it is. To be changed while no other thread uses it.
class ValoresProprios {
protected:
  RegistroFalso m_registro{&plataforma::Registro()};

private:
  ServicosTrocados m_servicos{nullptr, &m_registro};
};

/// The switch for file headers.
class ChaveCabecalho : ValoresProprios {
public:
  explicit ChaveCabecalho(bool bLigada) { Define(bLigada); }

  void Define(bool bLigada) { m_registro.m_numeros[{kChaveSuite, kValorCabecalho}] = bLigada ? 1 : 0; }
};

/// The installation directory; none when empty. The one in the machine's registry belongs to the tests of the
/// registered server, whose log.ini would have every process write entry and exit records.
class InstalacaoPropria : ValoresProprios {
public:
  explicit InstalacaoPropria(const CString &sDiretorio = CString()) { Define(sDiretorio); }

  void Define(const CString &sDiretorio) {
    m_registro.m_textos[{CString(kChaveSuite) + "Miran Empresarial", "Path"}] = sDiretorio;
  }
};

}  // namespace apoio

#endif
