// Locks within the process with their ledger, and the lock between processes.

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <iostream>
#include <new>
#include <thread>
#include <vector>

#include "core/platform/LivroDaThread.h"
#include "core/platform/TravaEntreProcessos.h"
#include "core/platform/Travas.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ProcessoFilho.h"

namespace {

using namespace plataforma;

std::vector<int> g_soltos;

void AnotaSoltura(void *objeto) {
  g_soltos.push_back(*static_cast<int *>(objeto));
}

/// Hangs (and is ended by the test runner) when some thread holds the lock.
void TomaEmOutraThread(SecaoCritica &secao) {
  std::thread([&secao] { const CQZTrava trava(secao); }).join();
}

TEST(CQZTrava, RecursivaEExclusiva) {
  SecaoCritica secao(NivelTrava::ArquivoDados);
  SecaoCritica temporaria(NivelTrava::Temporario);
  int contador = 0;
  const auto soma = [&] {
    for (int i = 0; i < 20000; ++i) {
      const CQZTrava fora(secao);
      const CQZTrava dentro(secao);
      const int iVisto = contador;
      std::this_thread::yield();
      contador = iVisto + 1;
    }
  };
  const CQZTrava trava(temporaria);
  std::thread primeira(soma);
  std::thread segunda([&] {
    EXPECT_EQ(LivroDaThread::Marca(), 0u) << "each thread has its own ledger";
    soma();
  });
  primeira.join();
  segunda.join();
  EXPECT_EQ(contador, 40000);
  EXPECT_EQ(LivroDaThread::Marca(), 1u);
}

// A file is opened under one lock and closed under another: entries leave in any order.
TEST(LivroDaThread, RetiraPeloObjetoESoltaAteAMarcaDoMaisNovoAoMaisVelho) {
  int objetos[] = {0, 1, 2, 3};
  g_soltos.clear();
  LivroDaThread::Anota(&objetos[0], AnotaSoltura);
  const std::size_t marca = LivroDaThread::Marca();
  for (const int i : {1, 2, 1, 3}) {
    LivroDaThread::Anota(&objetos[i], AnotaSoltura);
  }
  LivroDaThread::Retira(&objetos[1]);
  LivroDaThread::Retira(&g_soltos);
  LivroDaThread::SoltaAte(marca);
  EXPECT_EQ(g_soltos, (std::vector<int>{3, 2, 1}));
  EXPECT_EQ(LivroDaThread::Marca(), marca);
  LivroDaThread::Retira(&objetos[0]);
  EXPECT_EQ(g_soltos.size(), 3u) << "taking out releases nothing";
  EXPECT_EQ(LivroDaThread::Marca(), 0u);
}

TEST(LivroDaThread, SoltaOQueUmaPilhaAbandonadaTinha) {
  SecaoCritica externa(NivelTrava::Container);
  SecaoCritica interna(NivelTrava::ArquivoDados);
  const std::size_t marca = LivroDaThread::Marca();
  alignas(CQZTrava) std::byte abandonadas[3][sizeof(CQZTrava)];  // their destructors never run
  new (abandonadas[0]) CQZTrava(externa);
  new (abandonadas[1]) CQZTrava(interna);
  new (abandonadas[2]) CQZTrava(interna);
  EXPECT_EQ(LivroDaThread::Marca(), marca + 3);
  LivroDaThread::SoltaAte(marca);
  EXPECT_EQ(LivroDaThread::Marca(), marca);
  TomaEmOutraThread(externa);
  TomaEmOutraThread(interna);
}

TEST(SecaoCompartilhada, LeitoresJuntosEscritoresSos) {
  SecaoCompartilhada secao;
  std::atomic<int> dentro{0};
  std::uint64_t uiUm = 0;
  std::uint64_t uiOutro = 0;
  const auto le = [&] {
    for (int i = 0; i < 20000; ++i) {
      const CQZTravaLeitura trava(secao);
      // The first time each reader waits for the other one inside.
      for (dentro += i == 0 ? 1 : 0; dentro < 2;) {
        std::this_thread::yield();
      }
      const std::uint64_t uiVisto = uiUm;
      std::this_thread::yield();
      EXPECT_EQ(uiVisto, uiOutro);
    }
  };
  const auto escreve = [&] {
    while (dentro < 2) {
      std::this_thread::yield();
    }
    for (int i = 0; i < 20000; ++i) {
      const CQZTravaEscrita trava(secao);
      ++uiUm;
      ++uiOutro;
    }
  };
  std::vector<std::thread> threads;
  for (const std::function<void()> &parte : {std::function<void()>(le), {le}, {escreve}, {escreve}}) {
    threads.emplace_back(parte);
  }
  for (std::thread &thread : threads) {
    thread.join();
  }
  EXPECT_EQ(uiUm, 40000U);
  EXPECT_EQ(LivroDaThread::Marca(), 0U);
}

TEST(SecaoCompartilhada, PilhaAbandonada) {
  SecaoCompartilhada secao;
  {
    alignas(CQZTravaLeitura) std::byte abandonada[sizeof(CQZTravaLeitura)];
    new (abandonada) CQZTravaLeitura(secao);
    LivroDaThread::SoltaAte(0);
    EXPECT_FALSE(secao.Suspeita()) << "readers change nothing";
  }
  {
    alignas(CQZTravaEscrita) std::byte abandonada[sizeof(CQZTravaEscrita)];
    new (abandonada) CQZTravaEscrita(secao);
    LivroDaThread::SoltaAte(0);
    EXPECT_TRUE(secao.Suspeita());
  }
  std::thread([&] {
    const CQZTravaEscrita trava(secao);
    secao.Confia();
  }).join();
  EXPECT_FALSE(secao.Suspeita());
}

TEST(OrdemDasTravasDeathTest, PermiteDescerRepetirETemporariosEQuebraEncerra) {
  SecaoCritica externa(NivelTrava::Container);
  SecaoCritica interna(NivelTrava::ArquivoDados);
  SecaoCritica outraInterna(NivelTrava::ArquivoDados);
  SecaoCritica temporaria(NivelTrava::Temporario);
  SecaoCritica outraTemporaria(NivelTrava::Temporario);
  {
    const CQZTrava trava1(externa);
    const CQZTrava trava2(interna);
    const CQZTrava trava3(temporaria);
    for (SecaoCritica *pPermitida : {&outraTemporaria, &externa, &interna}) {
      plataforma::VerificaOrdem(*pPermitida);
    }
  }
  const CQZTrava trava(interna);
  EXPECT_DEATH(plataforma::VerificaOrdem(externa), "out of order");
  EXPECT_DEATH(plataforma::VerificaOrdem(outraInterna), "out of order");
  if (KALVO_VERIFICA_TRAVAS) {
    EXPECT_DEATH(const CQZTrava quebra(externa), "out of order");
    SecaoCompartilhada compartilhada;
    const CQZTravaLeitura leitura(compartilhada);
    EXPECT_DEATH(const CQZTrava quebra(interna), "under a shared lock");
    EXPECT_DEATH(const CQZTravaLeitura quebra(compartilhada), "under a shared lock");
    EXPECT_DEATH(const CQZTravaEscrita quebra(compartilhada), "under a shared lock");
  }
}

/// Tries to take the lock at once and says whether it did; holds it until told or killed.
int TomaTrava(const std::vector<std::string> &argumentos) {
  const auto trava = CriaTravaEntreProcessos(argumentos[0]);
  const bool bTomou = trava->Toma(0);
  std::cout << (bTomou ? "tomou" : "ocupada") << std::endl;
  std::string ordem;
  std::getline(std::cin, ordem);
  if (bTomou) {
    trava->Solta();
  }
  return 0;
}
const apoio::RegistraFilha kFilha("toma-trava", TomaTrava);

TEST(TravaEntreProcessos, UmDeCadaVez) {
  const apoio::PastaTemporaria pasta;  // its last part is a name that no other run of the tests uses
  const CString inteiro = pasta.Caminho().substr(0, pasta.Caminho().size() - 1);
  const CString nome = "teste-" + inteiro.substr(inteiro.rfind('\\') + 1);
  const auto trava = CriaTravaEntreProcessos(nome);
  {
    apoio::ProcessoFilho filho("toma-trava", {nome});
    ASSERT_EQ(filho.LeLinha(), "tomou");
    EXPECT_FALSE(trava->Toma(0));
    EXPECT_FALSE(trava->Toma(30));
    filho.EnviaLinha("solta");
    EXPECT_TRUE(trava->Toma(10000)) << "given up";
    EXPECT_EQ(filho.Espera(), 0);
  }
  EXPECT_EQ(apoio::ProcessoFilho("toma-trava", {nome}).LeLinha(), "ocupada");
  EXPECT_EQ(apoio::ProcessoFilho("toma-trava", {nome + "-b"}).LeLinha(), "tomou") << "another name";
  trava->Solta();
  apoio::ProcessoFilho morto("toma-trava", {nome});
  ASSERT_EQ(morto.LeLinha(), "tomou");
  morto.Mata();
  EXPECT_TRUE(trava->Toma(10000)) << "holder died";
  trava->Solta();
}

}  // namespace
