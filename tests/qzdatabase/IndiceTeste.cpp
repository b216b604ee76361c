// Records by their texts: where the index looks. That it follows every write is shown where writes fail and files are
// loaded anew, for all kinds of file.

#include "core/qzdatabase/arquivo/QZIndiceHash.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <utility>

#include "tests/qzdatabase/BancoTeste.h"

namespace {

/// Hashes of few parts and of neighbouring places, so that entries get into each other's way.
TEST(IndiceHash, ComoUmMapaDeConjuntos) {
  std::mt19937 gerador(1);
  CQZIndiceHash indice;
  std::map<std::uint64_t, std::set<std::uint64_t>> modelo;
  const auto sorteia = [&](unsigned n) { return static_cast<std::uint32_t>(gerador() % n); };
  for (int i = 0; i < 60000; ++i) {
    // Now more, now fewer of them; neighbours at both ends of a part.
    const std::uint64_t uiHash = (std::uint64_t{sorteia(2)} << 32) | (sorteia(2) * 0xFFFF0000U + sorteia(400) * 97);
    std::set<std::uint64_t> &posicoes = modelo[uiHash];
    if (sorteia(10) < (i / 10000 % 2 == 0 ? 7U : 3U)) {
      const std::uint64_t uiPosicao = 1 + sorteia(6);
      indice.Reserva(uiHash, 1);
      indice.Acrescenta(uiHash, uiPosicao);
      posicoes.insert(uiPosicao);
    } else if (!posicoes.empty()) {
      const std::uint64_t uiPosicao = *std::next(posicoes.begin(), sorteia(static_cast<unsigned>(posicoes.size())));
      indice.Retira(uiHash, uiPosicao);
      posicoes.erase(uiPosicao);
    }
    for (const std::uint64_t uiPergunta : {uiHash, uiHash ^ 97U}) {
      const std::set<std::uint64_t> &esperadas = modelo[uiPergunta];
      const CQZIndiceHash::Achado achado = indice.Acha(uiPergunta);
      if (achado.uiPosicao == 0) {
        ASSERT_TRUE(esperadas.empty());
      } else if (!achado.bOutros) {
        ASSERT_EQ(esperadas, std::set<std::uint64_t>{achado.uiPosicao});
      } else if (!esperadas.empty()) {
        ASSERT_LE(achado.uiPosicao, *esperadas.begin());
        // What a question makes of it.
        indice.Avanca(uiPergunta, *esperadas.begin());
      } else {
        indice.Apaga(uiPergunta);
        ASSERT_EQ(indice.Acha(uiPergunta).uiPosicao, 0U);
      }
    }
  }
}

TEST(IndiceHash, TextosAteOTerminador) {
  for (const std::size_t largura : std::initializer_list<std::size_t>{3, 8, 9, 13, 16, 51}) {
    std::set<std::uint64_t> hashes;
    for (std::size_t tamanho = 0; tamanho <= largura; ++tamanho) {
      std::string campo(64, '\x81');
      campo.replace(tamanho, 64, 64 - tamanho, '\0');
      const std::uint64_t uiHash = CQZIndiceHash::Hash(campo.data(), largura);
      const std::size_t uiAtras = std::min(tamanho + 1, largura);
      campo.replace(uiAtras, 64, 64 - uiAtras, 'y');
      EXPECT_EQ(CQZIndiceHash::Hash(campo.data(), largura), uiHash) << largura << ' ' << tamanho;
      EXPECT_TRUE(hashes.insert(uiHash).second) << "every letter counts, width " << largura;
    }
  }
}

class Indice : public ComBanco {
protected:
  using Posicoes = std::vector<std::uint64_t>;

  /// A record whose field goes on behind its text.
  static RegTeste Com(const std::string &texto) {
    RegTeste reg = Registro(1, texto);
    reg.cTexto[sizeof(reg.cTexto) - 1] = 'x';
    return reg;
  }
  /// At most `maximo` of the first `uiUltima` records.
  Posicoes PeloIndice(const char *lpTexto, std::uint64_t uiUltima, std::size_t maximo = ~std::size_t{0}) {
    Posicoes posicoes;
    m_visitados = 0;
    EXPECT_EQ(Arquivo().PercorreTexto(0, lpTexto, uiUltima,
                                      [&](std::uint64_t uiPosicao, const RegTeste &reg) {
                                        ++m_visitados;
                                        if (std::strcmp(reg.cTexto, lpTexto) == 0) {
                                          posicoes.push_back(uiPosicao);
                                        }
                                        return posicoes.size() < maximo;
                                      }),
              codigos::kOk);
    return posicoes;
  }
  Posicoes PeloIndice(const char *lpTexto) { return PeloIndice(lpTexto, Quantidade(Arquivo())); }
  /// Appends the records P1, P2, ...
  void Enche(std::uint32_t qtd) {
    CArray<RegTeste> aRegistros;
    for (std::uint32_t n = 1; n <= qtd; ++n) {
      aRegistros.Add(Com("P" + std::to_string(n)));
    }
    std::uint64_t uiPosicao = 0;
    ASSERT_EQ(Arquivo().GravaColecao(uiPosicao, aRegistros), codigos::kOk);
  }

