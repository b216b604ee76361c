#include <gtest/gtest.h>
#include <windows.h>
//
#include <comdef.h>
#include <tlhelp32.h>

#include <atomic>
#include <chrono>
#include <future>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "core/env/QZException.h"
#include "core/errors/QZExceptionEx.h"
#include "core/platform/CFileException.h"
#include "core/platform/LivroTravas.h"
#include "core/platform/ServicosSistema.h"
#include "server/QZDF_Veiculos.h"
#include "tests/apoio/ArquivosDecorado.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/apoio/ServicosTrocados.h"
#include "tests/com/ApoioCom.h"

// Machine faults and exceptions below the service object, raised by a file system that faults on demand: while the lock
// of the vehicle file is held, in the middle of its write.

namespace {

using namespace apoiocom;

constexpr auto kUmSegundo = std::chrono::seconds(1);
constexpr int kRepeticoes = 100;

std::uint32_t Bits(HRESULT hr) {
  return static_cast<std::uint32_t>(hr);
}

int *volatile g_nulo = nullptr;
volatile int g_zero = 0;

struct Falha {
  void (*executa)();
  std::uint32_t hr;
};
constexpr Falha kFalhas[] = {{[] { g_zero = 10 / g_zero; }, 0x8004EAD3}, {[] { *g_nulo = 1; }, 0x8004EAC5}};

template <class Excecao, class... Argumentos>
[[noreturn]] void Lanca(Argumentos... argumentos) {
  static Excecao s_excecao(argumentos...);
  throw &s_excecao;
}

constexpr Falha kExcecoes[] = {
    {[] { throw _com_error(E_ACCESSDENIED); }, 0x80070005},
    {[] { throw CQZExceptionEx(CodigoResultado(0x81080123), 1, 0, "", "", "", 0); }, 0x81080123},
    {[] { Lanca<CQZException>("m", 1U, 2U); }, 0x80040002},
    {[] { Lanca<CQZException>(12U, 1U, 0U); }, 0x8004EA61},
    {[] { Lanca<CFileException>(plataforma::CausaArquivo::DiscoCheio, 112L); }, 0x80070070},
    {[] { Lanca<CMemoryException>(); }, 0x8004EA62},
    {[] { LancaArgumentoInvalido(); }, 0x8004EA63},
    {[] { throw CodigoResultado(0x810809DB); }, 0x810809DB},
    {[] { throw std::bad_alloc(); }, 0x8004EA64},
    {[] { throw std::runtime_error("x"); }, 0x8004EA65},
    {[] { throw "x"; }, 0x8004EA66},
    {[] { throw CodigoResultado(0); }, 0},
};

/// The next write to the vehicle file ends in `falha` when half of it is on disk.
apoio::PlanoFalha NaGravacao(const Falha &falha) {
  return {.operacoes = apoio::kOpGrava,
          .trecho = "DFVEIC.DAT",
          .gravaAntes = sizeof(RegVeiculo) / 2,
          .aoFalhar = falha.executa};
}

Veiculos NovoPara(const Empresa &empresa) {
  void *pObjeto = nullptr;
  CQZDF_Veiculos::Cria(nullptr, IID_IQZDF_Veiculos, &pObjeto);
  Veiculos spVeiculos(static_cast<IQZDF_Veiculos *>(pObjeto));
  return spVeiculos && SUCCEEDED(Inicializa(*spVeiculos, empresa.Codigo())) ? std::move(spVeiculos) : nullptr;
}

/// Runs `chama` on a thread of its own; what does not come back within a second is left behind and fails.
template <class Chamada>
HRESULT EmUmSegundo(Chamada chama) {
  std::packaged_task<HRESULT()> tarefa(chama);
  std::future<HRESULT> hr = tarefa.get_future();
  std::thread thread(std::move(tarefa));
  if (hr.wait_for(kUmSegundo) != std::future_status::ready) {
    thread.detach();
    return E_PENDING;
  }
  thread.join();
  return hr.get();
}

struct Consumo {
  DWORD dwHandles = 0;  ///< 0 under Wine, which does not count them
  unsigned uiThreads = 0;
};

Consumo ConsumoDoProcesso() {
  Consumo consumo;
  EXPECT_TRUE(GetProcessHandleCount(GetCurrentProcess(), &consumo.dwHandles));
  const Handle foto(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
  THREADENTRY32 entrada{};
  entrada.dwSize = sizeof(entrada);
  for (BOOL bTem = Thread32First(foto.get(), &entrada); bTem; bTem = Thread32Next(foto.get(), &entrada)) {
    consumo.uiThreads += entrada.th32OwnerProcessID == GetCurrentProcessId() ? 1U : 0U;
  }
  return consumo;
}

}  // namespace

TEST(FalhaSobTrava, UmaChamadaFalhaEOsOutrosContinuam) {
  const Empresa empresa;
  apoio::ArquivosComFalha arquivos(plataforma::ArquivosDoSistema());
  apoio::ColetorRastro rastro;
  std::size_t uiGravados = 0;
  {
    const apoio::ServicosTrocados servicos(&arquivos);
    const Veiculos spOutro = NovoPara(empresa);
    ASSERT_TRUE(spOutro);
    Consumo inicial;
    for (int i = 0; i < kRepeticoes; ++i) {
      SCOPED_TRACE(i);
      const Falha &falha = kFalhas[i % 2];
      Veiculos spVeiculos = NovoPara(empresa);
      ASSERT_TRUE(spVeiculos);
      rastro.Toma();
      arquivos.Arma(NaGravacao(falha));
      LONG lPos = 0;
      ASSERT_EQ(Bits(spVeiculos->Grava(&lPos, Veiculo("PERDIDO"))), falha.hr);
      EXPECT_EQ(lPos, 0);
      EXPECT_EQ(rastro.Toma(), std::vector<std::string>{"CQZDF_Veiculos::Grava|QZDF_Veiculos.cpp|pfInSEHFuncao()"});
      ASSERT_EQ(plataforma::LivroTravas::Marca(), 0U);

      // The other object first, while the file still bears the half-written record.
      ASSERT_EQ(EmUmSegundo([&] {
                  LONG lNova = 0;
                  const HRESULT hr = spOutro->Grava(&lNova, Veiculo("BOM"));
                  return SUCCEEDED(hr) && lNova != static_cast<LONG>(uiGravados) + 1 ? E_UNEXPECTED : hr;
                }),
                S_OK);
      ++uiGravados;
      ASSERT_EQ(EmUmSegundo([&] {
                  tagREG_VEICULOPS veiculo;
                  const HRESULT hr = spOutro->Le(static_cast<LONG>(uiGravados), &veiculo);
                  return SUCCEEDED(hr) && CodigoDe(veiculo) != "BOM" ? E_UNEXPECTED : hr;
                }),
                S_OK);

      tagREG_VEICULOPS veiculo;
      unsigned uiQtd = 0;
      EXPECT_EQ(Bits(spVeiculos->Le(1, &veiculo)), 0x8004EAC5U);
      EXPECT_EQ(Bits(spVeiculos->GetQuantidadeRegistros(&uiQtd)), 0x8004EAC5U);
      EXPECT_EQ(Bits(Inicializa(*spVeiculos, empresa.Codigo())), 0x8004EAC5U);
      spVeiculos.reset();
      ASSERT_EQ(arquivos.Abertos(), 1);
      // The first rounds still set up what the process keeps for good.
      if (i == 9) {
        inicial = ConsumoDoProcesso();
      }
    }
    const Consumo final = ConsumoDoProcesso();
    EXPECT_EQ(final.dwHandles, inicial.dwHandles);
    EXPECT_EQ(final.uiThreads, inicial.uiThreads);
  }
  EXPECT_EQ(arquivos.Abertos(), 0);
  // Nobody holds the file any more, and it has what was written and nothing of what was not.
  EXPECT_EQ(Registros(empresa).size(), uiGravados * sizeof(RegVeiculo));
}

// Unlike a machine fault an exception costs the object nothing: the very next write goes through.
TEST(FalhaSobTrava, ExcecaoDeixaOObjetoUtilizavel) {
  const Empresa empresa;
  apoio::ArquivosComFalha arquivos(plataforma::ArquivosDoSistema());
  apoio::ColetorRastro rastro;
  LONG lGravados = 0;
  {
    const apoio::ServicosTrocados servicos(&arquivos);
    const Veiculos spVeiculos = NovoPara(empresa);
    ASSERT_TRUE(spVeiculos);
    for (const Falha &falha : kExcecoes) {
      SCOPED_TRACE(falha.hr);
      arquivos.Arma(NaGravacao(falha));
      LONG lPos = 0;
      EXPECT_EQ(Bits(spVeiculos->Grava(&lPos, Veiculo("PERDIDO"))), falha.hr);
      EXPECT_EQ(lPos, 0);
      std::vector<std::string> esperadas{
          "CQZDF_Veiculos::Grava|QZDF_Veiculos.cpp|QZTranslateThrownExceptionToHresult()"};
      esperadas.resize(falha.hr != 0 ? 1 : 0);
      EXPECT_EQ(rastro.Toma(), esperadas);
      EXPECT_EQ(spVeiculos->Grava(&lPos, Veiculo("BOM")), S_OK);
      EXPECT_EQ(lPos, ++lGravados);
    }
  }
  EXPECT_EQ(Registros(empresa).size(), static_cast<std::size_t>(lGravados) * sizeof(RegVeiculo));
}

// A company is opened from nothing, from a base to be converted and from a converted one, and closed again, with a
// fault at each file operation in turn: no file stays open, the next object opens the company within a second, and no
// record is lost or dropped twice.
TEST(FalhaSobTrava, AoAbrirEFecharACompanhia) {
  const struct {
    const char *lpNome;
    int iRegistros;  ///< in the stored base; -1 for none
    bool bVersao1;
    int iVeiculos;  ///< in the base after it was opened
  } casos[] = {{"no files", -1, false, 0},
               {"version 0", 3, false, 2},
               {"version 0, slot only", 1, false, 0},
               {"version 1", 2, true, 2}};
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.lpNome);
    bool bFalhou = true;
    for (std::size_t n = 1; bFalhou; ++n) {
      SCOPED_TRACE(n);
      ASSERT_LT(n, 200U);
      const Empresa empresa;
      if (caso.iRegistros >= 0) {
        apoio::EscreveArquivo(empresa.Arquivo("DFVEIC.DAT"),
                              std::string(static_cast<std::size_t>(caso.iRegistros) * sizeof(RegVeiculo), 'v'));
      }
      if (caso.bVersao1) {
        apoio::EscreveArquivo(empresa.Arquivo("DFVEIVS.DAT"), std::string(1, '\1') + std::string(15, '\0'));
      }
      apoio::ColetorRastro rastro;
      apoio::ArquivosComFalha arquivos(plataforma::ArquivosDoSistema());
      {
        const apoio::ServicosTrocados servicos(&arquivos);
        arquivos.Arma({.enesima = n, .aoFalhar = kFalhas[n % 2].executa});
        static_cast<void>(NovoPara(empresa));
        bFalhou = arquivos.Disparou();
        arquivos.Desarma();
        ASSERT_EQ(arquivos.Abertos(), 0);
        ASSERT_EQ(plataforma::LivroTravas::Marca(), 0U);
        ASSERT_EQ(EmUmSegundo([&] {
                    const Veiculos spVeiculos = NovoPara(empresa);
                    unsigned uiQtd = 99;
                    const HRESULT hr = spVeiculos ? spVeiculos->GetQuantidadeRegistros(&uiQtd) : E_UNEXPECTED;
                    return SUCCEEDED(hr) && static_cast<int>(uiQtd) != caso.iVeiculos ? E_UNEXPECTED : hr;
                  }),
                  S_OK);
      }
      EXPECT_EQ(arquivos.Abertos(), 0);
    }
  }
}

