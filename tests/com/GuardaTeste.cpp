#include <gtest/gtest.h>
#include <windows.h>

#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "core/errors/guard/win32/ChamadaSEH.h"
#include "core/platform/LivroDaThread.h"
#include "core/platform/MemoriaMapeada.h"
#include "core/platform/Travas.h"
#include "tests/apoio/ProcessoFilho.h"

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
  const char *lpNome;
  HRESULT (*corpo)();
  std::uint32_t hr;
};

constexpr Falha kLeituraDeNulo{"null read", []() -> HRESULT { return *g_nulo; }, 0x8004EAC5};
constexpr Falha kDivisao{"division", []() -> HRESULT { return 10 / g_zero; }, 0x8004EAD3};

constexpr Falha kFalhas[] = {
    kLeituraDeNulo,
    kDivisao,
    {"null write", []() -> HRESULT { return *g_nulo = 1; }, 0x8004EAC5},
    {"null call", [] { return reinterpret_cast<HRESULT (*)()>(reinterpret_cast<void *>(g_nulo))(); }, 0x8004EAC5},
    {"illegal instruction",
     []() -> HRESULT {
       asm volatile("ud2");
       return 0;
     },
     0x8004EAD1},
    {"privileged instruction",
     []() -> HRESULT {
       asm volatile("hlt");
       return 0;
     },
     0x8004EAD8},
    {"breakpoint",
     []() -> HRESULT {
       __debugbreak();
       return 0;
     },
     0x8004EAC7},
    {"guard page",
     []() -> HRESULT {
       return *static_cast<volatile char *>(VirtualAlloc(nullptr, 4096, MEM_COMMIT, PAGE_READWRITE | PAGE_GUARD));
     },
     0x8004EAD0},
};

/// Raises an exception under the guard.
std::uint32_t Levanta(DWORD codigo) {
  return Guarda([codigo]() -> HRESULT {
    RaiseException(codigo, 0, 0, nullptr);
    return 0;
  });
}

/// The process's last handler: ends it with the exception's code before a debugger is called.
LONG WINAPI TerminaComOCodigo(EXCEPTION_POINTERS *pExcecao) {
  TerminateProcess(GetCurrentProcess(), pExcecao->ExceptionRecord->ExceptionCode);
  return EXCEPTION_CONTINUE_SEARCH;
}

/// Child process: meets the exception under the guard, which lets it pass on. Coming back here is the failure, 1.
int LevantaSobGuarda(const std::vector<std::string> &argumentos) {
  const DWORD codigo = std::stoul(argumentos.at(0), nullptr, 16);
  SetUnhandledExceptionFilter(TerminaComOCodigo);
  static_cast<void>(Levanta(codigo));
  return 1;
}

const apoio::RegistraFilha g_levanta("levanta_sob_guarda", LevantaSobGuarda);

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

// In the order of their results, 0x8004EAC5 onwards.
constexpr DWORD kCodigos[] = {0xC0000005, 0xC000008C, 0x80000003, 0x80000002, 0xC000008D, 0xC000008E,
                              0xC000008F, 0xC0000090, 0xC0000091, 0xC0000092, 0xC0000093, 0x80000001,
                              0xC000001D, 0xC0000006, 0xC0000094, 0xC0000095, 0xC0000026, 0xC0000008,
                              0xC0000025, 0xC0000096, 0x80000004, 0xC00000FD};

}  // namespace

TEST(Guarda, ResultadoDoCorpoPassaSemMudar) {
  for (const std::uint32_t hr : {0U, 1U, 0x810809D9U, 0x8004EAC5U, 0xFFFFFFFFU}) {
    EXPECT_EQ(Guarda([hr] { return CodigoResultado(hr); }), hr);
  }
}

TEST(Guarda, CadaCodigoDaTabelaELevantadoEtraduzido) {
  std::uint32_t esperado = 0x8004EAC5;
  for (const DWORD codigo : kCodigos) {
    SCOPED_TRACE(codigo);
    EXPECT_EQ(Levanta(codigo), esperado++);
    EXPECT_EQ(UltimoCodigoExcecao(), codigo);
  }
}

