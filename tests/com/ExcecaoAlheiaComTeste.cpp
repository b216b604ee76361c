// Structured exceptions that the call guard lets pass, in a real call from another process. Where the component
// platform takes them the process goes on, and nothing may stay locked in it; where it does not, the process ends.

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <iostream>
#include <string>

#include "core/platform/ServicosSistema.h"
#include "server/ClasseVeiculos.h"
#include "server/TratamentoExcecoes.h"
#include "tests/apoio/ArquivosComFalha.h"
#include "tests/apoio/ProcessoFilho.h"
#include "tests/apoio/ServicosFalsos.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

constexpr std::uint32_t kChamadaPerdida = 0x800706BE;  ///< the process that was serving the call has gone

/// A server of this class in the place of Kalvo.exe. Its arguments are the number of a write to a vehicle file and an
/// exception's code, which it raises in the midst of that write, while the call holds everything that a call can hold;
/// with 0 it ends there.
int ServeAteAGravacao(const std::vector<std::string> &argumentos) {
  const Apartamento apartamento;
  DesligaTratamentoDeExcecoes();
  apoio::ArquivosComFalha arquivos(plataforma::ArquivosDoSistema());
  const apoio::ServicosTrocados servicos(&arquivos);
  const DWORD dwCodigo = std::stoul(argumentos[1], nullptr, 16);
  const auto termina = [dwCodigo] {
    if (dwCodigo == 0) {
      ExitProcess(0);
    }
    RaiseException(dwCodigo, 0, 0, nullptr);
  };
  arquivos.Arma({.operacoes = apoio::kOpGrava,
                 .trecho = "DFVEIC.DAT",
                 .enesima = std::stoul(argumentos[0]),
                 .gravaAntes = dwCodigo != 0 ? 128U : 0U,
                 .aoFalhar = termina});
  CClasseVeiculos classe;
  const CRegistroClasse registro(classe);
  if (FAILED(registro.Resultado()) || FAILED(CoResumeClassObjects())) {
    return 1;
  }
  std::cout << "pronto" << std::endl;
  std::string sLinha;
  std::getline(std::cin, sLinha);
  return 1;
}

const apoio::RegistraFilha g_serve("serve_ate_a_gravacao", ServeAteAGravacao);

}  // namespace

TEST(ExcecaoAlheiaCom, ProcessoTerminaOuNadaFicaPreso) {
  ASSERT_GE(EsperaServidorTerminar(), 0);
  for (const char *lpCodigo : {"E06D7363", "E0000001", "C0000409"}) {
    SCOPED_TRACE(lpCodigo);
    const Empresa empresa;
    apoio::ProcessoFilho servidor("serve_ate_a_gravacao", {"1", lpCodigo});
    ASSERT_EQ(servidor.LeLinha(), "pronto");
    const Veiculos spVitima = Abre(empresa.Codigo());
    const Veiculos spOutro = Abre(empresa.Codigo());
    EsqueceServidores();  // no other activation is to find this one
    ASSERT_TRUE(spVitima && spOutro);
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
