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
constexpr long kMaximoSemObjeto = 10000;

/// From the release of the last object, in milliseconds: the decision after 5000, the revocation after a pause of 1000,
/// the end after another 250; each a little late on a loaded machine.
constexpr std::pair<DWORD, DWORD> kJanelas[] = {{4980, 5060}, {5980, 6060}, {5980, 6060}, {6220, 6320}};

long Desde(ULONGLONG ullInicio) {
  return static_cast<long>(GetTickCount64() - ullInicio);
}

/// Durations of the activations that one kind of process served.
void Diz(const char *lpQuem, std::vector<long> tempos) {
  std::sort(tempos.begin(), tempos.end());
  std::cout << tempos.size() << " served by " << lpQuem << ", median "
            << (tempos.empty() ? 0 : tempos[tempos.size() / 2]) << " ms; ";
}

}  // namespace

TEST(AtivacaoCom, DuranteOEncerramentoEServida) {
  const unsigned uiSemente = std::random_device()();
  std::mt19937 gerador(uiSemente);
  const Empresa empresa;
  std::vector<long> quentes;  // served by the process about to end
  std::vector<long> frias;
  unsigned uiRespostasDoWine = 0;
  long lMaiorVida = 0;
  Veiculos spVeiculos = Abre(empresa.Codigo());
  for (unsigned uiRodada = 0; uiRodada < apoio::Rodadas(); ++uiRodada) {
    const auto &[dwDe, dwAte] = kJanelas[uiRodada % std::size(kJanelas)];
    const DWORD dwAtraso = dwDe + static_cast<DWORD>(gerador() % (dwAte - dwDe));
    SCOPED_TRACE(testing::Message() << "seed " << uiSemente << ", after " << dwAtraso << " ms");
    const std::vector<Handle> antes = Servidores();
    ASSERT_EQ(antes.size(), 1U);
    spVeiculos.reset();
    const ULONGLONG ullSolto = GetTickCount64();
    WaitForSingleObject(antes[0].get(), dwAtraso);

    ULONGLONG ullCriacao = GetTickCount64();
    HRESULT hr = S_OK;
    spVeiculos = Cria(&hr);
    if (hr == E_FAIL) {
      // Wine only, where suspending a class object has no effect: for the few milliseconds in which its runtime revokes
      // the class object it answers so itself. A creation that reached the server fails with another code.
      ++uiRespostasDoWine;
      ullCriacao = GetTickCount64();
      spVeiculos = Cria(&hr);
    }
    const long lAtivacao = Desde(ullCriacao);
    ASSERT_EQ(hr, S_OK);
    ASSERT_EQ(Inicializa(*spVeiculos, empresa.Codigo()), S_OK);
    LONG lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V")), S_OK);

    // The old process ends in time, or it is the one that serves.
    const bool bNovo = WaitForSingleObject(antes[0].get(), 0) == WAIT_OBJECT_0 || Servidores().size() > 1;
    (bNovo ? frias : quentes).push_back(lAtivacao);
    if (bNovo) {
      const long lResta = std::max(kMaximoSemObjeto - Desde(ullSolto), 0L);
      EXPECT_EQ(WaitForSingleObject(antes[0].get(), static_cast<DWORD>(lResta)), WAIT_OBJECT_0);
      lMaiorVida = std::max(lMaiorVida, Desde(ullSolto));
    }
  }
  EXPECT_EQ(Servidores().size(), 1U);
  std::cout << apoio::Rodadas() << " rounds: ";
  Diz("the process about to end", quentes);
  Diz("a new one", frias);
  std::cout << uiRespostasDoWine << " first attempts that Wine itself answered; longest life after the last object "
            << lMaiorVida << " ms" << std::endl;
}
