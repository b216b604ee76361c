#include "core/errors/guard/win32/ChamadaSEH.h"

#include <windows.h>

#include <atomic>

#include "core/errors/CodigosResultado.h"

namespace {

struct LinhaExcecao {
  DWORD codigo;
  HRESULT hr;
};

constexpr DWORD kConsolidacaoDePilha = 0x80000029;

constexpr LinhaExcecao kTabela[] = {
    {0xC0000005, codigos::kFalhaAcessoInvalido},
    {0xC000008C, codigos::kFalhaForaDoVetor},
    {0x80000003, codigos::kFalhaPontoDeParada},
    {0x80000002, codigos::kFalhaDesalinhamento},
    {0xC000008D, codigos::kFalhaRealDenormal},
    {0xC000008E, codigos::kFalhaRealDivisaoPorZero},
    {0xC000008F, codigos::kFalhaRealInexato},
    {0xC0000090, codigos::kFalhaRealInvalida},
    {0xC0000091, codigos::kFalhaRealEstouro},
    {0xC0000092, codigos::kFalhaRealPilha},
    {0xC0000093, codigos::kFalhaRealPequeno},
    {0x80000001, codigos::kFalhaPaginaDeGuarda},
    {0xC000001D, codigos::kFalhaInstrucaoIlegal},
    {0xC0000006, codigos::kFalhaPaginaNaoLida},
    {0xC0000094, codigos::kFalhaDivisaoPorZero},
    {0xC0000095, codigos::kFalhaEstouroDeInteiro},
    {0xC0000026, codigos::kFalhaDisposicaoInvalida},
    {0xC0000008, codigos::kFalhaHandleInvalido},
    {0xC0000025, codigos::kFalhaSemContinuacao},
    {0xC0000096, codigos::kFalhaInstrucaoPrivilegiada},
    {0x80000004, codigos::kFalhaPassoAPasso},
    {0xC00000FD, codigos::kFalhaEstouroDePilha},
    {kConsolidacaoDePilha, codigos::kFalhaConsolidacaoDePilha},
};

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
  return pLinha != nullptr ? pLinha->hr : codigos::kFalhaOutra;
}

bool EhErroSEH(HRESULT hr) {
  return (hr >= codigos::kFalhaAcessoInvalido && hr <= codigos::kFalhaConsolidacaoDePilha) ||
         hr == codigos::kFalhaOutra;
}

HRESULT ChamaSEH(CorpoSEH corpo, void *pContexto, const plataforma::AbandonoSEH &abandono) {
  const plataforma::SaidaSEH saida = plataforma::ChamaEmQuadroSEH(corpo, pContexto, FiltraExcecaoEstruturada, abandono);
  return saida.bExcecao ? TraduzCodigoExcecao(saida.codigo) : saida.hr;
}
