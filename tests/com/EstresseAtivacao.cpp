// Activation aimed at the moment at which the idle server ends, round after round; a round takes about six seconds.
// Usage: estresse_ativacao <rounds> [seed]. The server must be registered. Exit code 0 when every promise was kept.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "tests/com/RodadaAtivacao.h"

using namespace apoiocom;

namespace {

struct Apuracao {
  int iFalhas = 0;
  int iServidoresNovos = 0;
  int iRespostasDoWine = 0;
  long lMaiorVida = 0;
  std::vector<long> quentes;  ///< durations of the activations that the old process served
  std::vector<long> frias;
};

void Anota(Apuracao &apuracao, const ResultadoRodada &rodada, DWORD dwAtraso) {
  apuracao.iServidoresNovos += rodada.bServidorNovo ? 1 : 0;
  apuracao.iRespostasDoWine += rodada.bRespostaDoWine ? 1 : 0;
  apuracao.lMaiorVida = std::max(apuracao.lMaiorVida, rodada.lVidaSemObjeto);
  (rodada.bServidorNovo ? apuracao.frias : apuracao.quentes).push_back(rodada.lAtivacao);
  if (!rodada.sFalha.empty()) {
    ++apuracao.iFalhas;
    std::printf("after %lu ms: %s\n", dwAtraso, rodada.sFalha.c_str());
    std::fflush(stdout);
  }
}

void DizTempos(const char *lpNome, std::vector<long> tempos) {
  if (!tempos.empty()) {
    std::sort(tempos.begin(), tempos.end());
    std::printf("%-44s%5zu   median %ld ms, longest %ld ms\n", lpNome, tempos.size(), tempos[tempos.size() / 2],
                tempos.back());
  }
}

int Executa(int iRodadas, unsigned uiSemente) {
  const Apartamento apartamento;
  const Empresa empresa;
  RodadaAtivacao rodada(empresa);
  if (!rodada.Pronta()) {
    std::printf("no server: register it first\n");
    return 1;
  }
  Apuracao apuracao;
  std::mt19937 gerador(uiSemente);
  for (int i = 0; i < iRodadas && rodada.Pronta(); ++i) {
    const DWORD dwAtraso = AtrasoMirado(gerador);
    Anota(apuracao, rodada.Roda(dwAtraso), dwAtraso);
  }
  std::printf("%-44s%5d\n", "rounds", iRodadas);
  std::printf("%-44s%5d\n", "rounds that broke a promise", apuracao.iFalhas);
  DizTempos("served by the process about to end", apuracao.quentes);
  DizTempos("served by a new process", apuracao.frias);
  std::printf("%-44s%5d\n", "first attempts that Wine itself answered", apuracao.iRespostasDoWine);
  std::printf("%-44s%5ld ms\n", "longest life after the last object", apuracao.lMaiorVida);
  return apuracao.iFalhas == 0 && rodada.Pronta() ? 0 : 1;
}

}  // namespace

int main(int argc, char **argv) {
  const int iRodadas = argc > 1 ? std::atoi(argv[1]) : 0;
  if (iRodadas <= 0) {
    std::fprintf(stderr, "usage: estresse_ativacao <rounds> [seed]\n");
    return 2;
  }
  return Executa(iRodadas, argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1U);
}
