// When the server ends, and what becomes of objects whose clients end.

#include <gtest/gtest.h>

#include <deque>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "core/errors/CodigosResultado.h"
#include "tests/apoio/ProcessoFilho.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

/// A client process, which answers each command of its parent with a line.
int ClienteComandado(const std::vector<std::string> & /*argumentos*/) {
  const Apartamento apartamento;
  Veiculos spVeiculos;
  for (std::string sComando; std::cin >> sComando;) {
    if (sComando == "cria") {
      HRESULT hr = S_OK;
      spVeiculos = Cria(&hr);
      std::cout << hr << std::endl;
    } else if (sComando == "entrega") {  // to another process, which "recebe"
      std::cout << Entrega(*spVeiculos) << std::endl;
    } else if (sComando == "recebe") {
      std::getline(std::cin >> std::ws, sComando);
      spVeiculos = Recebe(sComando);
      std::cout << (spVeiculos ? S_OK : E_FAIL) << std::endl;
    } else if (sComando == "chama") {
      unsigned uiQtd = 0;
      std::cout << spVeiculos->GetQuantidadeRegistros(&uiQtd) << std::endl;
    } else if (sComando == "grava") {  // without end, naming each acknowledged code
      std::cin >> sComando;
      Inicializa(*spVeiculos, sComando);
      LONG lPos = 0;
      for (int i = 1; spVeiculos->Grava(&lPos, Veiculo("M" + std::to_string(i))) == S_OK; ++i, lPos = 0) {
        std::cout << "M" << i << std::endl;
      }
    } else {
      spVeiculos.reset();
      std::cout << sComando << std::endl;
    }
  }
  return 0;
}

const apoio::RegistraFilha g_cliente("cliente_comandado", ClienteComandado);

class Cliente : public apoio::ProcessoFilho {
public:
  Cliente() : apoio::ProcessoFilho("cliente_comandado") {}

  std::string Pede(const std::string &sComando) {
    EnviaLinha(sComando);
    return LeLinha();
  }
};

const std::string kFeito = "0";
const std::string kVivo = std::to_string(codigos::kArquivoNaoAberto);  ///< an object that nobody initialised

constexpr long kMinimoSemUso = 4500;  ///< what 5000 ms may come to by the system's ticks
constexpr long kMaximoSemUso = 9000;  ///< 5000 ms, the pause of 1000 ms, and the time a loaded machine takes to end
constexpr DWORD kMaisQueSemPrimeiro = 40000;  ///< more than one that the platform started waits for its first object
constexpr DWORD kDepoisDaDecisao = 5000;      ///< by when a wrong decision on an object has been taken and carried out
constexpr long kPrazoMortos = 20000;          ///< for the objects of the last holders to go, and then the server

}  // namespace

// One that the platform started for a client that never came ends too; one that was started by hand waits for its
// first.
TEST(CicloDeVidaCom, TerminaCincoSegundosDepoisDoUltimoObjeto) {
  ASSERT_GE(EsperaServidorTerminar(), 0);
  const Handle hSemCliente = IniciaKalvo("-Embedding");
  const Handle hManual = IniciaKalvo("");
  ASSERT_TRUE(hSemCliente && hManual);
  EXPECT_EQ(WaitForSingleObject(hManual.get(), kMaisQueSemPrimeiro), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_EQ(WaitForSingleObject(hSemCliente.get(), 0), WAIT_OBJECT_0);
  EXPECT_TRUE(Cria());
  EXPECT_EQ(WaitForSingleObject(hManual.get(), 3000), static_cast<DWORD>(WAIT_TIMEOUT));
  {
    // The process is watched, not the clock: with a new object it outlives the moment at which it would have ended.
    const Veiculos spNovo = Cria();
    EXPECT_EQ(WaitForSingleObject(hManual.get(), 8000), static_cast<DWORD>(WAIT_TIMEOUT));
    EXPECT_EQ(Servidores().size(), 1U);
  }
  const long lTempo = EsperaServidorTerminar();
  EXPECT_TRUE(lTempo >= kMinimoSemUso && lTempo <= kMaximoSemUso) << lTempo;
}

TEST(CicloDeVidaCom, ClienteMortoNoMeioDasChamadasNaoPerdeOConfirmado) {
  const Empresa empresa;
  Cliente cliente;
  ASSERT_EQ(cliente.Pede("cria"), kFeito);
  cliente.EnviaLinha("grava " + empresa.Codigo());
  LONG lConfirmados = 0;
  for (; lConfirmados < 200; ++lConfirmados) {
    ASSERT_EQ(cliente.LeLinha(), "M" + std::to_string(lConfirmados + 1));
  }
  cliente.Mata();
  for (; !cliente.LeLinha().empty(); ++lConfirmados) {
  }
  const Veiculos spVeiculos = Abre(empresa.Codigo());
  ASSERT_TRUE(spVeiculos);
  unsigned uiGravados = 0;
  EXPECT_EQ(spVeiculos->GetQuantidadeRegistros(&uiGravados), S_OK);
  EXPECT_TRUE(uiGravados == static_cast<unsigned>(lConfirmados) ||
              uiGravados == static_cast<unsigned>(lConfirmados) + 1)
      << uiGravados << ": the call that was under way may have been done";
  for (LONG lPos = 1; lPos <= lConfirmados; ++lPos) {
    tagREG_VEICULOPS veiculo;
    ASSERT_EQ(spVeiculos->Le(lPos, &veiculo), S_OK);
    ASSERT_EQ(CodigoDe(veiculo), "M" + std::to_string(lPos));
  }
}

// One object in the hands of two processes: the end of the one is no matter of the other's.
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
  std::deque<Cliente> vivos;
  std::deque<Cliente> terminados;
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.lpNome);
    Cliente &vivo = vivos.emplace_back();
    Cliente &terminado = terminados.emplace_back();
    Cliente &criador = caso.cTermina == 'C' ? terminado : vivo;
    Cliente &tomador = caso.cTermina == 'C' ? vivo : terminado;
    ASSERT_EQ(criador.Pede("cria"), kFeito);
    ASSERT_EQ(tomador.Pede("recebe " + criador.Pede("entrega")), kFeito);
    for (const char cQuem : caso.sQuemChama) {
      ASSERT_EQ((cQuem == 'C' ? criador : tomador).Pede("chama"), kVivo);
    }
    if (caso.bMorto) {
      terminado.Mata();
    } else {
      EXPECT_EQ(terminado.Pede("solta"), "solta");
      EXPECT_EQ(terminado.Espera(), 0);
    }
    EXPECT_EQ(vivo.Pede("chama"), kVivo);
  }
  Cliente &mudo = vivos.emplace_back();
  EXPECT_EQ(mudo.Pede("cria"), kFeito);
  EXPECT_NE(mudo.Pede("entrega"), "") << "one that has never called its object";
  const std::vector<Handle> servidores = Servidores();
  ASSERT_EQ(servidores.size(), 1U);
  EXPECT_EQ(WaitForSingleObject(servidores[0].get(), kDepoisDaDecisao), static_cast<DWORD>(WAIT_TIMEOUT));
  for (std::size_t i = 0; i < std::size(casos); ++i) {
    EXPECT_EQ(vivos[i].Pede("chama"), kVivo) << casos[i].lpNome;
  }
  // With the last holder of each the object goes, and with the objects the server.
  vivos.clear();
  const long lTempo = EsperaServidorTerminar();
  EXPECT_TRUE(lTempo >= 0 && lTempo <= kPrazoMortos) << lTempo;
}