  std::size_t m_visitados = 0;
};

constexpr std::uint32_t kTresBlocos = 2 * kRegistrosPorBloco + 500;

TEST_F(Indice, SoOlhaOndePodeEstar) {
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(PeloIndice("P1"), Posicoes()) << "no file";
  Enche(1);
  EXPECT_EQ(PeloIndice("P1"), Posicoes{1});
  ASSERT_EQ(Grava(1, Com("P7")), codigos::kOk);
  Enche(kTresBlocos);  // more new texts at once than there are entries
  // What is written, and for what is asked then: the places, and how many records are looked at.
  const std::tuple<std::uint64_t, const char *, const char *, Posicoes, std::size_t> casos[] = {
      {2000, "Q", "P2222", {2223}, 1},
      {2223, "Q", "P2222", {}, 0},
      {0, "P2222", "P2222", {kTresBlocos + 2}, 1},
      {2400, "P7", "P2", {3}, 1},
      {2500, "P9", "P9", {10, 2500}, kTresBlocos + 2 - 9},
      // Of several the first goes: the next one is looked for once, in another block.
      {1, "Q", "P7", {8, 2400}, kTresBlocos + 2 - 7},
      {8, "Q", "P7", {2400}, kTresBlocos + 2 - 2399},
      // All go: no entry is left that would have to be followed.
      {2400, "R", "P7", {}, 0}};
  for (const auto &[uiPosicao, lpTexto, lpPergunta, posicoes, visitados] : casos) {
    SCOPED_TRACE(uiPosicao);
    ASSERT_EQ(Grava(uiPosicao, Com(lpTexto)), codigos::kOk);
    EXPECT_EQ(PeloIndice(lpPergunta), posicoes);
    EXPECT_EQ(m_visitados, visitados);
  }
  EXPECT_EQ(PeloIndice("Q", kTresBlocos, 1), Posicoes{1});
  EXPECT_EQ(m_visitados, 1U);
}

/// Only records up to the count that the caller has read are visited; one that is not there fails as a read of it does.
TEST_F(Indice, AteAUltima) {
  ASSERT_EQ(Abre(), codigos::kOk);
  Enche(10);
  ASSERT_EQ(Grava(9, Com("P3")), codigos::kOk);
  const std::pair<std::uint64_t, std::size_t> casos[] = {{2, 0}, {3, 1}, {8, 6}, {10, 8}};
  for (const auto &[uiUltima, visitas] : casos) {
    PeloIndice("P3", uiUltima);
    EXPECT_EQ(m_visitados, visitas) << uiUltima;
  }
  EXPECT_EQ(PeloIndice("P10", 9), Posicoes());
  EXPECT_EQ(m_visitados, 0U) << "the only one stands behind";
  const auto visita = [](std::uint64_t, const RegTeste &) { return true; };
  EXPECT_EQ(Arquivo().PercorreTexto(0, "P1", 11, visita), codigos::kPosicaoAlemDoFim);
}

/// Whichever allocation fails, the answer stays right: by the index, or by looking at every record.
TEST_F(Indice, SemMemoria) {
  ASSERT_EQ(Abre(), codigos::kOk);
  Enche(kTresBlocos);
  bool bFaltou = true;
  for (std::size_t enesima = 1; bFaltou; enesima += enesima < 40 ? 1 : 97) {
    SCOPED_TRACE(enesima);
    ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
    ASSERT_EQ(Abre(), codigos::kOk);
    std::uint64_t uiAchada = 0;
    t_alocacoesAteFalhar = enesima;
    const HRESULT hr =
        Arquivo().PercorreTexto(0, "P2000", kTresBlocos, [&](std::uint64_t uiPosicao, const RegTeste &reg) {
          uiAchada = std::strcmp(reg.cTexto, "P2000") == 0 ? uiPosicao : uiAchada;
          return true;
        });
    bFaltou = std::exchange(t_alocacoesAteFalhar, 0) == 0;
    ASSERT_EQ(hr, codigos::kOk);
    ASSERT_EQ(uiAchada, 2000U);
    PeloIndice("none");
    EXPECT_EQ(m_visitados, bFaltou ? kTresBlocos : 0U);
  }
}

}  // namespace
