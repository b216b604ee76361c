#include "core/platform/LivroDaThread.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace plataforma {
namespace {

/// A fault may come from any plain load, store or division, which the optimiser does not take for a call. Without the
/// volatile count and the fences it would see the pair "count + 1, count - 1" around such code as removable, and the
/// guard would never learn of the lock.
struct Livro {
  volatile std::size_t qtd = 0;
  LivroDaThread::Anotacao anotacoes[LivroDaThread::kMaximo];
};

thread_local Livro t_livro;

void Cerca() {
  std::atomic_signal_fence(std::memory_order_seq_cst);
}

}  // namespace

std::size_t LivroDaThread::Marca() {
  return t_livro.qtd;
}

void LivroDaThread::Anota(void *pObjeto, Solta solta) {
  Livro &livro = t_livro;
  const std::size_t qtd = livro.qtd;
  if (qtd >= kMaximo) {
    std::fputs("LivroDaThread: too many locks held by one thread\n", stderr);
    std::abort();
  }
  livro.anotacoes[qtd] = {pObjeto, solta};
  Cerca();
  livro.qtd = qtd + 1;
  Cerca();
}

void LivroDaThread::Retira(const void *pObjeto) {
  Livro &livro = t_livro;
  const std::size_t qtd = livro.qtd;
  std::size_t i = qtd;
  while (i > 0 && livro.anotacoes[i - 1].objeto != pObjeto) {
    --i;
  }
  if (i == 0) {
    return;
  }
  Cerca();
  std::copy(livro.anotacoes + i, livro.anotacoes + qtd, livro.anotacoes + i - 1);
  livro.qtd = qtd - 1;
  Cerca();
}

void LivroDaThread::SoltaAte(std::size_t marca) {
  Livro &livro = t_livro;
  while (livro.qtd > marca) {
    livro.qtd = livro.qtd - 1;
    const Anotacao anotacao = livro.anotacoes[livro.qtd];
    anotacao.solta(anotacao.objeto);
  }
}

std::span<const LivroDaThread::Anotacao> LivroDaThread::Anotacoes() {
  return {t_livro.anotacoes, t_livro.qtd};
}

}  // namespace plataforma
