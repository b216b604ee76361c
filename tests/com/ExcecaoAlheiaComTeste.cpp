// Structured exceptions that the call guard lets pass, in a real call from another process. Where the component
// platform takes them the process goes on, and nothing may stay locked in it; where it does not, the process ends.

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <iostream>
#include <string>

#include "core/platform/ServicosSistema.h"
#include "server/TratamentoExcecoes.h"
#include "tests/apoio/ArquivosDecorado.h"
#include "tests/apoio/ProcessoFilho.h"
#include "tests/apoio/ServicosTrocados.h"
#include "tests/com/ApoioServico.h"

using namespace apoiocom;

namespace {

constexpr std::uint32_t kChamadaPerdida = 0x800706BE;  ///< the process that was serving the call has gone

DWORD g_codigo = 0;

/// Hands out one service object for each company in its arguments. From each line of input on, the next write to a
/// vehicle file raises the exception of that code in its midst, while the call holds everything that a call can hold.
int ServeComExcecoes(const std::vector<std::string> &argumentos) {
  const Apartamento apartamento;
  DesligaTratamentoDeExcecoes();
  apoio::ArquivosComFalha arquivos(plataforma::ArquivosDoSistema());
  const apoio::ServicosTrocados servicos(&arquivos);
  std::vector<Veiculos> objetos;
  for (const std::string &sEmpresa : argumentos) {
    objetos.push_back(NovoServico());
    if (!objetos.back() || FAILED(Inicializa(*objetos.back(), sEmpresa))) {
      return 1;
    }
    std::cout << Entrega(*objetos.back()) << std::endl;
  }
  for (std::string sCodigo; std::getline(std::cin, sCodigo);) {
    g_codigo = std::stoul(sCodigo, nullptr, 16);
    arquivos.Arma({.operacoes = apoio::kOpGrava, .trecho = "DFVEIC.DAT", .gravaAntes = 128, .aoFalhar = [] {
                     RaiseException(g_codigo, 0, 0, nullptr);
                   }});
    std::cout << "armado" << std::endl;
  }
  return 0;
}

const apoio::RegistraFilha g_serve("serve_com_excecoes", ServeComExcecoes);

}  // namespace

TEST(ExcecaoAlheiaCom, ProcessoTerminaOuNadaFicaPreso) {
  for (const char *lpCodigo : {"E06D7363", "E0000001", "C0000409"}) {
    SCOPED_TRACE(lpCodigo);
    const Empresa empresa;
    apoio::ProcessoFilho servidor("serve_com_excecoes", {empresa.Codigo(), empresa.Codigo()});
    const Veiculos spVitima = Recebe(servidor.LeLinha());
    const Veiculos spOutro = Recebe(servidor.LeLinha());
    ASSERT_TRUE(spVitima && spOutro);
    servidor.EnviaLinha(lpCodigo);
    ASSERT_EQ(servidor.LeLinha(), "armado");
    LONG lPos = 0;
    const std::uint32_t hr = Bits(spVitima->Grava(&lPos, Veiculo("PERDIDO")));
    EXPECT_TRUE(FAILED(hr));
    EXPECT_EQ(lPos, 0);
    if (hr == kChamadaPerdida) {
      EXPECT_NE(servidor.Espera(), 0);
      continue;
    }
    // First a lifecycle call on the same object, which waits for the lock of every other one.
    std::future<void> chamadas = std::async(std::launch::async, [&] {
      const Apartamento apartamento;
      EXPECT_EQ(Bits(Inicializa(*spVitima, empresa.Codigo())), 0x8004EAC5U);
      EXPECT_EQ(spOutro->Grava(&lPos, Veiculo("BOM")), S_OK);
      EXPECT_EQ(lPos, 1);
      EXPECT_EQ(Inicializa(*spOutro, empresa.Codigo()), S_OK);
    });
    const bool bLivre = chamadas.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
    EXPECT_TRUE(bLivre) << "still waiting for a lock";
    if (!bLivre) {
      servidor.Mata();  // the calls come back then
    }
  }
}
