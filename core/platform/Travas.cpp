#include "core/platform/Travas.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "core/platform/LivroDaThread.h"

namespace plataforma {
namespace {

void SoltaSecao(void *objeto) {
  static_cast<SecaoCritica *>(objeto)->Sai();
}

void SoltaLeitura(void *objeto) {
  static_cast<SecaoCompartilhada *>(objeto)->unlock_shared();
}

void SoltaEscrita(void *objeto) {
  static_cast<SecaoCompartilhada *>(objeto)->AbandonaEscrita();
}

[[noreturn]] void Aborta(const char *motivo) {
  std::fprintf(stderr, "Travas: %s\n", motivo);
  std::abort();
}

/// A shared lock is innermost: nothing is taken under it, no other shared lock either.
void VerificaOrdemCompartilhada() {
  const auto anotacoes = LivroDaThread::Anotacoes();
  if (std::any_of(anotacoes.begin(), anotacoes.end(), [](const LivroDaThread::Anotacao &anotacao) {
        return anotacao.solta == SoltaLeitura || anotacao.solta == SoltaEscrita;
      })) {
    Aborta("lock taken under a shared lock");
  }
}

}  // namespace

/// By the levels of the locks in the ledger. One that the thread has already may be taken again whatever its level: the
/// system's section counts its owner's entries.
void VerificaOrdem(const SecaoCritica &secao) {
  VerificaOrdemCompartilhada();
  bool bJaMinha = false;
  NivelTrava maior{};
  for (const LivroDaThread::Anotacao &anotacao : LivroDaThread::Anotacoes()) {
    if (anotacao.solta != SoltaSecao) {
      continue;
    }
    const auto *outra = static_cast<const SecaoCritica *>(anotacao.objeto);
    bJaMinha = bJaMinha || outra == &secao;
    maior = outra->Nivel() > maior ? outra->Nivel() : maior;
  }
  const bool bPermitida = secao.Nivel() > maior || (secao.Nivel() == NivelTrava::Temporario && maior == secao.Nivel());
  if (!bJaMinha && !bPermitida) {
    Aborta("lock taken out of order");
  }
}

CQZTrava::CQZTrava(SecaoCritica &secao) : m_secao(secao) {
  if constexpr (KALVO_VERIFICA_TRAVAS) {
    VerificaOrdem(secao);
  }
  secao.Entra();
  LivroDaThread::Anota(&secao, SoltaSecao);
}

CQZTrava::~CQZTrava() {
  LivroDaThread::Retira(&m_secao);
  m_secao.Sai();
}

CQZTravaLeitura::CQZTravaLeitura(SecaoCompartilhada &secao) : m_secao(secao) {
  if constexpr (KALVO_VERIFICA_TRAVAS) {
    VerificaOrdemCompartilhada();
  }
  secao.lock_shared();
  LivroDaThread::Anota(&secao, SoltaLeitura);
}

CQZTravaLeitura::~CQZTravaLeitura() {
  LivroDaThread::Retira(&m_secao);
  m_secao.unlock_shared();
}

CQZTravaEscrita::CQZTravaEscrita(SecaoCompartilhada &secao) : m_secao(secao) {
  if constexpr (KALVO_VERIFICA_TRAVAS) {
    VerificaOrdemCompartilhada();
  }
  secao.lock();
  LivroDaThread::Anota(&secao, SoltaEscrita);
}

CQZTravaEscrita::~CQZTravaEscrita() {
  LivroDaThread::Retira(&m_secao);
  m_secao.unlock();
}

}  // namespace plataforma
