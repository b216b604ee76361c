#include <gtest/gtest.h>
#include <windows.h>
//
#include <comdef.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "core/platform/LivroDaThread.h"
#include "core/platform/ServicosSistema.h"
#include "server/ContagemModulo.h"
#include "tests/apoio/ArquivosComFalha.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/apoio/ValoresProprios.h"
#include "tests/com/ApoioServico.h"

// The service object with a fault at one point after the other: each operation failing at its allocations and at its
// file operations, where it holds whatever it may hold, until one run meets no fault.

static thread_local int t_iAlocacoesAteFalhar = 0;  ///< counts down; the thread's allocation that reaches 0 fails

// Not inlined: the compiler would take the malloc and free inside for mismatched pairs.
[[gnu::noinline]] void *operator new(std::size_t uiTamanho) {
  void *const p = t_iAlocacoesAteFalhar == 0 || --t_iAlocacoesAteFalhar != 0 ? std::malloc(uiTamanho + 1) : nullptr;
  return p != nullptr ? p : throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void *p) noexcept {
  std::free(p);
}
[[gnu::noinline]] void operator delete(void *p, std::size_t) noexcept {
  std::free(p);
}

namespace {

using namespace apoiocom;

int *volatile g_nulo = nullptr;
volatile int g_zero = 0;

/// What happens at a point.
struct Falha {
  const char *lpNome;
  void (*executa)();  ///< at a file operation; null: an allocation fails
  std::uint32_t hr;   ///< of a call that it fails
  bool bObjetoFica;   ///< the object goes on as it was
};

constexpr Falha kFalhas[] = {
    {"memory", nullptr, 0x8004EA64, true},
    {"division", [] { g_zero = 10 / g_zero; }, 0x8004EAD3, false},
    {"null pointer", [] { *g_nulo = 1; }, 0x8004EAC5, false},
    {"exception", [] { throw _com_error(E_ACCESSDENIED); }, 0x80070005, true},
};

/// What there is before the call.
enum class Antes { Nada, Novo, Aberto, AbertoPorDois };

struct Cenario {
  const char *lpNome;
  std::size_t uiVeiculos;  ///< V001, V002... in the base; without any it has no files
  bool bVersao0;           ///< the base still has its unused first record
  Antes eAntes;
  HRESULT (*chama)(Veiculos &spVeiculos, LPWSTR lpEmpresa);  ///< allocates nothing of its own
};

HRESULT CriaObjeto(Veiculos &v, LPWSTR) {
  void *pObjeto = nullptr;
  const HRESULT hr = CQZDF_Veiculos::Cria(nullptr, IID_IQZDF_Veiculos, &pObjeto);
  EXPECT_EQ(pObjeto != nullptr, SUCCEEDED(hr));
  v.reset(static_cast<IQZDF_Veiculos *>(pObjeto));
  return hr;
}

HRESULT InicializaDenovo(Veiculos &v, LPWSTR lpEmpresa) {
  return v->Inicializa(lpEmpresa, 7, 42);
}

HRESULT Acrescenta(Veiculos &v, LPWSTR) {
  LONG lPos = 0;
  const HRESULT hr = v->Grava(&lPos, Veiculo("V003"));
  EXPECT_EQ(lPos != 0, SUCCEEDED(hr));
  return hr;
}

HRESULT GravaPorCima(Veiculos &v, LPWSTR) {
  LONG lPos = 2;
  return v->Grava(&lPos, Veiculo("V002"));  // which had nothing but its code
}

Texto g_codigo("V002");

HRESULT LeDeTodosOsModos(Veiculos &v, LPWSTR) {
  LONG lPos = 9;
  LONG posicoes[] = {2, 1};
  unsigned uiQtd = 9;
  tagREG_VEICULOPS lidos[2];
  tagRESULTADO_BUSCA_VEICULOS resultado{};
  HRESULT hr = v->Le(2, lidos);
  hr = SUCCEEDED(hr) ? v->Existe(g_codigo.Get(), &lPos, lidos) : hr;
  hr = SUCCEEDED(hr) ? v->BuscaPonteiros({}, &resultado) : hr;
  EXPECT_EQ(resultado.Ponteiros != nullptr, resultado.iQtd == 2);
  CoTaskMemFree(resultado.Ponteiros);
  hr = SUCCEEDED(hr) ? v->LePonteiros(2, posicoes, lidos) : hr;
  hr = SUCCEEDED(hr) ? v->GetQuantidadeRegistros(&uiQtd) : hr;
  EXPECT_TRUE(FAILED(hr) || (lPos == 2 && uiQtd == 2 && CodigoDe(lidos[0]) == "V002"));
  return hr;
}

constexpr Cenario kCenarios[] = {
    {"creation", 1, false, Antes::Nada, CriaObjeto},
    {"Inicializa, no files", 0, false, Antes::Novo, InicializaDenovo},
    {"Inicializa, version 0", 2, true, Antes::Novo, InicializaDenovo},
    {"Inicializa, version 1", 2, false, Antes::Novo, InicializaDenovo},
    {"Inicializa, again", 1, false, Antes::Aberto, InicializaDenovo},
    {"Grava, first", 0, false, Antes::AbertoPorDois, Acrescenta},
    {"Grava, append", 2, false, Antes::AbertoPorDois, Acrescenta},
    {"Grava, in place", 2, false, Antes::AbertoPorDois, GravaPorCima},
    {"reading", 2, false, Antes::AbertoPorDois, LeDeTodosOsModos},
    {"destruction", 2, false, Antes::Aberto,
     [](Veiculos &v, LPWSTR) -> HRESULT {
       v.reset();
       return S_OK;
     }},
};

/// Runs a call on another thread and returns its result. One that does not come back ends the test program, which
/// could not end by itself any more. A thread of the pool: of the thousands that a series of faults would start, Wine
/// and the compiler's runtime lose one now and then, and with it the whole test.
HRESULT EmOutraThread(const std::function<HRESULT()> &chamada) {
  static const Handle s_hFeito(CreateEventA(nullptr, FALSE, FALSE, nullptr));
  static HRESULT s_hr;
  const auto executa = [](PTP_CALLBACK_INSTANCE, void *pChamada) {
    s_hr = (*static_cast<const std::function<HRESULT()> *>(pChamada))();
    SetEvent(s_hFeito.get());
  };
  TrySubmitThreadpoolCallback(executa, const_cast<std::function<HRESULT()> *>(&chamada), nullptr);
  if (WaitForSingleObject(s_hFeito.get(), kPrazo) != WAIT_OBJECT_0) {
    std::cerr << "still waiting for a lock" << std::endl;
    TerminateProcess(GetCurrentProcess(), 1);
  }
  return s_hr;
}

/// Each operation as the one that fails, on an object of its own.
class FalhaEmCadaPonto : public testing::TestWithParam<Cenario> {
protected:
  /// One run with a fault at its n-th point. Afterwards the object and another one work, no lock is held, no file
  /// stays open, and no record is lost, doubled or half written. False when there are fewer points.
  bool Roda(const Falha &falha, int n) {
    const Cenario &cenario = GetParam();
    const Empresa empresa;
    std::vector<std::string> esperados{"V001", "V002"};
    esperados.resize(cenario.uiVeiculos);
    std::string sBase(sizeof(RegVeiculo), '\0');
    for (const std::string &sCodigo : esperados) {
      sBase += sCodigo + std::string(sizeof(RegVeiculo) - sCodigo.size(), '\0');
    }
    if (!esperados.empty()) {
      empresa.Escreve("DFVEIC.DAT", sBase);
      EXPECT_TRUE(cenario.bVersao0 || ServicoPara(empresa)) << "the first object converts it";
    }
    apoio::ArquivosComFalha arquivos(plataforma::ArquivosDoSistema());
    const apoio::ServicosTrocados servicos(&arquivos);
    bool bFalhou = false;
    {
      Veiculos spOutro = cenario.eAntes == Antes::AbertoPorDois ? ServicoPara(empresa) : nullptr;
      Veiculos spVeiculos = cenario.eAntes == Antes::Nada   ? nullptr
                            : cenario.eAntes == Antes::Novo ? NovoServico()
                                                            : ServicoPara(empresa);
      Texto sEmpresa(empresa.Codigo());
      apoio::ColetorRastro rastro;
      if (falha.executa != nullptr) {
        arquivos.Arma({.enesima = static_cast<std::size_t>(n), .gravaAntes = 33, .aoFalhar = falha.executa});
      } else {
        t_iAlocacoesAteFalhar = n;
      }
      const HRESULT hr = cenario.chama(spVeiculos, sEmpresa.Get());
      const bool bFaltouMemoria = std::exchange(t_iAlocacoesAteFalhar, 0) == 0;
      bFalhou = falha.executa != nullptr ? arquivos.Disparou() : bFaltouMemoria;
      arquivos.Desarma();
      EXPECT_EQ(plataforma::LivroDaThread::Marca(), 0U);
      if (FAILED(hr)) {
        EXPECT_TRUE(bFalhou);
        EXPECT_EQ(Bits(hr), falha.hr);
        const std::vector<std::string> linhas = rastro.Toma();
        // Only an object whose own memory is missing fails before there is anything to trace with.
        EXPECT_TRUE(linhas.empty() ? cenario.eAntes == Antes::Nada && n == 1
                                   : linhas.back().starts_with("CQZDF_Veiculos::"))
            << testing::PrintToString(linhas);
      }
      if (falha.bObjetoFica) {
        EXPECT_EQ(cenario.chama(spVeiculos, sEmpresa.Get()), S_OK);
      }
      const std::size_t uiAcrescentados = (SUCCEEDED(hr) ? 1U : 0U) + (falha.bObjetoFica ? 1U : 0U);
      esperados.insert(esperados.end(), cenario.chama == Acrescenta ? uiAcrescentados : 0, "V003");
      esperados.emplace_back("OUTRO");
      // The other one first, while a file still bears a half-written record.
      EXPECT_EQ(EmOutraThread([&] {
                  spOutro = spOutro ? std::move(spOutro) : ServicoPara(empresa);
                  LONG lPos = 0;
                  const HRESULT hrOutro = spOutro ? spOutro->Grava(&lPos, Veiculo("OUTRO")) : E_UNEXPECTED;
                  EXPECT_EQ(static_cast<std::size_t>(lPos), esperados.size());
                  return hrOutro;
                }),
                S_OK);
    }
    EXPECT_EQ(arquivos.Abertos(), 0);
    EXPECT_EQ(CContagemModulo::DoProcesso().Quantidade(), 0);
    EXPECT_TRUE(ServicoPara(empresa)) << "the company opens again";
    EXPECT_EQ(CodigosNoDisco(empresa), esperados);
    return bFalhou;
  }
};

INSTANTIATE_TEST_SUITE_P(Cenarios, FalhaEmCadaPonto, testing::ValuesIn(kCenarios));

}  // namespace

// The first points lie in the service object itself; with headers and without, and with one machine fault and the
// other, each is tried. What comes after lies in the layers that the host build runs through point by point; of that a
// sample shows that it comes out as it must.
TEST_P(FalhaEmCadaPonto, UmaChamadaFalhaEOsOutrosContinuam) {
  constexpr int kPontosUmAUm = 16;
  for (int i = 0; i < 2 * static_cast<int>(std::size(kFalhas)); ++i) {
    const Falha &falha = kFalhas[i / 2];
    const apoio::ChaveCabecalho cabecalhos(i % 2 != 0);
    bool bFalhou = true;
    for (int n = 1 + (i / 2 + i) % 2; bFalhou; n += n < kPontosUmAUm ? 2 : 14) {
      SCOPED_TRACE(testing::Message() << GetParam().lpNome << ": " << falha.lpNome << " " << n << ", headers "
                                      << i % 2);
      ASSERT_LT(n, 5000);
      bFalhou = Roda(falha, n);
      ASSERT_FALSE(HasFailure());
    }
  }
}
