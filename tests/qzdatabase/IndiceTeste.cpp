// Records by their texts: whatever has happened to the file, the index finds what looking at every record finds.

#include "core/qzdatabase/arquivo/QZIndiceHash.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "tests/qzdatabase/AlocacaoQueFalha.h"
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
  std::set<std::uint64_t> hashes;
  std::size_t textos = 0;
  for (const std::size_t largura : std::initializer_list<std::size_t>{3, 8, 9, 13, 16, 51}) {
    hashes.clear();
    textos = 0;
    for (std::size_t tamanho = 0; tamanho <= largura; ++tamanho) {
      std::string campo(64, 'x');
      std::fill_n(campo.begin() + static_cast<std::ptrdiff_t>(tamanho), largura - tamanho, '\0');
      const std::uint64_t uiHash = CQZIndiceHash::Hash(campo.data(), largura);
      std::fill(campo.begin() + static_cast<std::ptrdiff_t>(std::min(tamanho + 1, largura)), campo.end(), 'y');
      EXPECT_EQ(CQZIndiceHash::Hash(campo.data(), largura), uiHash) << largura << ' ' << tamanho;
      hashes.insert(uiHash);
      ++textos;
      for (std::size_t i = 0; i < tamanho; ++i) {
        campo[i] = static_cast<char>(0x81);
        hashes.insert(CQZIndiceHash::Hash(campo.data(), largura));
        campo[i] = 'x';
        ++textos;
      }
    }
    EXPECT_EQ(hashes.size(), textos) << "every letter counts, width " << largura;
  }
}

class Indice : public ComBanco {
protected:
  using Posicoes = std::vector<std::uint64_t>;

