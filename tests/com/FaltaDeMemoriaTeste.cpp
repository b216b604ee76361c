#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "core/errors/guard/win32/ChamadaSEH.h"
#include "core/platform/LivroTravas.h"
#include "server/ContagemModulo.h"
#include "server/QZDF_Veiculos.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/com/ApoioCom.h"

// The service object when memory runs out: every operation once for each of its allocations, until one run meets no
// failing allocation.

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

constexpr std::uint32_t kSemMemoria = 0x8004EA64;
constexpr char kTraducao[] = "|QZDF_Veiculos.cpp|QZTranslateThrownExceptionToHresult()";

std::uint32_t Bits(HRESULT hr) {
  return static_cast<std::uint32_t>(hr);
}

/// Runs `chama` with the N-th allocation of this thread failing. True when that many there were.
bool ComFalhaNa(int n, const std::function<HRESULT()> &chama, HRESULT *phr) {
  t_iAlocacoesAteFalhar = n;
  *phr = chama();
  const bool bFalhou = t_iAlocacoesAteFalhar < 0;
  t_iAlocacoesAteFalhar = -1;
  return bFalhou;
}

Veiculos Novo(HRESULT *phr = nullptr) {
  void *pObjeto = nullptr;
  const HRESULT hr = CQZDF_Veiculos::Cria(nullptr, IID_IQZDF_Veiculos, &pObjeto);
  if (phr != nullptr) {
    *phr = hr;
  }
  return Veiculos(static_cast<IQZDF_Veiculos *>(pObjeto));
}

Veiculos NovoPara(const Empresa &empresa) {
  Veiculos spVeiculos = Novo();
  return SUCCEEDED(Inicializa(*spVeiculos, empresa.Codigo())) ? std::move(spVeiculos) : nullptr;
}

/// The codes of the records on disk, in their order. Reading needs the file closed.
std::vector<std::string> NoDisco(const Empresa &empresa) {
  const std::string sConteudo = Registros(empresa);
  EXPECT_EQ(sConteudo.size() % sizeof(RegVeiculo), 0U);
  std::vector<std::string> codigos;
  for (std::size_t i = 0; i + sizeof(RegVeiculo) <= sConteudo.size(); i += sizeof(RegVeiculo)) {
    RegVeiculo reg;
    sConteudo.copy(reinterpret_cast<char *>(&reg), sizeof(reg), i);
    codigos.emplace_back(reg.szCodigo, strnlen(reg.szCodigo, sizeof(reg.szCodigo)));
  }
  return codigos;
}

class FaltaDeMemoria : public testing::Test {
protected:
  ~FaltaDeMemoria() override {
    t_iAlocacoesAteFalhar = -1;
    EXPECT_EQ(CContagemModulo::DoProcesso().Quantidade(), 0);
    EXPECT_EQ(plataforma::LivroTravas::Marca(), 0U);
  }

  apoio::ColetorRastro m_rastro;
};

struct Operacao {
  const char *lpNome;
  HRESULT (*chama)(IQZDF_Veiculos &);  ///< allocates nothing of its own
  bool bAcrescenta = false;            ///< a record V003, at each success
};

Texto g_codigo("V002");

constexpr Operacao kOperacoes[] = {
    {"Grava, append",
     [](IQZDF_Veiculos &v) {
       LONG lPos = 0;
       const HRESULT hr = v.Grava(&lPos, Veiculo("V003"));
       EXPECT_EQ(lPos != 0, SUCCEEDED(hr));
       return hr;
     },
     true},
    {"Grava, in place",
     [](IQZDF_Veiculos &v) {
       LONG lPos = 2;
       return v.Grava(&lPos, Veiculo("V002"));
     }},
    {"Le",
     [](IQZDF_Veiculos &v) {
       tagREG_VEICULOPS veiculo;
       const HRESULT hr = v.Le(2, &veiculo);
       EXPECT_EQ(CodigoDe(veiculo), SUCCEEDED(hr) ? "V002" : "");
       return hr;
     }},
    {"Existe",
     [](IQZDF_Veiculos &v) {
       LONG lPos = 9;
       tagREG_VEICULOPS veiculo;
       const HRESULT hr = v.Existe(g_codigo.Ponteiro(), &lPos, &veiculo);
       EXPECT_EQ(lPos, SUCCEEDED(hr) ? 2 : 0);
       return hr;
     }},
    {"BuscaPonteiros",
     [](IQZDF_Veiculos &v) {
       tagRESULTADO_BUSCA_VEICULOS resultado{};
       const HRESULT hr = v.BuscaPonteiros({}, &resultado);
       EXPECT_EQ(resultado.iQtd, SUCCEEDED(hr) ? 2U : 0U);
       EXPECT_EQ(resultado.Ponteiros != nullptr, SUCCEEDED(hr));
       CoTaskMemFree(resultado.Ponteiros);
       return hr;
     }},
    {"LePonteiros",
     [](IQZDF_Veiculos &v) {
       LONG posicoes[] = {2, 1};
       tagREG_VEICULOPS veiculos[2];
       return v.LePonteiros(2, posicoes, veiculos);
     }},
    {"GetQuantidadeRegistros",
     [](IQZDF_Veiculos &v) {
       unsigned uiQtd = 9;
       const HRESULT hr = v.GetQuantidadeRegistros(&uiQtd);
       EXPECT_EQ(uiQtd, SUCCEEDED(hr) ? 2U : 0U);
       return hr;
     }},
};

}  // namespace

