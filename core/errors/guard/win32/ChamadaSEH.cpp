#include "core/errors/guard/win32/ChamadaSEH.h"

#include <windows.h>

#include <atomic>
#include <iterator>

namespace {

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

std::atomic<DWORD> g_ultimoCodigo{0};

const LinhaExcecao *Procura(DWORD codigo) {
  for (const LinhaExcecao &linha : kTabela) {
    if (linha.codigo == codigo) {
      return &linha;
    }
  }
  return nullptr;
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

HRESULT ChamaSEH(CorpoSEH corpo, void *pContexto, const plataforma::AbandonoSEH &abandono) {
  const plataforma::SaidaSEH saida = plataforma::ChamaEmQuadroSEH(corpo, pContexto, FiltraExcecaoEstruturada, abandono);
  return saida.bExcecao ? TraduzCodigoExcecao(saida.codigo) : saida.hr;
}
