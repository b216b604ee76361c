// One object in the hands of two processes: the end of the one is no matter of the other's.

#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/platform/Tipos.h"
#include "tests/apoio/ProcessoFilho.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

constexpr DWORD kDepoisDaDecisao = 5000;  ///< by when a wrong decision on an object has been taken and carried out
constexpr long kPrazoMortos = 20000;      ///< for the objects of the last holders to go, and then the server

const std::string kVivo = std::to_string(CodigoResultado(0x810809E3));  ///< an object that nobody initialised

/// Obeys its parent: "entrega" hands the object on, "chama" calls it, "solta" releases it.
int ClienteComandado(const std::vector<std::string> &argumentos) {
  const Apartamento apartamento;
  Veiculos spVeiculos = argumentos.empty() ? Cria() : Recebe(argumentos[0]);
  for (std::string sComando; spVeiculos && std::getline(std::cin, sComando);) {
    if (sComando == "entrega") {
      std::cout << Entrega(*spVeiculos) << std::endl;
    } else if (sComando == "chama") {
      unsigned uiQtd = 0;
      std::cout << spVeiculos->GetQuantidadeRegistros(&uiQtd) << std::endl;
    } else {
      spVeiculos.reset();
    }
  }
  return 0;
}

const apoio::RegistraFilha g_cliente("cliente_comandado", ClienteComandado);

class Cliente : public apoio::ProcessoFilho {
public:
  explicit Cliente(const std::vector<std::string> &argumentos = {})
      : apoio::ProcessoFilho("cliente_comandado", argumentos) {}

  std::string Pede(const std::string &sComando) {
    EnviaLinha(sComando);
    return LeLinha();
  }
};

}  // namespace

TEST(ProxyEntregueCom, OFimDeUmProcessoNaoTiraOObjetoDoOutro) {
  ASSERT_GE(EsperaServidorTerminar(), 0);
  const struct {
    const char *lpNome;
    std::string sQuemChama;  ///< C creator, T the one who took the object over, in this order, before the end of one
    char cTermina;
    bool bMorto;  ///< or it releases the object and ends
  } casos[] = {
      {"creator killed", "CT", 'C', true},
      {"creator released", "CT", 'C', false},
      {"creator killed after the other's calls alone", "T", 'C', true},
      {"creator killed before the other's first call", "C", 'C', true},
      {"taker killed", "CT", 'T', true},
      {"taker killed, who called first", "TC", 'T', true},
      {"taker released, the only one to call", "T", 'T', false},
  };
  std::vector<std::unique_ptr<Cliente>> vivos;
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.lpNome);
    auto spCriador = std::make_unique<Cliente>();
    auto spTomador = std::make_unique<Cliente>(std::vector<std::string>{spCriador->Pede("entrega")});
    for (const char cQuem : caso.sQuemChama) {
      ASSERT_EQ((cQuem == 'C' ? spCriador : spTomador)->Pede("chama"), kVivo);
    }
    if (caso.cTermina == 'C') {
      std::swap(spCriador, spTomador);
    }
    if (caso.bMorto) {
      spTomador->Mata();
    } else {
      spTomador->EnviaLinha("solta");
      EXPECT_EQ(spTomador->Espera(), 0);
    }
    EXPECT_EQ(spCriador->Pede("chama"), kVivo);
    vivos.push_back(std::move(spCriador));
  }
  vivos.push_back(std::make_unique<Cliente>());
  EXPECT_NE(vivos.back()->Pede("entrega"), "") << "one that has never called its object";
  const std::vector<Handle> servidores = Servidores();
  ASSERT_EQ(servidores.size(), 1U);
  EXPECT_EQ(WaitForSingleObject(servidores[0].get(), kDepoisDaDecisao), static_cast<DWORD>(WAIT_TIMEOUT));
  for (std::size_t i = 0; i < std::size(casos); ++i) {
    EXPECT_EQ(vivos[i]->Pede("chama"), kVivo) << casos[i].lpNome;
  }
  // With the last holder of each the object goes, and with the objects the server.
  const ULONGLONG ullMorte = GetTickCount64();
  vivos.clear();
  ASSERT_GE(EsperaServidorTerminar(), 0);
  EXPECT_LE(static_cast<long>(GetTickCount64() - ullMorte), kPrazoMortos);
}