// The first write creates the file and its entry in the list of created files, the second finds both: with a fault at
// each file operation of either in turn another object writes all the same, and nothing half written stays.
TEST(FalhaSobTrava, EmCadaOperacaoDeUmaGravacao) {
  for (const bool bExiste : {false, true}) {
    bool bFalhou = true;
    for (std::size_t n = 1; bFalhou; ++n) {
      SCOPED_TRACE(testing::Message() << (bExiste ? "second write, " : "first write, ") << n);
      ASSERT_LT(n, 200U);
      const Empresa empresa;
      apoio::ColetorRastro rastro;
      apoio::ArquivosComFalha arquivos(plataforma::ArquivosDoSistema());
      const apoio::ServicosTrocados servicos(&arquivos);
      bool bGravou = false;
      {
        const Veiculos spVeiculos = NovoPara(empresa);
        const Veiculos spOutro = NovoPara(empresa);
        ASSERT_TRUE(spVeiculos && spOutro);
        LONG lPos = 0;
        if (bExiste) {
          ASSERT_EQ(spOutro->Grava(&lPos, Veiculo("BOM")), S_OK);
          lPos = 0;
        }
        arquivos.Arma({.enesima = n, .gravaAntes = 33, .aoFalhar = kFalhas[n % 2].executa});
        bGravou = SUCCEEDED(spVeiculos->Grava(&lPos, Veiculo("BOM")));
        bFalhou = arquivos.Disparou();
        arquivos.Desarma();
        ASSERT_EQ(plataforma::LivroTravas::Marca(), 0U);
        ASSERT_EQ(EmUmSegundo([&] {
                    LONG lNova = 0;
                    return spOutro->Grava(&lNova, Veiculo("BOM"));
                  }),
                  S_OK);
      }
      ASSERT_EQ(arquivos.Abertos(), 0);
      rastro.Toma();
      ASSERT_TRUE(NovoPara(empresa)) << testing::PrintToString(rastro.Toma());
      ASSERT_EQ(Registros(empresa).size() / sizeof(RegVeiculo), 1U + (bExiste ? 1 : 0) + (bGravou ? 1 : 0));
    }
  }
}