TEST_F(FaltaDeMemoria, NaCriacaoRecusaOObjeto) {
  bool bFalhou = true;
  for (int n = 0; bFalhou; ++n) {
    ASSERT_LT(n, 100);
    m_rastro.Toma();
    Veiculos spVeiculos;
    HRESULT hr = 0;
    bFalhou = ComFalhaNa(
        n,
        [&] {
          HRESULT hrCria = 0;
          spVeiculos = Novo(&hrCria);
          return hrCria;
        },
        &hr);
    // What fails outside the object's own construction, such as reading the log's settings, does not refuse it.
    EXPECT_TRUE(SUCCEEDED(hr) || (bFalhou && Bits(hr) == kSemMemoria)) << n << ": " << std::hex << Bits(hr);
    EXPECT_EQ(spVeiculos != nullptr, SUCCEEDED(hr));
    const std::vector<std::string> linhas = m_rastro.Toma();
    if (!linhas.empty()) {
      EXPECT_EQ(linhas, std::vector{std::string("CQZDF_Veiculos::CQZDF_Veiculos") + kTraducao});
    }
    EXPECT_EQ(CContagemModulo::DoProcesso().Quantidade(), SUCCEEDED(hr) ? 1 : 0) << n;
  }
}

// The object stays as it was, and the next call on it works.
TEST_F(FaltaDeMemoria, NaChamadaDeixaRegistrosEObjetoInteiros) {
  for (const Operacao &operacao : kOperacoes) {
    SCOPED_TRACE(operacao.lpNome);
    const Empresa empresa;
    bool bFalhou = true;
    for (int n = 0; bFalhou; ++n) {
      SCOPED_TRACE(n);
      ASSERT_LT(n, 300);
      empresa.ApagaArquivos();
      std::vector<std::string> esperados{"V001", "V002"};
      {
        const Veiculos spVeiculos = NovoPara(empresa);
        ASSERT_TRUE(spVeiculos);
        for (const std::string &sCodigo : esperados) {
          LONG lPos = 0;
          ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo(sCodigo)), S_OK);
        }
        HRESULT hr = 0;
        bFalhou = ComFalhaNa(
            n, [&] { return operacao.chama(*spVeiculos); }, &hr);
        EXPECT_TRUE(SUCCEEDED(hr) || (bFalhou && Bits(hr) == kSemMemoria)) << std::hex << Bits(hr);
        EXPECT_EQ(operacao.chama(*spVeiculos), S_OK);
        esperados.resize(2 + (operacao.bAcrescenta ? 1 + SUCCEEDED(hr) : 0), "V003");
      }
      EXPECT_EQ(NoDisco(empresa), esperados);
    }
  }
}

// From a company without files, from one with a base, and a second initialisation: whatever fails, nothing keeps the
// company's file open once the object has gone.
TEST_F(FaltaDeMemoria, NaInicializacaoNaoSeguraOArquivo) {
  const Empresa empresa;
  const struct {
    const char *lpNome;
    bool bComBase;
    bool bDuasVezes;
  } casos[] = {{"no files", false, false}, {"a base", true, false}, {"again", true, true}};
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.lpNome);
    if (caso.bComBase) {
      const Veiculos spVeiculos = NovoPara(empresa);
      ASSERT_TRUE(spVeiculos);
      LONG lPos = apoio::ExisteNoDisco(empresa.Arquivo("DFVEIC.DAT")) ? 1 : 0;
      ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V001")), S_OK);
    }
    bool bFalhou = true;
    for (int n = 0; bFalhou; ++n) {
      SCOPED_TRACE(n);
      ASSERT_LT(n, 5000);
      if (!caso.bComBase) {
        empresa.ApagaArquivos();
      }
      {
        const Veiculos spVeiculos = Novo();
        ASSERT_TRUE(spVeiculos);
        if (caso.bDuasVezes) {
          ASSERT_EQ(Inicializa(*spVeiculos, empresa.Codigo()), S_OK);
        }
        Texto texto(empresa.Codigo());
        HRESULT hr = 0;
        bFalhou = ComFalhaNa(
            n, [&] { return spVeiculos->Inicializa(texto.Ponteiro(), 7, 42); }, &hr);
        EXPECT_TRUE(SUCCEEDED(hr) || (bFalhou && Bits(hr) == kSemMemoria)) << std::hex << Bits(hr);
        EXPECT_EQ(Inicializa(*spVeiculos, empresa.Codigo()), S_OK);
      }
      if (caso.bComBase) {
        EXPECT_EQ(NoDisco(empresa), std::vector<std::string>{"V001"});
      }
    }
  }
}

TEST_F(FaltaDeMemoria, NaDestruicaoFechaOArquivo) {
  const Empresa empresa;
  bool bFalhou = true;
  for (int n = 0; bFalhou; ++n) {
    SCOPED_TRACE(n);
    ASSERT_LT(n, 100);
    Veiculos spVeiculos = NovoPara(empresa);
    ASSERT_TRUE(spVeiculos);
    LONG lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V001")), S_OK);
    HRESULT hr = 0;
    bFalhou = ComFalhaNa(
        n,
        [&] {
          spVeiculos.reset();
          return S_OK;
        },
        &hr);
    EXPECT_EQ(CContagemModulo::DoProcesso().Quantidade(), 0);
    EXPECT_EQ(NoDisco(empresa).size(), static_cast<std::size_t>(n) + 1);
  }
}