  static bool Tem(const RegTeste &reg, const std::string &texto) {
    return std::string(reg.cTexto, strnlen(reg.cTexto, sizeof(reg.cTexto))) == texto;
  }
  /// A record whose field goes on behind its text.
  static RegTeste Com(std::uint32_t n, const std::string &texto) {
    RegTeste reg = Registro(n, texto.c_str());
    if (texto.size() + 1 < sizeof(reg.cTexto)) {
      reg.cTexto[sizeof(reg.cTexto) - 1] = static_cast<char>('a' + n % 20);
    }
    return reg;
  }
  Posicoes Olhando(const std::string &texto) {
    Posicoes posicoes;
    EXPECT_EQ(Arquivo().Percorre(1, Quantidade(Arquivo()),
                                 [&](std::uint64_t uiPosicao, const RegTeste &reg) {
                                   if (Tem(reg, texto)) {
                                     posicoes.push_back(uiPosicao);
                                   }
                                   return true;
                                 }),
              codigos::kOk);
    return posicoes;
  }
  /// At most `maximo` of them.
  Posicoes PeloIndice(const std::string &texto, std::size_t maximo = ~std::size_t{0}) {
    Posicoes posicoes;
    m_visitados = 0;
    EXPECT_EQ(Arquivo().PercorreTexto(0, texto, Quantidade(Arquivo()),
                                      [&](std::uint64_t uiPosicao, const RegTeste &reg) {
                                        ++m_visitados;
                                        if (Tem(reg, texto)) {
                                          posicoes.push_back(uiPosicao);
                                        }
                                        return posicoes.size() < maximo;
                                      }),
              codigos::kOk);
    return posicoes;
  }
  void Confere(const std::string &texto) {
    const Posicoes esperadas = Olhando(texto);
    ASSERT_EQ(PeloIndice(texto, 1), esperadas.empty() ? Posicoes() : Posicoes{esperadas[0]}) << texto;
    ASSERT_EQ(PeloIndice(texto), esperadas) << texto;
  }
  /// `qtd` records, each with a text of its own.
  void EnchecomTextosProprios(std::uint32_t qtd) {
    CArray<RegTeste> aRegistros;
    for (std::uint32_t n = 1; n <= qtd; ++n) {
      aRegistros.Add(Com(n, "P" + std::to_string(n)));
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
  EnchecomTextosProprios(kTresBlocos);
  EXPECT_EQ(PeloIndice("P2222"), Posicoes{2222});
  EXPECT_EQ(m_visitados, 1U);
  EXPECT_EQ(PeloIndice("P"), Posicoes());
  EXPECT_EQ(m_visitados, 0U);
  ASSERT_EQ(Grava(2222, Com(1, "Q")), codigos::kOk);
  ASSERT_EQ(Grava(0, Com(1, "P2222")), codigos::kOk);
  EXPECT_EQ(PeloIndice("P2222"), Posicoes{kTresBlocos + 1});
  EXPECT_EQ(m_visitados, 1U);
  // The first of three goes: the next one is looked for once, in another block.
  ASSERT_EQ(Grava(2400, Com(1, "P7")), codigos::kOk);
  ASSERT_EQ(Grava(2500, Com(1, "P7")), codigos::kOk);
  ASSERT_EQ(Grava(7, Com(1, "Q")), codigos::kOk);
  EXPECT_EQ(PeloIndice("P7", 1), Posicoes{2400});
  EXPECT_EQ(m_visitados, 1U);
  EXPECT_EQ(PeloIndice("P7"), (Posicoes{2400, 2500}));
  // All go: no entry is left that would have to be followed.
  ASSERT_EQ(Grava(9, Com(1, "Q")), codigos::kOk);
  EXPECT_EQ(PeloIndice("P9"), Posicoes());
  EXPECT_EQ(m_visitados, 0U);
  ASSERT_EQ(Grava(2400, Com(1, "R1")), codigos::kOk);
  ASSERT_EQ(Grava(2500, Com(1, "R2")), codigos::kOk);
  EXPECT_EQ(PeloIndice("P7"), Posicoes());
  EXPECT_EQ(m_visitados, 0U);
}

/// Only records up to the count that the caller has read are visited; one that is not there fails as a read of it does.
TEST_F(Indice, AteAUltima) {
  ASSERT_EQ(Abre(), codigos::kOk);
  EnchecomTextosProprios(10);
  for (const std::uint64_t uiPosicao : {5U, 9U}) {
    ASSERT_EQ(Grava(uiPosicao, Com(1, "P3")), codigos::kOk);
  }
  const auto visita = [](std::vector<std::uint64_t> *pVisitados) {
    return [pVisitados](std::uint64_t uiPosicao, const RegTeste &) {
      pVisitados->push_back(uiPosicao);
      return true;
    };
  };
  const std::pair<std::uint64_t, std::size_t> casos[] = {{2, 0}, {3, 1}, {8, 6}, {10, 8}};
  for (const auto &[uiUltima, visitas] : casos) {
    Posicoes visitados;
    EXPECT_EQ(Arquivo().PercorreTexto(0, "P3", uiUltima, visita(&visitados)), codigos::kOk);
    EXPECT_EQ(visitados.size(), visitas) << uiUltima;
  }
  Posicoes visitados;
  EXPECT_EQ(Arquivo().PercorreTexto(0, "P10", 9, visita(&visitados)), codigos::kOk);
  EXPECT_TRUE(visitados.empty()) << "the only one stands behind";
  apoio::ColetorRastro rastro;
  EXPECT_EQ(Arquivo().PercorreTexto(0, "P1", 11, visita(&visitados)), codigos::kPosicaoAlemDoFim);
  EXPECT_EQ(rastro.Toma(), std::vector<std::string>{"CQZFile<struct RegTeste>::Le|QZFile.h|((HRESULT)0x810809DAL)"});
  // More new texts at once than there are entries.
  EnchecomTextosProprios(kTresBlocos);
  Confere("P2000");
}

/// Writes, collections, writes that fail and are undone, handles that die, other files in the place of this one.
TEST_F(Indice, IgualAoExameDepoisDeTudo) {
  static const std::string kTextos[] = {"A", "B", "AB", "ABCDEFGHIJKL", "ABCDEFGHIJK", "ABCDEFGHIJKM", "C\xE3", "a"};
  std::mt19937 gerador(7);
  const auto sorteia = [&](std::size_t n) { return static_cast<std::uint32_t>(gerador() % n); };
  const auto texto = [&] {
    return sorteia(2) == 0 ? kTextos[sorteia(std::size(kTextos))] : "P" + std::to_string(sorteia(3000));
  };
  ASSERT_EQ(Abre(), codigos::kOk);
  EnchecomTextosProprios(kTresBlocos);
  for (int i = 0; i < 400; ++i) {
    SCOPED_TRACE(i);
    const auto uiQtd = static_cast<std::uint32_t>(Quantidade(Arquivo()));
    const std::string novo = texto();
    std::uint64_t uiPosicao = sorteia(4) == 0 ? 0 : 1 + sorteia(uiQtd);
    const std::uint32_t uiOp = sorteia(20);
    if (uiOp == 0) {
      ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
      const std::string dados = m_empresa.Le("TESTE.DAT");
      const std::size_t saem = sizeof(RegTeste) * sorteia(100);
      Poe("TESTE.DAT", dados.substr(saem, dados.size() - saem - sizeof(RegTeste)) + Bytes(Com(1, novo)));
      ASSERT_EQ(Abre(), codigos::kOk);
    } else if (uiOp < 4) {
      CArray<RegTeste> aRegistros;
      for (std::uint32_t n = 0; n < 1 + sorteia(40); ++n) {
        aRegistros.Add(Com(n, texto()));
      }
      ASSERT_EQ(Arquivo().GravaColecao(uiPosicao, aRegistros), codigos::kOk);
    } else if (uiOp < 8) {
      apoio::PlanoFalha plano{.operacoes = apoio::kOpGrava, .trecho = "TESTE.DAT", .enesima = 1 + sorteia(2)};
      plano.bPersistente = sorteia(2) == 0;
      plano.gravaAntes = sorteia(17);
      if (sorteia(2) == 0) {
        plano.morte = 0;
      }
      m_falhas.Arma(plano);
      static_cast<void>(Grava(uiPosicao, Com(1, novo)));
      m_falhas.Desarma();
    } else {
      ASSERT_EQ(Grava(uiPosicao, Com(2, novo)), codigos::kOk);
    }
    for (const std::string &pergunta : {novo, texto(), texto()}) {
      ASSERT_NO_FATAL_FAILURE(Confere(pergunta));
    }
  }
}

/// Whichever allocation fails, the answers stay right: by the index, or by looking at every record.
TEST_F(Indice, SemMemoria) {
  if (!kAlocacaoPodeFalhar) {
    GTEST_SKIP();
  }
  ASSERT_EQ(Abre(), codigos::kOk);
  EnchecomTextosProprios(kTresBlocos);
  bool bSemIndice = false;
  for (std::size_t enesima = 1, faltou = 1; faltou != 0; enesima += enesima < 40 ? 1 : 97) {
    SCOPED_TRACE(enesima);
    ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
    ASSERT_EQ(Abre(), codigos::kOk);
    std::uint64_t uiAchada = 0;
    t_alocacoesAteFalhar = enesima;
    const HRESULT hr =
        Arquivo().PercorreTexto(0, "P2000", kTresBlocos, [&](std::uint64_t uiPosicao, const RegTeste &r) {
          uiAchada = Tem(r, "P2000") ? uiPosicao : uiAchada;
          return true;
        });
    faltou = t_alocacoesAteFalhar == 0 ? enesima : 0;
    t_alocacoesAteFalhar = 0;
    ASSERT_EQ(hr, codigos::kOk);
    ASSERT_EQ(uiAchada, 2000U);
    PeloIndice("none");
    bSemIndice = bSemIndice || m_visitados == kTresBlocos;
    EXPECT_EQ(m_visitados, faltou != 0 ? kTresBlocos : 0U);
  }
  EXPECT_TRUE(bSemIndice);
  // With the index built: room for what is written.
  for (std::uint32_t n = 1; n <= 200; ++n) {
    t_alocacoesAteFalhar = 1 + n % 7;
    const std::string novo = "N" + std::to_string(n);
    try {
      static_cast<void>(Grava(n % 3 == 0 ? n : 0, Com(n, novo)));
    } catch (const std::bad_alloc &) {
      // A write that memory is too short for has not happened.
    }
    t_alocacoesAteFalhar = 0;
    ASSERT_NO_FATAL_FAILURE(Confere(novo));
    ASSERT_NO_FATAL_FAILURE(Confere("P" + std::to_string(n)));
  }
}

}  // namespace