TEST(Guarda, FiltroRecusaODesenroloOThrowEOsDesconhecidos) {
  for (const DWORD codigo : {0x80000029UL, 0x20474343UL, 0xE06D7363UL, 0xC0000409UL, 0x00000000UL}) {
    EXCEPTION_RECORD excecao{};
    excecao.ExceptionCode = codigo;
    EXPECT_EQ(FiltraExcecaoEstruturada(excecao), EXCEPTION_CONTINUE_SEARCH) << std::hex << codigo;
    EXPECT_EQ(UltimoCodigoExcecao(), codigo);
  }
  EXPECT_EQ(BitsResultado(TraduzCodigoExcecao(0x80000029)), 0x8004EADBU);
  EXPECT_EQ(BitsResultado(TraduzCodigoExcecao(0xC0000409)), 0x8004EE47U);
}

TEST(Guarda, OsQuePassamAdianteTerminamOProcesso) {
  for (const char *lpCodigo : {"80000029", "C0000409"}) {
    apoio::ProcessoFilho filho("levanta_sob_guarda", {lpCodigo});
    EXPECT_EQ(static_cast<std::uint32_t>(filho.Espera()), std::stoul(lpCodigo, nullptr, 16)) << lpCodigo;
  }
}

TEST(Guarda, LimitesDeEhErroSEH) {
  for (const std::uint32_t hr : {0x8004EAC4U, 0x8004EADCU, 0x8004EE46U, 0x8004EE48U, 0x8004EA66U, 0x0004EAC5U, 0U}) {
    EXPECT_FALSE(EhErroSEH(CodigoResultado(hr))) << std::hex << hr;
  }
  for (const std::uint32_t hr : {0x8004EAC5U, 0x8004EADAU, 0x8004EADBU, 0x8004EE47U}) {
    EXPECT_TRUE(EhErroSEH(CodigoResultado(hr))) << std::hex << hr;
  }
}

TEST(Guarda, FalhasReaisViramCodigosESoltamAsTravas) {
  SecaoCritica externa(NivelTrava::Container);
  SecaoCritica interna(NivelTrava::ArquivoDados);
  for (const Falha &falha : kFalhas) {
    SCOPED_TRACE(falha.lpNome);
    EXPECT_EQ(Guarda([&]() -> HRESULT {
                const CQZTrava trava(externa);
                const CQZTrava outra(interna);
                const CQZTrava recursiva(interna);
                return falha.corpo();
              }),
              falha.hr);
    EXPECT_EQ(LivroDaThread::Marca(), 0U);
    ASSERT_TRUE(LivreParaOutraThread(interna));
    ASSERT_TRUE(LivreParaOutraThread(externa));
  }
}

