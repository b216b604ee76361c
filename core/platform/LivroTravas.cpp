#include "core/platform/LivroTravas.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace plataforma {
namespace {

struct Anotacao {
  void *objeto;
  LivroTravas::Solta solta;
};

// A fault may come from any plain load, store or division, which the optimiser does not take for a call. Without the
// volatile count and the fences it would see the pair "count + 1, count - 1" around such code as removable, and the
// guard would never learn of the lock.
struct Livro {
  volatile std::size_t qtd = 0;
  Anotacao anotacoes[LivroTravas::kMaximo];
};

thread_local Livro t_livro;

void Cerca() {
  std::atomic_signal_fence(std::memory_order_seq_cst);
}

[[noreturn]] void Aborta(const char *motivo) {
  std::fprintf(stderr, "LivroTravas: %s\n", motivo);
  std::abort();
}

void SoltaSecao(void *objeto) {
  static_cast<SecaoCritica *>(objeto)->Sai();
}

void SoltaLeitura(void *objeto) {
  static_cast<SecaoCompartilhada *>(objeto)->unlock_shared();
}

void SoltaEscrita(void *objeto) {
  static_cast<SecaoCompartilhada *>(objeto)->AbandonaEscrita();
}

}  // namespace

std::size_t LivroTravas::Marca() {
  return t_livro.qtd;
}

void LivroTravas::Anota(void *objeto, Solta solta) {
  Livro &livro = t_livro;
  const std::size_t qtd = livro.qtd;
  if (qtd >= kMaximo) {
    Aborta("too many locks held by one thread");
  }
  livro.anotacoes[qtd] = {objeto, solta};
  Cerca();
  livro.qtd = qtd + 1;
  Cerca();
}

void LivroTravas::Retira(const void *objeto) {
  Livro &livro = t_livro;
  const std::size_t qtd = livro.qtd;
  std::size_t i = qtd;
  while (i > 0 && livro.anotacoes[i - 1].objeto != objeto) {
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

void LivroTravas::SoltaAte(std::size_t marca) {
  Livro &livro = t_livro;
  while (livro.qtd > marca) {
    livro.qtd = livro.qtd - 1;
    const Anotacao anotacao = livro.anotacoes[livro.qtd];
    anotacao.solta(anotacao.objeto);
  }
}

void LivroTravas::VerificaOrdem(const SecaoCritica &secao) {
  VerificaOrdemCompartilhada();
  const Livro &livro = t_livro;
  bool bJaMinha = false;
  NivelTrava maior{};
  for (std::size_t i = 0; i < livro.qtd; ++i) {
    if (livro.anotacoes[i].solta != SoltaSecao) {
      continue;
    }
    const auto *outra = static_cast<const SecaoCritica *>(livro.anotacoes[i].objeto);
    bJaMinha = bJaMinha || outra == &secao;
    maior = outra->Nivel() > maior ? outra->Nivel() : maior;
  }
  const bool bPermitida = secao.Nivel() > maior || (secao.Nivel() == NivelTrava::Temporario && maior == secao.Nivel());
  if (!bJaMinha && !bPermitida) {
    Aborta("lock taken out of order");
  }
}

void LivroTravas::VerificaOrdemCompartilhada() {
  const Livro &livro = t_livro;
  if (std::any_of(livro.anotacoes, livro.anotacoes + livro.qtd, [](const Anotacao &anotacao) {
        return anotacao.solta == SoltaLeitura || anotacao.solta == SoltaEscrita;
      })) {
    Aborta("lock taken under a shared lock");
  }
}

CQZTrava::CQZTrava(SecaoCritica &secao) : m_secao(secao) {
  if constexpr (KALVO_VERIFICA_TRAVAS) {
    LivroTravas::VerificaOrdem(secao);
  }
  secao.Entra();
  LivroTravas::Anota(&secao, SoltaSecao);
}

CQZTrava::~CQZTrava() {
  LivroTravas::Retira(&m_secao);
  m_secao.Sai();
}

CQZTravaLeitura::CQZTravaLeitura(SecaoCompartilhada &secao) : m_secao(secao) {
  if constexpr (KALVO_VERIFICA_TRAVAS) {
    LivroTravas::VerificaOrdemCompartilhada();
  }
  secao.lock_shared();
  LivroTravas::Anota(&secao, SoltaLeitura);
}

CQZTravaLeitura::~CQZTravaLeitura() {
  LivroTravas::Retira(&m_secao);
  m_secao.unlock_shared();
}

CQZTravaEscrita::CQZTravaEscrita(SecaoCompartilhada &secao) : m_secao(secao) {
  if constexpr (KALVO_VERIFICA_TRAVAS) {
    LivroTravas::VerificaOrdemCompartilhada();
  }
  secao.lock();
  LivroTravas::Anota(&secao, SoltaEscrita);
}

CQZTravaEscrita::~CQZTravaEscrita() {
  LivroTravas::Retira(&m_secao);
  m_secao.unlock();
}

}  // namespace plataforma
