#include "core/conx/DadosInstalacao.h"

#include <atomic>

namespace {

std::atomic<LeitorDadosInstalacao> g_leitor{nullptr};

}  // namespace

HRESULT LeDadosInstalacao(const CQZBaseParaRotinas &rotina, CQZDadosInstalacao *pDados) {
  *pDados = {};
  const LeitorDadosInstalacao leitor = g_leitor.load();
  return leitor != nullptr ? leitor(rotina, pDados) : 0;
}

LeitorDadosInstalacao DefineLeitorDadosInstalacao(LeitorDadosInstalacao leitor) {
  return g_leitor.exchange(leitor);
}
