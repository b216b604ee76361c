// A machine fault in the middle of looking at memory that readers share.

#include <windows.h>

#include <thread>

#include "core/platform/win32/QuadroSEH.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

using FalhaComAcesso = ComBanco;

volatile int *volatile s_pRuim = nullptr;

HRESULT PercorreComFalha(void *pArquivo) {
  return static_cast<CQZFile<RegTeste> *>(pArquivo)->Percorre(
      1, 3, [](std::uint64_t, const RegTeste &) { return *s_pRuim == 0; });
}

HRESULT LeVariosComFalha(void *pArquivo) {
  return static_cast<CQZFile<RegTeste> *>(pArquivo)->LeVarios(
      3, [](std::size_t i) { return i + 1; }, [](std::size_t, const RegTeste &) { *s_pRuim = 0; });
}

/// Nothing stays held: another thread writes.
TEST_F(FalhaComAcesso, NadaFicaPreso) {
  Poe("TESTE.DAT", Bytes(1, 3));
  ASSERT_EQ(Abre(), codigos::kOk);
  for (const auto executa : {PercorreComFalha, LeVariosComFalha}) {
    const auto trata = [](const _EXCEPTION_RECORD &) -> LONG { return EXCEPTION_EXECUTE_HANDLER; };
    EXPECT_TRUE(plataforma::ChamaEmQuadroSEH(executa, &Arquivo(), trata).bExcecao);
    EXPECT_EQ(plataforma::LivroDaThread::Marca(), 0U);
  }
  std::thread([this] { EXPECT_EQ(Grava(2, Registro(9)), codigos::kOk); }).join();
  EXPECT_EQ(Disco("TESTE.DAT"), Bytes(1, 1) + Bytes(9, 9) + Bytes(3, 3));
}

}  // namespace
