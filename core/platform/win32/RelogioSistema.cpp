#include <windows.h>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

class RelogioSistema final : public IRelogio {
public:
  void Espera(std::uint32_t milissegundos) override { ::Sleep(milissegundos); }

  std::uint32_t Ticks() override { return ::GetTickCount(); }

  CamposData HoraLocal() override {
    SYSTEMTIME agora{};
    ::GetLocalTime(&agora);
    return {agora.wYear, agora.wMonth,  agora.wDayOfWeek, agora.wDay,
            agora.wHour, agora.wMinute, agora.wSecond,    agora.wMilliseconds};
  }

  bool LocalParaUtc(std::uint64_t local, std::uint64_t *puiUtc, std::uint32_t *puiErroSO) override {
    const FILETIME origem{static_cast<DWORD>(local), static_cast<DWORD>(local >> 32)};
    FILETIME destino{};
    if (::LocalFileTimeToFileTime(&origem, &destino) == 0) {
      *puiErroSO = ::GetLastError();
      return false;
    }
    *puiUtc = (std::uint64_t{destino.dwHighDateTime} << 32) | destino.dwLowDateTime;
    return true;
  }
};

}  // namespace

IRelogio &RelogioDoSistema() {
  return Permanente<RelogioSistema>();
}

}  // namespace plataforma
