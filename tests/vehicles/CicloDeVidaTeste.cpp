#include <gtest/gtest.h>

#include <atomic>
#include <shared_mutex>
#include <thread>
#include <vector>

#include "tests/apoio/EmpresaComBase.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/BaseVeiculos.h"

namespace {

// A register that goes from one company to another and back while other threads call it: each call works on the company
// that the register names meanwhile.
TEST(CicloDeVidaDoRegistro, InicializaAoLadoDeOutrasChamadas) {
  const apoio::EmpresaComBase empresas[2];
  CBaseVeiculos base;
  for (const apoio::EmpresaComBase &empresa : empresas) {
    ASSERT_EQ(base.Inicializa(empresa.Codigo(), 1, 1), codigos::kOk);
    LONG lPos = 0;
    ASSERT_EQ(base.Grava(&lPos, Veiculo(empresa.Codigo())), codigos::kOk);
  }
  std::atomic<bool> bFim{false};
  std::atomic<int> iCertas{0};
  std::atomic<int> iErradas{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 2; ++t) {
    threads.emplace_back([&] {
      const LONG lPrimeira = 1;
      tagREG_VEICULOPS v;
      std::uint32_t iPos = 0;
      while (!bFim) {
        const std::shared_lock trava(base.TravaCicloDeVida());
        const bool bCerta = base.LePonteiros(1, &lPrimeira, &v) == codigos::kOk && base.GetEmpresa() == v.szCodigo &&
                            base.Existe(base.GetEmpresa().c_str(), &iPos, &v) == codigos::kOk && iPos == 1;
        ++(bCerta ? iCertas : iErradas);
      }
    });
  }
  for (int i = 0; i < 20; ++i) {
    const int iAntes = iCertas;
    {
      const std::unique_lock trava(base.TravaCicloDeVida());
      EXPECT_EQ(base.Inicializa(empresas[i % 2].Codigo(), 1, i), codigos::kOk);
    }
    while (iCertas == iAntes && iErradas == 0) {
      std::this_thread::yield();
    }
  }
  bFim = true;
  for (std::thread &thread : threads) {
    thread.join();
  }
  EXPECT_EQ(iErradas, 0);
}

}  // namespace
