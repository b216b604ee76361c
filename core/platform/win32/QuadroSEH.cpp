#include "core/platform/win32/QuadroSEH.h"

#include <windows.h>
//
#include <malloc.h>

#include "core/platform/LivroDaThread.h"

namespace plataforma {
namespace {

/// What a frame shares with its filter and its unwind handler; SehCall.S knows the places of the first three.
struct Quadro {
  LONG (*filtra)(EXCEPTION_POINTERS *pExcecao, Quadro *pQuadro);
  void (*desenrola)(Quadro *pQuadro);
  HRESULT hr;
  DWORD codigo;  ///< of the last exception that came by, 0 for none
  bool bTomada;  ///< the filter took it
  FiltroSEH filtro;
  AbandonoSEH abandono;
  std::size_t marca;  ///< of the ledger, on entry
};

extern "C" DWORD SehCall(CorpoSEH corpo, void *pContexto, Quadro *pQuadro);

/// Stack kept back for the filter when a thread has used up all of its own.
constexpr ULONG kReservaDePilha = 65536;

thread_local bool t_bPreparada = false;

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

/// The codes with which this compiler's runtime throws, resumes and forces an unwinding: its throws run destructors.
constexpr bool DoProprioCompilador(DWORD codigo) {
  return codigo == 0x20474343 || codigo == 0x21474343 || codigo == 0x22474343;
}

LONG Filtra(EXCEPTION_POINTERS *pExcecao, Quadro *pQuadro) {
  pQuadro->codigo = pExcecao->ExceptionRecord->ExceptionCode;
  pQuadro->bTomada = pQuadro->filtro(*pExcecao->ExceptionRecord) == EXCEPTION_EXECUTE_HANDLER;
  return pQuadro->bTomada ? EXCEPTION_EXECUTE_HANDLER : EXCEPTION_CONTINUE_SEARCH;
}

/// Releases what the thread took since `marca`. A release that faults in its turn is given up, and the next one is done
/// all the same.
void SoltaDesde(std::size_t marca, FiltroSEH filtro) {
  while (LivroDaThread::Marca() > marca) {
    ChamaEmQuadroSEH(
        [](void *pMarca) -> HRESULT {
          LivroDaThread::SoltaAte(*static_cast<const std::size_t *>(pMarca));
          return 0;
        },
        &marca, filtro);
  }
}

/// Somebody further out took what the filter refused.
void Abandona(Quadro *pQuadro) {
  if (pQuadro->bTomada || DoProprioCompilador(pQuadro->codigo)) {
    return;
  }
  SoltaDesde(pQuadro->marca, pQuadro->filtro);
  if (pQuadro->abandono.funcao != nullptr) {
    pQuadro->abandono.funcao(pQuadro->abandono.pContexto);
  }
}

}  // namespace

[[gnu::noinline]] SaidaSEH ChamaEmQuadroSEH(CorpoSEH corpo, void *pContexto, FiltroSEH filtro,
                                            const AbandonoSEH &abandono) {
  PreparaThread();
  Quadro quadro{.filtra = Filtra,
                .desenrola = Abandona,
                .hr = 0,
                .codigo = 0,
                .bTomada = false,
                .filtro = filtro,
                .abandono = abandono,
                .marca = LivroDaThread::Marca()};
  if (SehCall(corpo, pContexto, &quadro) == 0) {
    return {.bExcecao = false, .hr = quadro.hr, .codigo = 0};
  }
  SoltaDesde(quadro.marca, filtro);
  if (quadro.codigo == EXCEPTION_STACK_OVERFLOW) {
    _resetstkoflw();
  }
  return {.bExcecao = true, .hr = 0, .codigo = quadro.codigo};
}

}  // namespace plataforma
