#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <thread>
#include <vector>

#include "core/errors/guard/win32/ChamadaSEH.h"
#include "core/platform/LivroDaThread.h"
#include "core/platform/MemoriaMapeada.h"
#include "core/platform/Travas.h"

// Real faults of the processor and the system under the call guard. The faulting statements are plain ones on values
// the optimiser cannot see through; the target is compiled with optimisation, which is what makes them interesting.

namespace {

using plataforma::CQZTrava;
using plataforma::LivroDaThread;
using plataforma::NivelTrava;
using plataforma::SecaoCritica;

constexpr DWORD kPrazoMs = 20000;

int *volatile g_nulo = nullptr;
volatile int g_zero = 0;

template <class Corpo>
std::uint32_t Guarda(Corpo corpo) {
  return BitsResultado(ChamaSEH(corpo));
}

[[gnu::noinline]] int Recorre(int profundidade) {
  volatile char area[256];
  area[0] = static_cast<char>(profundidade);
  return g_zero != 0 ? 0 : Recorre(profundidade + 1) + area[0];
}

struct Falha {
  HRESULT (*corpo)();
  std::uint32_t hr;
};

constexpr Falha kLeituraDeNulo{[]() -> HRESULT { return *g_nulo; }, 0x8004EAC5};
constexpr Falha kDivisao{[]() -> HRESULT { return 10 / g_zero; }, 0x8004EAD3};
constexpr Falha kFalhas[] = {
    kLeituraDeNulo,
    kDivisao,
    {[]() -> HRESULT { return reinterpret_cast<HRESULT (*)()>(reinterpret_cast<void *>(g_nulo))(); }, 0x8004EAC5},
    {[]() -> HRESULT {
       asm volatile("ud2");
       return 0;
     },
     0x8004EAD1},
    {[]() -> HRESULT { return Recorre(0); }, 0x8004EADA},
};

constexpr DWORD kDesenrolo = 0x80000029;  ///< the system's own unwinding

/// True when another thread gets the lock within the time limit. The thread is left behind otherwise.
bool LivreParaOutraThread(SecaoCritica &secao) {
  // Not a std::thread: detached before it has begun, one of this runtime's may never run.
  const auto corpo = [](void *pSecao) -> DWORD {
    const CQZTrava trava(*static_cast<SecaoCritica *>(pSecao));
    return 0;
  };
  const HANDLE hThread = CreateThread(nullptr, 0, corpo, &secao, 0, nullptr);
  const bool bLivre = WaitForSingleObject(hThread, kPrazoMs) == WAIT_OBJECT_0;
  CloseHandle(hThread);
  return bLivre;
}

/// A body that fails under the guard while its thread holds locks comes to its code, and the locks are free for others.
/// An inlined one stands directly between lock and unlock, where the optimiser sees everything.
template <class Corpo>
void EsperaCodigoETravasLivres(Corpo corpo, std::uint32_t hr) {
  SecaoCritica externa(NivelTrava::Container);
  SecaoCritica interna(NivelTrava::ArquivoDados);
  EXPECT_EQ(Guarda([&]() -> HRESULT {
              const CQZTrava trava(externa);
              const CQZTrava outra(interna);
              const CQZTrava recursiva(interna);
              return corpo();
            }),
            hr);
  EXPECT_EQ(LivroDaThread::Marca(), 0U);
  ASSERT_TRUE(LivreParaOutraThread(interna));
  ASSERT_TRUE(LivreParaOutraThread(externa));
}

// In the order of their results, 0x8004EAC5 onwards.
constexpr DWORD kCodigos[] = {0xC0000005, 0xC000008C, 0x80000003, 0x80000002, 0xC000008D, 0xC000008E,
                              0xC000008F, 0xC0000090, 0xC0000091, 0xC0000092, 0xC0000093, 0x80000001,
                              0xC000001D, 0xC0000006, 0xC0000094, 0xC0000095, 0xC0000026, 0xC0000008,
                              0xC0000025, 0xC0000096, 0x80000004, 0xC00000FD};

}  // namespace

TEST(Guarda, CadaCodigoDaTabelaELevantadoEtraduzido) {
  std::uint32_t esperado = 0x8004EAC5;
  for (const DWORD codigo : kCodigos) {
    SCOPED_TRACE(codigo);
    EXPECT_TRUE(EhErroSEH(CodigoResultado(esperado)));
    EXPECT_EQ(Guarda([codigo]() -> HRESULT {
                RaiseException(codigo, 0, 0, nullptr);
                return 0;
              }),
              esperado++);
    EXPECT_EQ(UltimoCodigoExcecao(), codigo);
  }
  EXPECT_EQ(BitsResultado(TraduzCodigoExcecao(kDesenrolo)), 0x8004EADBU);
  EXPECT_EQ(BitsResultado(TraduzCodigoExcecao(0xC0000409)), 0x8004EE47U);
  EXPECT_TRUE(EhErroSEH(CodigoResultado(0x8004EADB)) && EhErroSEH(CodigoResultado(0x8004EE47)));
  for (const std::uint32_t hr : {0x8004EAC4U, 0x8004EADCU, 0x8004EE46U, 0x8004EE48U, 0x0004EAC5U}) {
    EXPECT_FALSE(EhErroSEH(CodigoResultado(hr))) << std::hex << hr;
  }
}

