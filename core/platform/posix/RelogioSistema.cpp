#include <chrono>
#include <ctime>
#include <thread>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

constexpr std::uint64_t kTicksPorSegundo = 10000000;
constexpr std::uint32_t kErroParametroInvalido = 87;

class RelogioSistema final : public IRelogio {
public:
  void Espera(std::uint32_t milissegundos) override {
    if (milissegundos == 0) {
      std::this_thread::yield();
    } else {
      std::this_thread::sleep_for(std::chrono::milliseconds(milissegundos));
    }
  }

  std::uint32_t Ticks() override {
    // The coarse clock moves in steps of a few milliseconds, like the tick count of Windows, and costs a fifth.
    timespec desde{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &desde);
    return static_cast<std::uint32_t>(desde.tv_sec) * 1000 + static_cast<std::uint32_t>(desde.tv_nsec) / 1000000;
  }

  CamposData HoraLocal() override {
    timespec agora{};
    clock_gettime(CLOCK_REALTIME, &agora);
    tm campos{};
    localtime_r(&agora.tv_sec, &campos);
    const auto u16 = [](long valor) { return static_cast<std::uint16_t>(valor); };
    return {u16(campos.tm_year + 1900), u16(campos.tm_mon + 1), u16(campos.tm_wday), u16(campos.tm_mday),
            u16(campos.tm_hour),        u16(campos.tm_min),     u16(campos.tm_sec),  u16(agora.tv_nsec / 1000000)};
  }

  bool LocalParaUtc(std::uint64_t local, std::uint64_t *puiUtc, std::uint32_t *puiErroSO) override {
    const std::time_t agora = std::time(nullptr);
    tm campos{};
    localtime_r(&agora, &campos);
    const std::int64_t deslocamento = campos.tm_gmtoff * static_cast<std::int64_t>(kTicksPorSegundo);
    const auto destino = static_cast<std::int64_t>(local) - deslocamento;
    if (static_cast<std::int64_t>(local) < 0 || destino < 0) {
      *puiErroSO = kErroParametroInvalido;
      return false;
    }
    *puiUtc = static_cast<std::uint64_t>(destino);
    return true;
  }
};

}  // namespace

IRelogio &RelogioDoSistema() {
  return Permanente<RelogioSistema>();
}

}  // namespace plataforma
