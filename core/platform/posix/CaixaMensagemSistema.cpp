#include "core/platform/CaixaMensagem.h"

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

/// Nobody ever sees a box here.
class CaixaMensagemSistema final : public ICaixaMensagem {
public:
  int Mostra(const CString &, const CString &, std::uint32_t, DonoCaixa) override { return 0; }
};

}  // namespace

ICaixaMensagem &CaixaMensagemDoSistema() {
  return Permanente<CaixaMensagemSistema>();
}

}  // namespace plataforma
