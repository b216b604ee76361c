#include "server/VigiaCliente.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/apoio/ProcessoFilho.h"
#include "tests/com/ApoioCom.h"

namespace {

/// Notes that it would be disconnected.
class Objeto final : public IObjetoVigiado {
public:
  IUnknown *SeguraSeVivo() override {
    SetEvent(m_hPedido.get());
    return nullptr;
  }

  /// Signalled from then on.
  HANDLE Pedido() const { return m_hPedido.get(); }

private:
  const apoiocom::Handle m_hPedido{CreateEventA(nullptr, TRUE, FALSE, nullptr)};
};

/// Tells its number and lives until its parent lets it end.
int ViveUmPouco(const std::vector<std::string> & /*argumentos*/) {
  std::printf("%lu\n", GetCurrentProcessId());
  std::fflush(stdout);
  return std::getchar() == EOF ? 0 : 1;
}

const apoio::RegistraFilha g_vive("vive_um_pouco", ViveUmPouco);

}  // namespace

// What the registered server shows of the watch is in ProxyEntregueCom; there every caller can be watched.
TEST(VigiaCliente, QuemNaoPodeSerVigiadoEncerraAVigia) {
  constexpr DWORD kMargem = 2000;
  apoio::ProcessoFilho filho("vive_um_pouco");
  const DWORD idFilho = std::stoul(filho.LeLinha());
  constexpr DWORD kSistema = 4;  // which nobody may open
  const std::vector<std::vector<DWORD>> comEstranhos = {
      {idFilho, 0}, {0, idFilho}, {idFilho, kSistema}, {idFilho, GetCurrentProcessId(), idFilho}};
  std::vector<Objeto> estranhos(comEstranhos.size());
  std::vector<std::unique_ptr<CVigiaCliente>> vigias;
  for (std::size_t i = 0; i < comEstranhos.size(); ++i) {
    vigias.push_back(std::make_unique<CVigiaCliente>(estranhos[i]));
    vigias.back()->Comeca();
    for (const DWORD idProcesso : comEstranhos[i]) {
      vigias.back()->Observa(idProcesso);
    }
  }
  Objeto comum;
  CVigiaCliente vigia(comum);
  vigia.Comeca();
  vigia.Observa(idFilho);
  filho.Mata();
  EXPECT_EQ(WaitForSingleObject(comum.Pedido(), apoiocom::kPrazo), WAIT_OBJECT_0);
  std::vector<HANDLE> pedidos;
  for (const Objeto &estranho : estranhos) {
    pedidos.push_back(estranho.Pedido());
  }
  EXPECT_EQ(WaitForMultipleObjects(static_cast<DWORD>(pedidos.size()), pedidos.data(), FALSE, kMargem),
            static_cast<DWORD>(WAIT_TIMEOUT));
}
