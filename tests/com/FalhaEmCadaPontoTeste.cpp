#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "core/platform/LivroDaThread.h"
#include "core/platform/ServicosSistema.h"
#include "server/ContagemModulo.h"
#include "tests/apoio/ArquivosDecorado.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/apoio/ServicosTrocados.h"
#include "tests/com/ApoioServico.h"

// The service object with a fault at one point after the other: each operation failing at its allocations and at its
// file operations, until one run meets no fault.

namespace {

thread_local int t_iAlocacoesAteFalhar = -1;  ///< counts down on this thread; the allocation that meets 0 fails

}  // namespace

// Not inlined: the compiler would take the malloc and free inside for mismatched pairs.
[[gnu::noinline]] void *operator new(std::size_t uiTamanho) {
  if (t_iAlocacoesAteFalhar >= 0 && t_iAlocacoesAteFalhar-- == 0) {
    throw std::bad_alloc();
  }
  if (void *p = std::malloc(uiTamanho != 0 ? uiTamanho : 1)) {
    return p;
  }
  throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void *p) noexcept {
  std::free(p);
}
[[gnu::noinline]] void operator delete(void *p, std::size_t) noexcept {
  std::free(p);
}

namespace {

using namespace apoiocom;

/// What there is before the call.
enum class Antes { Nada, Novo, Aberto, AbertoPorDois };

struct Cenario {
  const char *lpNome;
  const char *lpFuncao;  ///< what a failing call is traced as
  int iVeiculos;  ///< V001, V002... in the company's base; without any it has no files, or only the unused record
  bool bVersao0;  ///< the base still has its unused first record
  Antes eAntes;
  HRESULT (*chama)(Veiculos &spVeiculos, LPWSTR lpEmpresa);  ///< allocates nothing of its own
  bool bAcrescenta = false;                                  ///< a record V003, at each success
};

HRESULT InicializaDenovo(Veiculos &v, LPWSTR lpEmpresa) {
  return v->Inicializa(lpEmpresa, 7, 42);
}

HRESULT Acrescenta(Veiculos &v, LPWSTR) {
  LONG lPos = 0;
  const HRESULT hr = v->Grava(&lPos, Veiculo("V003"));
  EXPECT_EQ(lPos != 0, SUCCEEDED(hr));
  return hr;
}

Texto g_codigo("V002");

constexpr Cenario kCenarios[] = {
    {"creation", "CQZDF_Veiculos", 1, false, Antes::Nada,
     [](Veiculos &v, LPWSTR) {
       void *pObjeto = nullptr;
       const HRESULT hr = CQZDF_Veiculos::Cria(nullptr, IID_IQZDF_Veiculos, &pObjeto);
       EXPECT_EQ(pObjeto != nullptr, SUCCEEDED(hr));
       v.reset(static_cast<IQZDF_Veiculos *>(pObjeto));
       return hr;
     }},
    {"Inicializa, no files", "Inicializa", 0, false, Antes::Novo, InicializaDenovo},
    {"Inicializa, version 0", "Inicializa", 2, true, Antes::Novo, InicializaDenovo},
    {"Inicializa, version 0 without vehicles", "Inicializa", 0, true, Antes::Novo, InicializaDenovo},
    {"Inicializa, version 1", "Inicializa", 2, false, Antes::Novo, InicializaDenovo},
    {"Inicializa, again", "Inicializa", 1, false, Antes::Aberto, InicializaDenovo},
    {"Grava, first", "Grava", 0, false, Antes::AbertoPorDois, Acrescenta, true},
    {"Grava, append", "Grava", 2, false, Antes::AbertoPorDois, Acrescenta, true},
    {"Grava, in place", "Grava", 2, false, Antes::AbertoPorDois,
     [](Veiculos &v, LPWSTR) {
       LONG lPos = 2;
       tagREG_VEICULOPS veiculo = Veiculo("V002");
       veiculo.iAno = 1999;
       return v->Grava(&lPos, veiculo);
     }},
    {"Le", "Le", 2, false, Antes::AbertoPorDois,
     [](Veiculos &v, LPWSTR) {
       tagREG_VEICULOPS veiculo;
       const HRESULT hr = v->Le(2, &veiculo);
       EXPECT_EQ(CodigoDe(veiculo), SUCCEEDED(hr) ? "V002" : "");
       return hr;
     }},
    {"Existe", "Existe", 2, false, Antes::AbertoPorDois,
     [](Veiculos &v, LPWSTR) {
       LONG lPos = 9;
       tagREG_VEICULOPS veiculo;
       const HRESULT hr = v->Existe(g_codigo.Ponteiro(), &lPos, &veiculo);
       EXPECT_EQ(lPos, SUCCEEDED(hr) ? 2 : 0);
       return hr;
     }},
    {"BuscaPonteiros", "BuscaPonteiros", 2, false, Antes::AbertoPorDois,
     [](Veiculos &v, LPWSTR) {
       tagRESULTADO_BUSCA_VEICULOS resultado{};
       const HRESULT hr = v->BuscaPonteiros({}, &resultado);
       EXPECT_EQ(resultado.iQtd, SUCCEEDED(hr) ? 2U : 0U);
       EXPECT_EQ(resultado.Ponteiros != nullptr, SUCCEEDED(hr));
       CoTaskMemFree(resultado.Ponteiros);
       return hr;
     }},
    {"LePonteiros", "LePonteiros", 2, false, Antes::AbertoPorDois,
     [](Veiculos &v, LPWSTR) {
       LONG posicoes[] = {2, 1};
       tagREG_VEICULOPS veiculos[2];
       return v->LePonteiros(2, posicoes, veiculos);
     }},
    {"GetQuantidadeRegistros", "GetQuantidadeRegistros", 2, false, Antes::AbertoPorDois,
     [](Veiculos &v, LPWSTR) {
       unsigned uiQtd = 9;
       const HRESULT hr = v->GetQuantidadeRegistros(&uiQtd);
       EXPECT_EQ(uiQtd, SUCCEEDED(hr) ? 2U : 0U);
       return hr;
     }},
    {"destruction", "~CQZDF_Veiculos", 2, false, Antes::Aberto,
     [](Veiculos &v, LPWSTR) {
       v.reset();
       return S_OK;
     }},
};

/// Gives the company the base of a scenario and returns the codes in it.
std::vector<std::string> PreparaBase(const Cenario &cenario, const Empresa &empresa) {
  std::vector<std::string> codigos{"V001", "V002"};
  codigos.resize(static_cast<std::size_t>(cenario.iVeiculos));
  if (cenario.bVersao0) {
    std::string sBase(sizeof(RegVeiculo), '\0');
    for (const std::string &sCodigo : codigos) {
      sBase += sCodigo + std::string(sizeof(RegVeiculo) - sCodigo.size(), '\0');
    }
    apoio::EscreveArquivo(empresa.Arquivo("DFVEIC.DAT"), sBase);
  } else if (!codigos.empty()) {
    const Veiculos spVeiculos = ServicoPara(empresa);
    for (const std::string &sCodigo : codigos) {
      LONG lPos = 0;
      EXPECT_EQ(spVeiculos->Grava(&lPos, Veiculo(sCodigo)), S_OK);
    }
  }
  return codigos;
}

/// A kind of fault, made to happen at the n-th point of what this thread does, counted from 1.
struct Falhas {
  void (*arma)(apoio::ArquivosComFalha &arquivos, int n);
  bool (*desarma)(apoio::ArquivosComFalha &arquivos);  ///< true when there were that many points
  std::uint32_t (*codigo)(int n);                      ///< of a call that the fault fails
  bool bObjetoFica;                                    ///< the object goes on as it was
};

const Falhas kFaltaDeMemoria = {[](auto &, int n) { t_iAlocacoesAteFalhar = n - 1; },
                                [](auto &) { return std::exchange(t_iAlocacoesAteFalhar, -1) < 0; },
                                [](int) { return 0x8004EA64U; }, true};

const Falhas kFalhaDeMaquina = {
    [](auto &arquivos, int n) {
      arquivos.Arma(
          {.enesima = static_cast<std::size_t>(n), .gravaAntes = 33, .aoFalhar = kFalhasDeMaquina[n % 2].executa});
    },
    [](auto &arquivos) {
      arquivos.Desarma();
      return arquivos.Disparou();
    },
    [](int n) { return kFalhasDeMaquina[n % 2].hr; }, false};

/// One run of a scenario with a fault at its n-th point. Afterwards the object and another one work, no lock is held,
/// no file stays open, and no record is lost, doubled or half written. False when there are fewer points.
bool Roda(const Cenario &cenario, const Falhas &falhas, int n, OutroChamador &outro) {
  const Empresa empresa;
  std::vector<std::string> esperados = PreparaBase(cenario, empresa);
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
    falhas.arma(arquivos, n);
    const HRESULT hr = cenario.chama(spVeiculos, sEmpresa.Ponteiro());
    bFalhou = falhas.desarma(arquivos);
    EXPECT_EQ(plataforma::LivroDaThread::Marca(), 0U);
    if (FAILED(hr)) {
      EXPECT_TRUE(bFalhou);
      EXPECT_EQ(Bits(hr), falhas.codigo(n));
      const std::vector<std::string> linhas = rastro.Toma();
      const std::string sFuncao = std::string("CQZDF_Veiculos::") + cenario.lpFuncao + "|QZDF_Veiculos.cpp|";
      // Only an object whose own memory is missing fails before there is anything to trace with.
      EXPECT_TRUE(linhas.empty() ? cenario.eAntes == Antes::Nada && n == 1 : linhas.back().starts_with(sFuncao))
          << testing::PrintToString(linhas);
    }
    if (falhas.bObjetoFica) {
      EXPECT_EQ(cenario.chama(spVeiculos, sEmpresa.Ponteiro()), S_OK);
    }
    const int iAcrescentados = (SUCCEEDED(hr) ? 1 : 0) + (falhas.bObjetoFica ? 1 : 0);
    esperados.insert(esperados.end(), cenario.bAcrescenta ? static_cast<std::size_t>(iAcrescentados) : 0, "V003");
    esperados.emplace_back("OUTRO");
    EXPECT_EQ(outro.EmUmSegundo([&] {
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

/// The first points lie in the service object itself, each of which is tried. What comes after lies in the layers that
/// the host build runs through point by point; of that every seventh shows that it comes out as it must.
constexpr int kPontosUmAUm = 64;
constexpr int kPassoDepois = 7;

void RodaTodos(const Cenario &cenario, const Falhas &falhas) {
  OutroChamador outro;
  bool bFalhou = true;
  for (int n = 1; bFalhou; n += n < kPontosUmAUm ? 1 : kPassoDepois) {
    SCOPED_TRACE(testing::Message() << "fault " << n);
    ASSERT_LT(n, 5000);
    bFalhou = Roda(cenario, falhas, n, outro);
    ASSERT_FALSE(testing::Test::HasFailure());
  }
}

std::ostream &operator<<(std::ostream &saida, const Cenario &cenario) {
  return saida << cenario.lpNome;
}

using FalhaEmCadaPonto = testing::TestWithParam<Cenario>;
INSTANTIATE_TEST_SUITE_P(Cenarios, FalhaEmCadaPonto, testing::ValuesIn(kCenarios));

}  // namespace

TEST_P(FalhaEmCadaPonto, FaltaDeMemoria) {
  RodaTodos(GetParam(), kFaltaDeMemoria);
}

TEST_P(FalhaEmCadaPonto, FalhaDeMaquinaNoSistemaDeArquivos) {
  RodaTodos(GetParam(), kFalhaDeMaquina);
}
