#include "core/platform/Travas.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "core/platform/LivroDaThread.h"

namespace plataforma {
namespace {

void SoltaSecao(void *pObjeto) {
  static_cast<SecaoCritica *>(pObjeto)->Sai();
}

void SoltaLeitura(void *pObjeto) {
  static_cast<SecaoCompartilhada *>(pObjeto)->unlock_shared();
}

void SoltaEscrita(void *pObjeto) {
  static_cast<SecaoCompartilhada *>(pObjeto)->AbandonaEscrita();
}

[[noreturn]] void Aborta(const char *lpMotivo) {
  std::fprintf(stderr, "Travas: %s\n", lpMotivo);
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
  NivelTrava eMaior{};
  for (const LivroDaThread::Anotacao &anotacao : LivroDaThread::Anotacoes()) {
    if (anotacao.solta != SoltaSecao) {
      continue;
    }
    const auto *outra = static_cast<const SecaoCritica *>(anotacao.objeto);
    bJaMinha = bJaMinha || outra == &secao;
    eMaior = outra->Nivel() > eMaior ? outra->Nivel() : eMaior;
  }
  const bool bPermitida =
      secao.Nivel() > eMaior || (secao.Nivel() == NivelTrava::Temporario && eMaior == secao.Nivel());
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
