// Locks within the process with their ledger, and the lock between processes.

#include <gtest/gtest.h>

#include <atomic>
#include <iostream>
#include <new>
#include <thread>
#include <vector>

#include "core/platform/LivroDaThread.h"
#include "core/platform/ServicosSistema.h"
#include "core/platform/TravaEntreProcessos.h"
#include "core/platform/Travas.h"
#include "tests/apoio/ProcessoFilho.h"

namespace {

using namespace plataforma;

std::vector<int> g_soltos;

void AnotaSoltura(void *objeto) {
  EXPECT_NE(LivroDaThread::Anotacoes().back().objeto, objeto) << "taken out before it is released";
  g_soltos.push_back(*static_cast<int *>(objeto));
}

/// Lets another thread run in the middle of what a lock is to protect. Not each time: on a busy machine the processor
/// may be gone for tens of milliseconds.
void CedeAsVezes(int i) {
  if (i % 100 == 0) {
    std::this_thread::yield();
  }
}

/// Takes a lock for a stack that is then abandoned: nothing runs its destructor.
template <class Trava, class Secao, class... Resto>
void Abandona(Secao &secao, Resto... resto) {
  alignas(Trava) std::byte pilha[sizeof(Trava)];
  new (pilha) Trava(secao, resto...);
}

TEST(CQZTrava, RecursivaEExclusiva) {
  SecaoCritica secao(NivelTrava::ArquivoDados);
  int contador = 0;
  const auto soma = [&] {
    for (int i = 0; i < 20000; ++i) {
      const CQZTrava fora(secao);
      const CQZTrava dentro(secao);
      const int iVisto = contador;
      CedeAsVezes(i);
      contador = iVisto + 1;
      EXPECT_EQ(LivroDaThread::Marca(), 2u) << "each thread has its own ledger";
    }
  };
  std::thread outra(soma);
  soma();
  outra.join();
  EXPECT_EQ(contador, 40000);
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

TEST(LivroDeathTest, UmaAnotacaoAMaisEncerra) {
  const auto anota = [](std::size_t qtd) {
    for (; qtd != 0; --qtd) {
      LivroDaThread::Anota(&g_soltos, nullptr);
    }
  };
  EXPECT_DEATH(anota(LivroDaThread::kMaximo + 1), "too many locks");
}

/// Hangs (and is ended by the test runner) when a lock stays.
TEST(LivroDaThread, SoltaOQueUmaPilhaAbandonadaTinha) {
  SecaoCritica externa(NivelTrava::Container);
  SecaoCritica interna(NivelTrava::ArquivoDados);
  Abandona<CQZTrava>(externa);
  Abandona<CQZTrava>(interna);
  Abandona<CQZTrava>(interna);
  LivroDaThread::SoltaAte(0);
  SecaoCompartilhada secao;
  Abandona<CQZTravaLeitura>(secao);
  LivroDaThread::SoltaAte(0);
  EXPECT_FALSE(secao.Suspeita()) << "readers change nothing";
  Abandona<CQZTravaEscrita>(secao);
  LivroDaThread::SoltaAte(0);
  EXPECT_TRUE(secao.Suspeita());
  std::thread([&] {
    const CQZTrava trava1(externa);
    const CQZTrava trava2(interna);
    const CQZTravaEscrita trava3(secao);
    secao.Confia();
  }).join();
  EXPECT_FALSE(secao.Suspeita());
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
      CedeAsVezes(i);
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
  std::thread threads[] = {std::thread(le), std::thread(le), std::thread(escreve), std::thread(escreve)};
  for (std::thread &thread : threads) {
    thread.join();
  }
  EXPECT_EQ(uiUm, 40000U);
  EXPECT_EQ(LivroDaThread::Marca(), 0U);
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
  const CQZTrava trava1(externa);
  const CQZTrava trava2(interna);
  const CQZTrava trava3(externa);
  EXPECT_DEATH(plataforma::VerificaOrdem(outraInterna), "out of order");
  if (KALVO_VERIFICA_TRAVAS) {
    EXPECT_DEATH(const CQZTrava quebra(outraInterna), "out of order");
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
const apoio::RegistraFilha kQueTomaTrava("toma-trava", TomaTrava);

TEST(TravaEntreProcessos, UmDeCadaVez) {
  const CString nome = InformacoesDoSistema().NovoGuid();
  const auto trava = CriaTravaEntreProcessos(nome);
  apoio::ProcessoFilho solta("toma-trava", {nome});
  ASSERT_EQ(solta.LeLinha(), "tomou");
  EXPECT_FALSE(trava->Toma(30));
  solta.EnviaLinha("solta");
  {
    const CQZTravaDeProcesso tomada(*trava, 10000);
    EXPECT_TRUE(tomada.Tomada()) << "given up";
    EXPECT_EQ(apoio::ProcessoFilho("toma-trava", {nome}).LeLinha(), "ocupada");
    EXPECT_EQ(apoio::ProcessoFilho("toma-trava", {nome + "-b"}).LeLinha(), "tomou") << "another name";
  }
  EXPECT_EQ(apoio::ProcessoFilho("toma-trava", {nome}).LeLinha(), "tomou") << "the end of the scope";
  Abandona<CQZTravaDeProcesso>(*trava, 10000U);
  LivroDaThread::SoltaAte(0);
  apoio::ProcessoFilho morre("toma-trava", {nome});
  ASSERT_EQ(morre.LeLinha(), "tomou");
  morre.Mata();
  EXPECT_TRUE(trava->Toma(10000)) << "holder died";
  trava->Solta();
}

}  // namespace
