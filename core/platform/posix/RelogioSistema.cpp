#include <chrono>
#include <thread>

#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

class RelogioSistema final : public IRelogio {
public:
  void Espera(std::uint32_t milissegundos) override {
    if (milissegundos == 0) {
      std::this_thread::yield();
    } else {
      std::this_thread::sleep_for(std::chrono::milliseconds(milissegundos));
    }
  }
};

}  // namespace

IRelogio &RelogioDoSistema() {
  static auto *const relogio = new RelogioSistema;
  return *relogio;
}

}  // namespace plataforma
