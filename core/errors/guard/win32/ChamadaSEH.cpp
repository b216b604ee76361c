#include "core/errors/guard/win32/ChamadaSEH.h"

#include <windows.h>
//
#include <malloc.h>

#include <atomic>
#include <iterator>

#include "core/platform/LivroTravas.h"

namespace {

/// What the frame and its filter share; SehCall.S knows that `hr` comes first.
struct QuadroSEH {
  HRESULT hr;
  DWORD codigo;
};

using FiltroQuadro = LONG (*)(EXCEPTION_POINTERS *pExcecao, QuadroSEH *pQuadro);

extern "C" DWORD SehCall(CorpoSEH corpo, void *pContexto, FiltroQuadro filtro, QuadroSEH *pQuadro);

struct LinhaExcecao {
  DWORD codigo;
  HRESULT hr;
};

constexpr DWORD kConsolidacaoDePilha = 0x80000029;

constexpr LinhaExcecao kTabela[] = {
    {0xC0000005, CodigoResultado(0x8004EAC5)},            // access violation
    {0xC000008C, CodigoResultado(0x8004EAC6)},            // array bounds exceeded
    {0x80000003, CodigoResultado(0x8004EAC7)},            // breakpoint
    {0x80000002, CodigoResultado(0x8004EAC8)},            // data type misalignment
    {0xC000008D, CodigoResultado(0x8004EAC9)},            // float denormal operand
    {0xC000008E, CodigoResultado(0x8004EACA)},            // float divide by zero
    {0xC000008F, CodigoResultado(0x8004EACB)},            // float inexact result
    {0xC0000090, CodigoResultado(0x8004EACC)},            // float invalid operation
    {0xC0000091, CodigoResultado(0x8004EACD)},            // float overflow
    {0xC0000092, CodigoResultado(0x8004EACE)},            // float stack check
    {0xC0000093, CodigoResultado(0x8004EACF)},            // float underflow
    {0x80000001, CodigoResultado(0x8004EAD0)},            // guard page
    {0xC000001D, CodigoResultado(0x8004EAD1)},            // illegal instruction
    {0xC0000006, CodigoResultado(0x8004EAD2)},            // in-page error
    {0xC0000094, CodigoResultado(0x8004EAD3)},            // integer divide by zero
    {0xC0000095, CodigoResultado(0x8004EAD4)},            // integer overflow
    {0xC0000026, CodigoResultado(0x8004EAD5)},            // invalid disposition
    {0xC0000008, CodigoResultado(0x8004EAD6)},            // invalid handle
    {0xC0000025, CodigoResultado(0x8004EAD7)},            // non-continuable exception
    {0xC0000096, CodigoResultado(0x8004EAD8)},            // privileged instruction
    {0x80000004, CodigoResultado(0x8004EAD9)},            // single step
    {0xC00000FD, CodigoResultado(0x8004EADA)},            // stack overflow
    {kConsolidacaoDePilha, CodigoResultado(0x8004EADB)},  // unwind consolidate
};

constexpr HRESULT kOutraExcecao = CodigoResultado(0x8004EE47);

/// Stack kept back for the filter when a thread has used up all of its own.
constexpr ULONG kReservaDePilha = 65536;

std::atomic<DWORD> g_ultimoCodigo{0};

thread_local bool t_bPreparada = false;

const LinhaExcecao *Procura(DWORD codigo) {
  for (const LinhaExcecao &linha : kTabela) {
    if (linha.codigo == codigo) {
      return &linha;
    }
  }
  return nullptr;
}

LONG FiltraNoQuadro(EXCEPTION_POINTERS *pExcecao, QuadroSEH *pQuadro) {
  const LONG lResposta = FiltraExcecaoEstruturada(*pExcecao->ExceptionRecord);
  if (lResposta == EXCEPTION_EXECUTE_HANDLER) {
    pQuadro->codigo = pExcecao->ExceptionRecord->ExceptionCode;
  }
  return lResposta;
}

/// Releases what the thread took since `marca`. A release that faults in its turn is given up, and the next one is
/// done all the same.
void SoltaDesde(std::size_t marca) {
  while (plataforma::LivroTravas::Marca() > marca) {
    QuadroSEH quadro{};
    SehCall(
        [](void *pMarca) -> HRESULT {
          plataforma::LivroTravas::SoltaAte(*static_cast<const std::size_t *>(pMarca));
          return 0;
        },
        &marca, FiltraNoQuadro, &quadro);
  }
}

/// A stack overflow can be met only when the thread keeps some stack back. The guard page is set up anew so that the
/// reserve counts at once; where it is intact that call changes nothing.
void PreparaThread() {
  if (!t_bPreparada) {
    ULONG reserva = kReservaDePilha;
    SetThreadStackGuarantee(&reserva);
    _resetstkoflw();
    t_bPreparada = true;
  }
}

}  // namespace

LONG FiltraExcecaoEstruturada(const EXCEPTION_RECORD &excecao) {
  const DWORD codigo = excecao.ExceptionCode;
  g_ultimoCodigo.store(codigo, std::memory_order_relaxed);
  return codigo != kConsolidacaoDePilha && Procura(codigo) != nullptr ? EXCEPTION_EXECUTE_HANDLER
                                                                      : EXCEPTION_CONTINUE_SEARCH;
}

DWORD UltimoCodigoExcecao() {
  return g_ultimoCodigo.load(std::memory_order_relaxed);
}

HRESULT TraduzCodigoExcecao(DWORD codigo) {
  const LinhaExcecao *pLinha = Procura(codigo);
  return pLinha != nullptr ? pLinha->hr : kOutraExcecao;
}

bool EhErroSEH(HRESULT hr) {
  return (hr >= std::begin(kTabela)->hr && hr <= std::rbegin(kTabela)->hr) || hr == kOutraExcecao;
}

[[gnu::noinline]] HRESULT ChamaSEH(CorpoSEH corpo, void *pContexto) {
  PreparaThread();
  const std::size_t marca = plataforma::LivroTravas::Marca();
  QuadroSEH quadro{};
  if (SehCall(corpo, pContexto, FiltraNoQuadro, &quadro) == 0) {
    return quadro.hr;
  }
  SoltaDesde(marca);
  if (quadro.codigo == EXCEPTION_STACK_OVERFLOW) {
    _resetstkoflw();
  }
  return TraduzCodigoExcecao(quadro.codigo);
}
