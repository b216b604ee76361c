// When the server ends, and what becomes of objects whose clients end.

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "core/errors/CodigosResultado.h"
#include "tests/com/Cliente.h"

using namespace apoiocom;

namespace {

constexpr HRESULT kSemEmpresa = codigos::kArquivoNaoAberto;  ///< of an object that lives, and works for none

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
  CCliente cliente;
  ASSERT_EQ(cliente.Pede("cria").hr, S_OK);
  ASSERT_EQ(cliente.Pede("abre " + empresa.Codigo()).hr, S_OK);
  std::size_t uiConfirmados = 0;
  for (HRESULT hr = cliente.Pede("acrescenta").hr; hr == S_OK; hr = cliente.Ouve().hr) {
    if (++uiConfirmados == 200) {
      cliente.Mata();
    }
  }
  EXPECT_GE(uiConfirmados, 200U);
  CCliente leitor;
  ASSERT_EQ(leitor.Pede("cria").hr, S_OK);
  ASSERT_EQ(leitor.Pede("abre " + empresa.Codigo()).hr, S_OK);
  const std::vector<std::uint32_t> lidos = leitor.Pede("le").numeros;
  EXPECT_TRUE(lidos.size() == uiConfirmados || lidos.size() == uiConfirmados + 1)
      << lidos.size() << ": the call that was under way may have been done";
  for (std::size_t i = 0; i < lidos.size(); ++i) {
    ASSERT_EQ(lidos[i], i + 1);
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
  const apoio::PastaTemporaria pasta;
  const std::string sArquivo = pasta / "objeto";
  std::deque<CCliente> vivos;
  std::deque<CCliente> terminados;
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.lpNome);
    CCliente &vivo = vivos.emplace_back();
    CCliente &terminado = terminados.emplace_back();
    CCliente &criador = caso.cTermina == 'C' ? terminado : vivo;
    CCliente &tomador = caso.cTermina == 'C' ? vivo : terminado;
    ASSERT_EQ(criador.Pede("cria").hr, S_OK);
    ASSERT_EQ(criador.Pede("entrega " + sArquivo).hr, S_OK);
    ASSERT_EQ(tomador.Pede("recebe " + sArquivo).hr, S_OK);
    for (const char cQuem : caso.sQuemChama) {
      ASSERT_EQ((cQuem == 'C' ? criador : tomador).Pede("le").hr, kSemEmpresa);
    }
    if (caso.bMorto) {
      terminado.Mata();
    } else {
      EXPECT_EQ(terminado.Pede("solta").hr, S_OK);
      EXPECT_EQ(terminado.Espera(), 0);
    }
    EXPECT_EQ(vivo.Pede("le").hr, kSemEmpresa);
  }
  CCliente &mudo = vivos.emplace_back();
  EXPECT_EQ(mudo.Pede("cria").hr, S_OK);
  EXPECT_EQ(mudo.Pede("entrega " + sArquivo).hr, S_OK) << "one that has never called its object";
  const std::vector<Handle> servidores = Servidores();
  ASSERT_EQ(servidores.size(), 1U);
  EXPECT_EQ(WaitForSingleObject(servidores[0].get(), kDepoisDaDecisao), static_cast<DWORD>(WAIT_TIMEOUT));
  for (std::size_t i = 0; i < std::size(casos); ++i) {
    EXPECT_EQ(vivos[i].Pede("le").hr, kSemEmpresa) << casos[i].lpNome;
  }
  // With the last holder of each the object goes, and with the objects the server.
  vivos.clear();
  const long lTempo = EsperaServidorTerminar();
  EXPECT_TRUE(lTempo >= 0 && lTempo <= kPrazoMortos) << lTempo;
}
