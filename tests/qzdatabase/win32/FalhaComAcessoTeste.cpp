// A machine fault in the middle of looking at memory that readers share.

#include <windows.h>

#include <thread>

#include "core/platform/win32/QuadroSEH.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

class FalhaComAcesso : public ComBanco {
protected:
  /// Runs `corpo` to its machine fault.
  template <typename F>
  static void Falha(F &&corpo) {
    const plataforma::SaidaSEH saida =
        plataforma::ChamaEmQuadroSEH([](void *pCorpo) -> HRESULT { return (*static_cast<F *>(pCorpo))(); }, &corpo,
                                     [](const _EXCEPTION_RECORD &) -> LONG { return 1; });
    EXPECT_TRUE(saida.bExcecao);
    EXPECT_EQ(plataforma::LivroDaThread::Marca(), 0U);
  }
};

/// Nothing stays held: another thread writes, and reads what it has written.
TEST_F(FalhaComAcesso, NadaFicaPreso) {
  Poe("TESTE.DAT", Bytes(1, 3));
  ASSERT_EQ(Abre(), codigos::kOk);
  volatile int *pRuim = nullptr;
  Falha([&] { return Arquivo().Percorre(1, 3, [&](std::uint64_t, const RegTeste &) { return *pRuim == 0; }); });
  Falha([&] {
    return Arquivo().LeVarios(
        3, [](std::size_t i) { return i + 1; }, [&](std::size_t, const RegTeste &) { *pRuim = 0; });
  });
  std::thread([this] {
    std::uint64_t uiPosicao = 2;
    RegTeste reg;
    EXPECT_EQ(Arquivo().Grava(uiPosicao, Registro(9)), codigos::kOk);
    EXPECT_EQ(Arquivo().Le(2, &reg), codigos::kOk);
    EXPECT_EQ(reg, Registro(9));
  }).join();
}

}  // namespace
