#include "core/platform/ChaveRegistro.h"
#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

class RegistroSistema final : public IRegistro {
public:
  bool ExisteChave(const CString &sChave) override { return AbreChaveRegistro(sChave) != nullptr; }

  std::optional<CString> LeTexto(const CString &sChave, const CString &sNome, bool bExpande) override {
    const auto aberta = AbreChaveRegistro(sChave);
    return aberta ? aberta->LeTexto(sNome, bExpande) : std::nullopt;
  }

  std::optional<std::uint32_t> LeNumero(const CString &sChave, const CString &sNome) override {
    const auto aberta = AbreChaveRegistro(sChave);
    return aberta ? aberta->LeNumero(sNome) : std::nullopt;
  }
};

}  // namespace

IRegistro &RegistroDoSistema() {
  return Permanente<RegistroSistema>();
}

}  // namespace plataforma
