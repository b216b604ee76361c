// What calls through COM cost: a client process against the registered server, company 0001, which must be empty.

#include <chrono>
#include <cstdio>

#include "client/QZVeiculosCliente.h"

namespace {

/// Runs `acao` so many times and prints the mean of one.
template <class Acao>
void Mede(const char *lpNome, int vezes, Acao &&acao) {
  const auto inicio = std::chrono::steady_clock::now();
  for (int i = 0; i < vezes; ++i) {
    acao(i);
  }
  const std::chrono::duration<double, std::micro> total = std::chrono::steady_clock::now() - inicio;
  std::printf("%-42s%12.1f us\n", lpNome, total.count() / vezes);
}

void MedeTudo() {
  Mede("create, initialise and release, server warm", 50, [](int) { CQZVeiculos veiculos("0001", 1, 1); });
  CQZVeiculos veiculos("0001", 1, 1);
  tagREG_VEICULOPS veiculo{};
  Mede("Grava, append", 1000, [&](int i) {
    veiculo.iAno = static_cast<unsigned>(i);
    veiculos.Grava(0, veiculo);
  });
  Mede("Le", 2000, [&](int i) { veiculos.Le(i % 1000 + 1); });
  Mede("GetQuantidadeRegistros", 2000, [&](int) { veiculos.GetQuantidadeRegistros(); });
  std::vector<LONG> aPosicoes;
  Mede("BuscaPonteiros, 1,000 hits", 200, [&](int) { aPosicoes = veiculos.BuscaPonteiros({}); });
  Mede("LePonteiros, 1,000 records", 200, [&](int) { veiculos.LePonteiros(aPosicoes); });
}

}  // namespace

int main() {
  try {
    const CQZApartamento apartamento;
    const auto inicio = std::chrono::steady_clock::now();
    const CQZVeiculos primeiro("0001", 1, 1);
    const std::chrono::duration<double, std::milli> fria = std::chrono::steady_clock::now() - inicio;
    std::printf("%-42s%12.1f ms\n", "first activation, server not running", fria.count());
    MedeTudo();
    return 0;
  } catch (const CQZErroVeiculos &erro) {
    std::fprintf(stderr, "%s\n", erro.what());
    return 1;
  }
}