// Each on a thread of its own, all at once, time after time.
TEST(Guarda, FalhasReaisViramCodigosESoltamAsTravas) {
  std::vector<std::jthread> threads;
  for (const Falha &falha : kFalhas) {
    threads.emplace_back([&falha] {
      for (int i = 0; i < 50; ++i) {
        EsperaCodigoETravasLivres(falha.corpo, falha.hr);
      }
    });
  }
  EsperaCodigoETravasLivres(
      []() __attribute__((always_inline)) { return *g_nulo; }, 0x8004EAC5);
  EsperaCodigoETravasLivres(
      []() __attribute__((always_inline)) { return 7 / g_zero; }, 0x8004EAD3);
  EsperaCodigoETravasLivres(
      []() __attribute__((always_inline)) { return *g_nulo = 3; }, 0x8004EAC5);
}

// Somebody further out takes everything, as the component platform may.
TEST(Guarda, QuemESaltadoPorOutroSoltaTudoEAbandona) {
  static SecaoCritica s_secao(NivelTrava::ArquivoDados);
  static std::vector<std::size_t> s_marcas;  // of the ledger, at each call of the abandonment
  static DWORD s_codigo;
  const auto tomaTudo = [](const EXCEPTION_RECORD &) -> LONG { return EXCEPTION_EXECUTE_HANDLER; };
  const auto sobGuarda = [](void *) -> HRESULT {
    const auto levantaComTrava = [](void *) -> HRESULT {
      const CQZTrava trava(s_secao);
      RaiseException(s_codigo, 0, 0, nullptr);
      return 0;
    };
    return ChamaSEH(levantaComTrava, nullptr, {[](void *) { s_marcas.push_back(LivroDaThread::Marca()); }, nullptr});
  };
  for (const DWORD codigo : {0xE06D7363UL, 0xE0000001UL, 0xC0000409UL, kDesenrolo, 0xC0000005UL}) {
    SCOPED_TRACE(codigo);
    const bool bDaGuarda = codigo == 0xC0000005;  // of the table
    s_codigo = codigo;
    s_marcas.clear();
    const plataforma::SaidaSEH saida = plataforma::ChamaEmQuadroSEH(sobGuarda, nullptr, tomaTudo);
    EXPECT_EQ(saida.bExcecao, !bDaGuarda);
    EXPECT_EQ(bDaGuarda ? BitsResultado(saida.hr) : saida.codigo, bDaGuarda ? 0x8004EAC5U : codigo);
    EXPECT_EQ(s_marcas, std::vector<std::size_t>(bDaGuarda ? 0 : 1));
    ASSERT_TRUE(LivreParaOutraThread(s_secao));
  }
}

/// Memory that its file's device fails under is one thing, a fault of ours another.
TEST(Guarda, MemoriaMapeadaTomaSoAFalhaDoDispositivo) {
  static DWORD s_codigo;
  bool bTocou = true;
  const auto toca = [&]() -> HRESULT {
    bTocou = plataforma::TocaMemoriaMapeada([] { RaiseException(s_codigo, 0, 0, nullptr); });
    return 0;
  };
  s_codigo = 0xC0000006;
  EXPECT_EQ(Guarda(toca), 0U);
  EXPECT_FALSE(bTocou);
  s_codigo = 0xC0000005;
  EXPECT_EQ(Guarda(toca), 0x8004EAC5U);
}

// And a release that fails itself does not keep the others from being made.
TEST(Guarda, QuadroInternoSoltaTudoOSeuENadaMais) {
  SecaoCritica secao(NivelTrava::Temporario);
  const auto falhaDuasVezes = [&]() -> HRESULT {
    const std::size_t uiAntes = LivroDaThread::Marca();
    const std::uint32_t hrInterno = Guarda([&]() -> HRESULT {
      const CQZTrava trava(secao);
      const plataforma::CQZNoLivro objeto(&secao, [](void *) { kLeituraDeNulo.corpo(); });
      const CQZTrava recursiva(secao);
      return kLeituraDeNulo.corpo();
    });
    EXPECT_EQ(hrInterno, 0x8004EAC5U);
    EXPECT_EQ(LivroDaThread::Marca(), uiAntes);
    return kDivisao.corpo();
  };
  EsperaCodigoETravasLivres(falhaDuasVezes, 0x8004EAD3);
  ASSERT_TRUE(LivreParaOutraThread(secao));
}
