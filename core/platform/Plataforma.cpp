#include "core/platform/Plataforma.h"

#include <atomic>

#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

std::atomic<const Servicos *> g_emVigor{nullptr};

}  // namespace

const Servicos &ServicosDoSistema() {
  static const Servicos pServicos{&ArquivosDoSistema(),     &RegistroDoSistema(),    &RelogioDoSistema(),
                                  &BibliotecasDoSistema(),  &InformacoesDoSistema(), &ArquivosIniDoSistema(),
                                  &CaixaMensagemDoSistema()};
  return pServicos;
}

const Servicos &ServicosEmVigor() {
  const Servicos *pServicos = g_emVigor.load(std::memory_order_acquire);
  if (pServicos == nullptr) {
    // Entered, so that the next call finds them without asking whether they have been made.
    const Servicos *const pDoSistema = &ServicosDoSistema();
    pServicos = g_emVigor.compare_exchange_strong(pServicos, pDoSistema) ? pDoSistema : pServicos;
  }
  return *pServicos;
}

void SubstituiServicos(const Servicos *pServicos) {
  g_emVigor.store(pServicos, std::memory_order_release);
}

}  // namespace plataforma
