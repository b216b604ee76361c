// Activations aimed at the end of the idle server: before, while and after it decides. Each must be served, by the old
// process or by a new one. scripts/estresse-ativacao runs many rounds, each of which takes about six seconds.

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "tests/apoio/Corrida.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

/// How long a server may live after its last object, in milliseconds.
constexpr ULONGLONG kMaximoSemObjeto = 10000;

/// From the release of the last object, in milliseconds: the decision after 5000, the revocation after a pause of 1000,
/// the end after another 250; each a little late on a loaded machine.
constexpr std::pair<DWORD, DWORD> kJanelas[] = {{4980, 5060}, {5980, 6060}, {5980, 6060}, {6220, 6320}};

}  // namespace

TEST(AtivacaoCom, DuranteOEncerramentoEServida) {
  std::random_device sorteio;
  const Empresa empresa;
  unsigned uiNovos = 0;  // activations that the process about to end did not serve
  unsigned uiRespostasDoWine = 0;
  Veiculos spVeiculos = Abre(empresa.Codigo());
  for (unsigned uiRodada = 0; uiRodada < apoio::Rodadas(); ++uiRodada) {
    const auto &[dwDe, dwAte] = kJanelas[uiRodada % std::size(kJanelas)];
    const DWORD dwAtraso = dwDe + static_cast<DWORD>(sorteio() % (dwAte - dwDe));
    SCOPED_TRACE(testing::Message() << "after " << dwAtraso << " ms");
    const std::vector<Handle> antes = Servidores();
    ASSERT_EQ(antes.size(), 1U);
    spVeiculos.reset();
    const ULONGLONG ullFim = GetTickCount64() + kMaximoSemObjeto;
    WaitForSingleObject(antes[0].get(), dwAtraso);

    HRESULT hr = S_OK;
    spVeiculos = Cria(&hr);
    if (hr == E_FAIL) {
      // Wine only, where suspending a class object has no effect: for the few milliseconds in which its runtime revokes
      // the class object it answers so itself. A creation that reached the server fails with another code.
      ++uiRespostasDoWine;
      spVeiculos = Cria(&hr);
    }
    ASSERT_EQ(hr, S_OK);
    ASSERT_EQ(Inicializa(*spVeiculos, empresa.Codigo()), S_OK);
    LONG lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V")), S_OK);

    // The old process ends in time, or it is the one that serves.
    if (WaitForSingleObject(antes[0].get(), 0) == WAIT_OBJECT_0 || Servidores().size() > 1) {
      ++uiNovos;
      const ULONGLONG ullResta = ullFim - std::min(ullFim, GetTickCount64());
      EXPECT_EQ(WaitForSingleObject(antes[0].get(), static_cast<DWORD>(ullResta)), WAIT_OBJECT_0);
    }
  }
  EXPECT_EQ(Servidores().size(), 1U);
  std::cout << apoio::Rodadas() << " rounds, " << uiNovos << " served by a new process; " << uiRespostasDoWine
            << " first attempts that Wine itself answered" << std::endl;
}
