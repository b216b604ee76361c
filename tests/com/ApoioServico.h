#ifndef KALVO_TESTS_COM_APOIOSERVICO_H
#define KALVO_TESTS_COM_APOIOSERVICO_H

#include "server/QZDF_Veiculos.h"
#include "tests/com/ApoioCom.h"

// The service object within the test's own process.

namespace apoiocom {

/// A new service object; null when it is refused.
inline Veiculos NovoServico() {
  void *pObjeto = nullptr;
  CQZDF_Veiculos::Cria(nullptr, IID_IQZDF_Veiculos, &pObjeto);
  return Veiculos(static_cast<IQZDF_Veiculos *>(pObjeto));
}

/// A new service object that works for a company; null when either step fails.
inline Veiculos ServicoPara(const Empresa &empresa) {
  Veiculos spVeiculos = NovoServico();
  return spVeiculos && SUCCEEDED(Inicializa(*spVeiculos, empresa.Codigo())) ? std::move(spVeiculos) : nullptr;
}

}  // namespace apoiocom

#endif
