#include <windows.h>

#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

class RelogioSistema final : public IRelogio {
public:
  void Espera(std::uint32_t milissegundos) override { ::Sleep(milissegundos); }
};

}  // namespace

IRelogio &RelogioDoSistema() {
  static auto *const relogio = new RelogioSistema;
  return *relogio;
}

}  // namespace plataforma
