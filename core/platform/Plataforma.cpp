#include "core/platform/Plataforma.h"

#include <atomic>

#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

std::atomic<const Servicos *> g_emVigor{nullptr};

}  // namespace

const Servicos &ServicosDoSistema() {
  static const Servicos servicos{&ArquivosDoSistema(),     &RegistroDoSistema(),    &RelogioDoSistema(),
                                 &BibliotecasDoSistema(),  &InformacoesDoSistema(), &ArquivosIniDoSistema(),
                                 &CaixaMensagemDoSistema()};
  return servicos;
}

const Servicos &ServicosEmVigor() {
  const Servicos *servicos = g_emVigor.load(std::memory_order_acquire);
  if (servicos == nullptr) {
    // Entered, so that the next call finds them without asking whether they have been made.
    const Servicos *const doSistema = &ServicosDoSistema();
    servicos = g_emVigor.compare_exchange_strong(servicos, doSistema) ? doSistema : servicos;
  }
  return *servicos;
}

void SubstituiServicos(const Servicos *servicos) {
  g_emVigor.store(servicos, std::memory_order_release);
}

}  // namespace plataforma
