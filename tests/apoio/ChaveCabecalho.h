#ifndef KALVO_TESTS_APOIO_CHAVECABECALHO_H
#define KALVO_TESTS_APOIO_CHAVECABECALHO_H

#include "core/env/QZPath.h"
#include "tests/apoio/RegistroFalso.h"
#include "tests/apoio/ServicosTrocados.h"

namespace apoio {

inline constexpr char kValorCabecalho[] = "QZDataBase_HabilitarCabecalho";

/// Whether new files get headers.
inline bool CabecalhosLigados() {
  return plataforma::Registro().LeNumero(kChaveSuite, kValorCabecalho).value_or(0) != 0;
}

/// The switch for file headers, for a scope and this process alone: the registry that all test processes of the machine
/// share stays as it is. To be changed while no other thread uses it.
class ChaveCabecalho {
public:
  explicit ChaveCabecalho(bool bLigada) { Define(bLigada); }

  void Define(bool bLigada) { m_registro.m_numeros[{kChaveSuite, kValorCabecalho}] = bLigada ? 1 : 0; }

private:
  RegistroFalso m_registro{plataforma::Registro()};
  ServicosTrocados m_servicos{nullptr, &m_registro};
};

}  // namespace apoio

#endif
