#include "core/platform/ChaveRegistro.h"
#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

class RegistroSistema final : public IRegistro {
public:
  bool ExisteChave(const CString &chave) override { return AbreChaveRegistro(chave) != nullptr; }

  std::optional<CString> LeTexto(const CString &chave, const CString &nome, bool expande) override {
    const auto aberta = AbreChaveRegistro(chave);
    return aberta ? aberta->LeTexto(nome, expande) : std::nullopt;
  }

  std::optional<std::uint32_t> LeNumero(const CString &chave, const CString &nome) override {
    const auto aberta = AbreChaveRegistro(chave);
    return aberta ? aberta->LeNumero(nome) : std::nullopt;
  }
};

}  // namespace

IRegistro &RegistroDoSistema() {
  return Permanente<RegistroSistema>();
}

}  // namespace plataforma