// The load, the division and the store stand directly between lock and unlock, where the optimiser sees everything.
TEST(Guarda, FalhaSemChamadaEntreTravaEDestrava) {
  SecaoCritica secao(NivelTrava::ArquivoDados);
  const auto falhaEntre = [&](auto corpo, std::uint32_t hr) {
    EXPECT_EQ(Guarda([&]() -> HRESULT {
                const CQZTrava trava(secao);
                return corpo();
              }),
              hr);
    ASSERT_TRUE(LivreParaOutraThread(secao));
  };
  falhaEntre(
      []() __attribute__((always_inline)) { return *g_nulo; }, 0x8004EAC5);
  falhaEntre(
      []() __attribute__((always_inline)) { return 7 / g_zero; }, 0x8004EAD3);
  falhaEntre(
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
  for (const DWORD codigo : {0xE06D7363UL, 0xE0000001UL, 0xC0000409UL}) {
    SCOPED_TRACE(codigo);
    s_codigo = codigo;
    s_marcas.clear();
    const plataforma::SaidaSEH saida = plataforma::ChamaEmQuadroSEH(sobGuarda, nullptr, tomaTudo);
    EXPECT_TRUE(saida.bExcecao);
    EXPECT_EQ(saida.codigo, codigo);
    EXPECT_EQ(s_marcas, std::vector<std::size_t>{0});
    ASSERT_TRUE(LivreParaOutraThread(s_secao));
  }
  // A fault of the table is the guard's own.
  s_codigo = 0xC0000005;
  s_marcas.clear();
  EXPECT_EQ(BitsResultado(plataforma::ChamaEmQuadroSEH(sobGuarda, nullptr, tomaTudo).hr), 0x8004EAC5U);
  EXPECT_TRUE(s_marcas.empty());
}

/// Memory that its file's device fails under is one thing, a fault of ours another.
TEST(Guarda, MemoriaMapeadaTomaSoAFalhaDoDispositivo) {
  static DWORD s_codigo;
  const auto levanta = [](void *pbTocou) -> HRESULT {
    *static_cast<bool *>(pbTocou) = plataforma::TocaMemoriaMapeada([] { RaiseException(s_codigo, 0, 0, nullptr); });
    return 0;
  };
  bool bTocou = true;
  s_codigo = 0xC0000006;
  EXPECT_EQ(Guarda([&] { return levanta(&bTocou); }), 0U);
  EXPECT_FALSE(bTocou);
  s_codigo = 0xC0000005;
  EXPECT_EQ(Guarda([&] { return levanta(&bTocou); }), 0x8004EAC5U);
}

TEST(Guarda, QuadroInternoSoltaSoOSeu) {
  SecaoCritica externa(NivelTrava::Container);
  SecaoCritica interna(NivelTrava::ArquivoDados);
  std::uint32_t hrInterno = 0;
  std::size_t uiNoMeio = 0;
  EXPECT_EQ(Guarda([&]() -> HRESULT {
              const CQZTrava trava(externa);
              hrInterno = Guarda([&]() -> HRESULT {
                const CQZTrava outra(interna);
                return kLeituraDeNulo.corpo();
              });
              uiNoMeio = LivroDaThread::Marca();
              return kDivisao.corpo();
            }),
            0x8004EAD3U);
  EXPECT_EQ(hrInterno, 0x8004EAC5U);
  EXPECT_EQ(uiNoMeio, 1U);
  EXPECT_EQ(LivroDaThread::Marca(), 0U);
  ASSERT_TRUE(LivreParaOutraThread(interna));
  ASSERT_TRUE(LivreParaOutraThread(externa));
}

TEST(Guarda, SolturaQueFalhaNaoImpedeAsOutras) {
  SecaoCritica secao(NivelTrava::ArquivoDados);
  EXPECT_EQ(Guarda([&]() -> HRESULT {
              const CQZTrava trava(secao);
              const plataforma::CQZNoLivro objeto(&secao, [](void *) { kLeituraDeNulo.corpo(); });
              const CQZTrava recursiva(secao);
              return kDivisao.corpo();
            }),
            0x8004EAD3U);
  EXPECT_EQ(LivroDaThread::Marca(), 0U);
  ASSERT_TRUE(LivreParaOutraThread(secao));
}

TEST(Guarda, ThrowAtravessaOQuadroComDestrutores) {
  SecaoCritica secao(NivelTrava::ArquivoDados);
  bool bDestruiu = false;
  struct Marca {
    bool &b;
    ~Marca() { b = true; }
  };
  auto corpo = [&]() -> HRESULT {
    const Marca marca{bDestruiu};
    const CQZTrava trava(secao);
    throw std::runtime_error("x");
  };
  bool bAbandonou = false;
  EXPECT_THROW(ChamaSEH([](void *p) -> HRESULT { return (*static_cast<decltype(corpo) *>(p))(); }, &corpo,
                        {[](void *p) { *static_cast<bool *>(p) = true; }, &bAbandonou}),
               std::runtime_error);
  EXPECT_TRUE(bDestruiu);
  EXPECT_FALSE(bAbandonou);
  EXPECT_EQ(LivroDaThread::Marca(), 0U);
  ASSERT_TRUE(LivreParaOutraThread(secao));
}

TEST(Guarda, PilhaEsgotadaDuasVezesNaMesmaThread) {
  const auto duasVezes = [] {
    std::vector<std::uint32_t> codigos;
    for (int i = 0; i < 3; ++i) {
      codigos.push_back(Guarda([]() -> HRESULT { return Recorre(0); }));
    }
    return codigos;
  };
  const std::vector<std::uint32_t> esperado(3, 0x8004EADA);
  EXPECT_EQ(duasVezes(), esperado);
  EXPECT_EQ(std::async(std::launch::async, duasVezes).get(), esperado);
}

TEST(Guarda, ThreadsQueFalhamJuntasRecebemCadaUmaOSeuCodigo) {
  const auto repete = [](const Falha &falha) {
    int iErradas = 0;
    for (int i = 0; i < 500; ++i) {
      iErradas += Guarda(falha.corpo) == falha.hr ? 0 : 1;
    }
    return iErradas;
  };
  std::vector<std::future<int>> erradas;
  for (const std::size_t i : {0U, 1U, 4U, 5U}) {
    erradas.push_back(std::async(std::launch::async, repete, std::cref(kFalhas[i])));
  }
  for (std::future<int> &futura : erradas) {
    EXPECT_EQ(futura.get(), 0);
  }
}
