// What holds for every kind of file: how it is opened, what a failure leaves behind, and other programs in between.

#include <cstdlib>
#include <new>
#include <set>

#include "tests/qzdatabase/AlocacaoQueFalha.h"
#include "tests/qzdatabase/Especies.h"

constinit thread_local std::size_t t_alocacoesAteFalhar = 0;

#if !__has_feature(thread_sanitizer)
// Not inlined: the compiler would take the malloc and free inside for mismatched pairs.
[[gnu::noinline]] void *operator new(std::size_t uiTamanho) {
  void *const p = t_alocacoesAteFalhar == 0 || --t_alocacoesAteFalhar != 0 ? std::malloc(uiTamanho + 1) : nullptr;
  return p != nullptr ? p : throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void *p) noexcept {
  std::free(p);
}
[[gnu::noinline]] void operator delete(void *p, std::size_t) noexcept {
  std::free(p);
}
#endif

namespace {

using apoio::Duracao;
using apoio::kOpAbre;
using apoio::kOpGrava;
using apoio::PlanoFalha;
using plataforma::FalhaWin32;

using Dados = std::optional<std::string>;

struct Fabrica {
  const char *nome;
  std::unique_ptr<Especie> (*cria)(IDonoDeArquivos *);
};

template <typename E>
Fabrica De(const char *nome) {
  return {nome, [](IDonoDeArquivos *pDono) -> std::unique_ptr<Especie> { return std::make_unique<E>(pDono); }};
}

class Conformidade : public ComEmpresa, public testing::WithParamInterface<Fabrica> {
protected:
  HRESULT Abre() { return m_banco.Inicializa(m_empresa.Dono()); }
  HRESULT Fecha() { return m_banco.Finaliza(); }
  CString Nome() const { return m_pEspecie->File().GetNomeArquivo(); }
  /// Opens the file with this content, or with none there, and nothing in the list of created files.
  void Prepara(const Dados &dados, const std::string &sobra = {}) {
    static_cast<void>(Fecha());
    Poe(kArquivoControle, std::nullopt);
    Poe(Nome(), dados ? Dados(*dados + sobra) : dados);
    ASSERT_EQ(Abre(), codigos::kOk);
  }
  /// All bytes of the file at this moment, and those of a whole file.
  Dados Disco() { return Inteiro(Nome()); }
  Dados Inteira(const Dados &dados, const std::string &sobra = {}) const {
    return dados ? Dados(NoDisco(Nome(), *dados + sobra)) : dados;
  }
  std::string Lido() {
    std::string dados;
    EXPECT_EQ(m_pEspecie->Le(&dados), codigos::kOk);
    return dados;
  }
  HRESULT Leitura() {
    std::string dados;
    return m_pEspecie->Le(&dados);
  }
  bool Listado() { return Inteiro(kArquivoControle).value_or("").find(Nome()) != std::string::npos; }
  PlanoFalha Falha(unsigned operacoes, std::uint32_t erro, bool bPersistente = true) {
    return {.operacoes = operacoes,
            .trecho = Nome(),
            .bPersistente = bPersistente,
            .falha = FalhaWin32(erro),
            .gravaAntes = 7};
  }
  /// Another program's file is there at the N-th opening from now.
  PlanoFalha Alheio(const Dados &dados, std::size_t enesima = 1) {
    return AntesDeAbrir(
        Nome(), [this, dados] { Poe(Nome(), dados); }, enesima);
  }
  /// A header holds over nothing but what was there before or what there was to be.
  void ConfereCabecalho(const std::string &antes, const std::string &depois) {
    const std::string disco = Disco().value_or("");
    if (apoio::CabecalhosLigados() && disco.size() > kTamanhoCabecalho) {
      const std::string dados = disco.substr(kTamanhoCabecalho);
      ASSERT_TRUE(disco != NoDisco(Nome(), dados) || dados == antes || dados == depois);
    }
  }
  /// Memory and disk are one, and the disk is that.
  void ConfereTudo(const Dados &dados) {
    EXPECT_EQ(Lido(), dados.value_or(""));
    EXPECT_EQ(Fecha(), codigos::kOk);
    EXPECT_EQ(Disco(), Inteira(dados));
  }

  CQZDataBase m_banco{QZ_DF, plataforma::NivelTrava::ArquivoDados};
  std::unique_ptr<Especie> m_pEspecie = GetParam().cria(&m_banco);
  Especie &m_especie = *m_pEspecie;
  apoio::EmpresaComBase m_outra;
};

INSTANTIATE_TEST_SUITE_P(Arquivo, Conformidade,
                         testing::Values(De<Tipado>("Tipado"), De<Unico>("Unico"), De<Texto>("Texto")),
                         [](const auto &parametro) { return parametro.param.nome; });

// Opening.

TEST_P(Conformidade, CodigoETentativasDaAbertura) {
  const struct {
    plataforma::FalhaArquivo falha;
    HRESULT esperado;
    std::size_t tentativas;
    std::size_t esperas;
  } casos[] = {{FalhaWin32(3), codigos::kArqCaminhoInvalido, 1, 0},
               {FalhaWin32(6), codigos::kArqInvalido, 1, 0},
               {{plataforma::CausaArquivo::DiretorioCheio, 0}, codigos::kArqDiretorioCheio, 1, 0},
               {FalhaWin32(32), codigos::kArqCompartilhamento, 100, 99},
               {FalhaWin32(33), codigos::kArqBloqueio, 100, 99},
               {FalhaWin32(4), codigos::kArqMuitosAbertos, 100, 99},
               {FalhaWin32(5), codigos::kArqAcessoNegado, 100, 99},
               {FalhaWin32(112), codigos::kArqDiscoCheio, 100, 99},
               {FalhaWin32(1117), codigos::kArqOutra, 100, 100},
               {FalhaWin32(9999), codigos::kArqOutra, 100, 100}};
  Poe(Nome(), m_especie.Conteudo(1, 2));
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.falha.erroSO);
    const std::size_t antes = m_relogio.Esperas().size();
    m_falhas.Arma({.operacoes = kOpAbre, .trecho = Nome(), .bPersistente = true, .falha = caso.falha});
    EXPECT_EQ(Abre(), caso.esperado);
    EXPECT_EQ(m_falhas.Vistas(), caso.tentativas);
    EXPECT_EQ(m_relogio.Esperas().size() - antes, caso.esperas);
  }
  m_falhas.Arma(Falha(kOpAbre, 32, false));
  EXPECT_EQ(Abre(), codigos::kOk) << "one busy moment is ridden out";
  EXPECT_EQ(m_relogio.Esperas().back(), 10U);
  ConfereTudo(m_especie.Conteudo(1, 2));
}

/// Who else may open the file meanwhile; the mode in force is not opened again.
TEST_P(Conformidade, Modos) {
  Prepara(m_especie.Conteudo(1, 2));
  for (const auto &[eModo, erro] :
       {std::pair(eModoLeitura, 32U), {eModoLeituraGravacao, 32U}, {eModoLeituraCompartilhada, 0U}}) {
    SCOPED_TRACE(eModo);
    ASSERT_EQ(m_especie.File().AbreArquivo(eModo), codigos::kOk);
    std::unique_ptr<plataforma::IArquivoAberto> terceiro;
    EXPECT_EQ(plataforma::ServicosDoSistema()
                  .arquivos
                  ->Abre(m_empresa.Caminho(Nome()),
                         {plataforma::Acesso::Leitura, plataforma::Compartilhamento::NegaNada}, &terceiro)
                  .erroSO,
              erro);
    m_falhas.Arma({.trecho = Nome()});
    EXPECT_EQ(m_especie.File().AbreArquivo(eModo), codigos::kOk);
    EXPECT_EQ(Lido(), m_especie.Conteudo(1, 2));
    EXPECT_EQ(m_falhas.Vistas(), 0U);
    m_falhas.Desarma();
  }
}

TEST_P(Conformidade, ArquivoAusente) {
  Prepara(std::nullopt);
  EXPECT_FALSE(m_especie.File().ExisteArquivo());
  EXPECT_EQ(Lido(), "");
  EXPECT_EQ(m_especie.File().AbreArquivo(eModoLeitura), codigos::kOk);
  EXPECT_EQ(Disco(), std::nullopt) << "reading creates nothing";
  EXPECT_FALSE(Listado());
  apoio::RegistroTeste registro;
  registro.DefineTexto(m_empresa.ChaveDaEmpresa(), "DF", m_empresa.Caminho("nada"));
  EXPECT_EQ(Abre(), codigos::kArqCaminhoInvalido);
  EXPECT_TRUE(m_relogio.Esperas().empty());
}

TEST_P(Conformidade, SomenteLeituraTemCodigoProprio) {
  Prepara(m_especie.Conteudo(1, 2));
  apoio::MarcaSomenteLeitura(m_empresa.Caminho(Nome()), true);
  if (!apoio::SomenteLeituraSemEfeito()) {
    EXPECT_EQ(m_especie.Muda(3), codigos::kArqSomenteLeitura);
  }
  EXPECT_EQ(m_especie.Muda(1), codigos::kOk) << "what is there already needs no writing";
  EXPECT_EQ(Lido(), m_especie.Conteudo(1, 2));
  apoio::MarcaSomenteLeitura(m_empresa.Caminho(Nome()), false);
  EXPECT_EQ(m_especie.Muda(3), codigos::kOk);
}

/// A file that cannot be opened for writing is put back into its old mode with one attempt. Where that fails too each
/// operation asks once and answers the file's code.
TEST_P(Conformidade, AberturaQueFalhaVoltaAoModoAnterior) {
  for (const auto &[erro, hr, tentativas] :
       {std::tuple(3U, codigos::kArqCaminhoInvalido, 1U), {32U, codigos::kArqCompartilhamento, 100U}}) {
    Prepara(m_especie.Conteudo(1, 2));
    m_falhas.Arma(Falha(kOpAbre, 3, false));
    EXPECT_EQ(m_especie.Muda(3), codigos::kArqCaminhoInvalido);
    EXPECT_EQ(m_falhas.Vistas(), 2U);
    EXPECT_EQ(Lido(), m_especie.Conteudo(1, 2));
    EXPECT_EQ(m_falhas.Vistas(), 2U) << "it is open";
    m_falhas.Arma(Falha(kOpAbre, erro));
    EXPECT_EQ(m_especie.Muda(3), hr);
    EXPECT_EQ(m_falhas.Vistas(), tentativas + 1);
    EXPECT_EQ(Leitura(), hr);
    EXPECT_EQ(m_falhas.Vistas(), tentativas + 2);
    // It is no file that this object has created, whatever the next write comes to.
    m_falhas.Arma(Falha(kOpGrava, 1117));
    EXPECT_TRUE(Falhou(m_especie.Muda(3)));
    m_falhas.Desarma();
    ConfereTudo(m_especie.Conteudo(1, 2));
  }
}

// Failures while writing.

/// Each write with its N-th operation on any file failing; that one and all after it; and two operations. What the disk
/// holds is looked at before anything has repaired it.
TEST_P(Conformidade, FalhaEmCadaOperacaoDaGravacao) {
  for (const Gravacao &gravacao : m_especie.Gravacoes()) {
    for (const std::uint32_t erro : {112U, 1117U}) {
      SCOPED_TRACE(testing::Message() << gravacao.nome << ", error " << erro);
      for (apoio::SerieFalhas serie(m_falhas, {.falha = FalhaWin32(erro), .gravaAntes = 7}, Duracao::Todas);
           serie.Proxima();) {
        Prepara(gravacao.antes, gravacao.sobra);
        const HRESULT hr = serie.Roda(gravacao.grava);
        const Dados agora = Falhou(hr) ? Inteira(gravacao.antes, gravacao.sobra) : Inteira(gravacao.depois);
        if (!Falhou(hr) || (serie.Passageira() && gravacao.antes)) {
          ASSERT_EQ(Disco(), agora) << "at once";
        } else {
          ConfereCabecalho(gravacao.antes.value_or("") + gravacao.sobra, gravacao.depois);
        }
        ASSERT_EQ(Lido(), Falhou(hr) ? gravacao.antes.value_or("") : gravacao.depois);
        ASSERT_EQ(Fecha(), codigos::kOk);
        if (!Falhou(hr) || gravacao.antes || m_especie.Torto() == codigos::kTamanhoDiferente) {
          ASSERT_EQ(Disco(), agora) << "a single-record file without its record would be refused";
        } else {
          ASSERT_LE(Disco().value_or("").size(), kTamanhoCabecalho);
        }
        if (!serie.Persistente()) {
          ASSERT_EQ(Abre(), codigos::kOk) << "nothing is listed that is not there";
          ASSERT_EQ(Falhou(hr) ? gravacao.grava() : codigos::kOk, codigos::kOk);
          ASSERT_EQ(Disco(), Inteira(gravacao.depois));
        }
      }
    }
  }
}

/// What cannot be undone at once is told by everything that tries again, the end of the file included, and put right by
/// whatever comes first: the write of what is there already, another write, the end.
TEST_P(Conformidade, GravacaoQueNaoSeDesfaz) {
  std::vector<Gravacao> gravacoes = m_especie.Gravacoes();
  gravacoes.front() = {"first number", m_especie.Conteudo(1, 2), [this] { return m_especie.Muda(3); },
                       m_especie.Conteudo(3, 2)};
  for (const Gravacao &gravacao : gravacoes) {
    SCOPED_TRACE(gravacao.nome);
    const Dados antes = Inteira(gravacao.antes, gravacao.sobra);
    const auto estraga = [&] {
      Prepara(gravacao.antes, gravacao.sobra);
      m_falhas.Arma(Falha(kOpGrava | apoio::kOpAjustaTamanho, 1117));
      EXPECT_EQ(gravacao.grava(), codigos::kArqErroFisico);
      EXPECT_EQ(gravacao.grava(), codigos::kArqErroFisico) << "not yet";
      ConfereCabecalho(*gravacao.antes + gravacao.sobra, gravacao.depois);
    };
    estraga();
    EXPECT_EQ(Fecha(), codigos::kArqErroFisico);
    ConfereCabecalho(*gravacao.antes + gravacao.sobra, gravacao.depois);
    m_falhas.Desarma();
    estraga();
    m_falhas.Desarma();
    EXPECT_EQ(Fecha(), codigos::kOk);
    EXPECT_EQ(Disco(), antes);
    estraga();
    m_falhas.Desarma();
    EXPECT_EQ(gravacao.grava(), codigos::kOk);
    EXPECT_EQ(Disco(), Inteira(gravacao.depois));
    if (&gravacao == &gravacoes.front()) {
      estraga();
      EXPECT_EQ(m_especie.Muda(1), codigos::kArqErroFisico) << "nothing to write, but to put right";
      m_falhas.Desarma();
      EXPECT_EQ(m_especie.Muda(1), codigos::kOk);
      EXPECT_EQ(Disco(), antes);
    }
  }
}

TEST_P(Conformidade, TentaDeNovoOQueNaoEFatal) {
  Prepara(m_especie.Conteudo(1, 2));
  for (const auto &[erro, tentativas] :
       {std::pair(32U, 50U), {112U, 50U}, {5U, 50U}, {25U, 1U}, {38U, 1U}, {1117U, 1U}, {2U, 1U}, {3U, 1U}}) {
    SCOPED_TRACE(erro);
    const std::size_t antes = m_relogio.Esperas().size();
    PlanoFalha plano = Falha(kOpGrava, erro);
    plano.gravaAntes = std::nullopt;
    m_falhas.Arma(plano);
    EXPECT_EQ(m_especie.Muda(3), CodigoDaFalha(FalhaWin32(erro)));
    EXPECT_EQ(m_relogio.Esperas().size() - antes, tentativas == 1 ? 0 : tentativas);
    m_falhas.Desarma();
  }
  ConfereTudo(m_especie.Conteudo(1, 2));
}

/// A handle that lives excludes others, so a failure must not let go of it.
TEST_P(Conformidade, FalhaNaoLargaOArquivo) {
  Prepara(m_especie.Conteudo(1, 2));
  ASSERT_EQ(m_especie.Muda(4), codigos::kOk);
  m_falhas.Arma(Falha(kOpGrava, 1117, false));
  PlanoFalha olha = AntesDeAbrir(Nome(), [this] { EXPECT_EQ(m_falhas.Abertos(), 1); });
  olha.bPersistente = true;
  m_falhas.ArmaTambem(olha);
  EXPECT_EQ(m_especie.Muda(3), codigos::kArqErroFisico);
  EXPECT_EQ(m_falhas.Disparos(), 2U) << "the failure, and the question whether the handle is dead";
  m_falhas.Desarma();
  ConfereTudo(m_especie.Conteudo(4, 2));
}

/// Memory is obtained before the disk is touched: whichever allocation fails, nothing has happened.
TEST_P(Conformidade, MemoriaQueFalta) {
  if (!kAlocacaoPodeFalhar) {
    GTEST_SKIP() << "allocations cannot be made to fail here";
  }
  for (const Gravacao &gravacao : m_especie.Gravacoes()) {
    SCOPED_TRACE(gravacao.nome);
    for (std::size_t enesima = 1, faltou = 1; faltou != 0; ++enesima) {
      Prepara(gravacao.antes, gravacao.sobra);
      HRESULT hr = codigos::kArqOutra;
      t_alocacoesAteFalhar = enesima;
      try {
        hr = gravacao.grava();
      } catch (const std::bad_alloc &) {
        faltou = enesima;
      }
      faltou = t_alocacoesAteFalhar == 0 ? enesima : 0;
      t_alocacoesAteFalhar = 0;
      SCOPED_TRACE(enesima);
      if (gravacao.antes) {
        ASSERT_EQ(Disco(), Falhou(hr) ? Inteira(gravacao.antes, gravacao.sobra) : Inteira(gravacao.depois));
      }
      ASSERT_EQ(Lido(), Falhou(hr) ? gravacao.antes.value_or("") : gravacao.depois);
      ASSERT_EQ(Fecha(), codigos::kOk);
      ASSERT_EQ(Abre(), codigos::kOk) << "nothing is left that would be refused";
      ASSERT_EQ(Falhou(hr) ? gravacao.grava() : codigos::kOk, codigos::kOk);
      ASSERT_EQ(Disco(), Inteira(gravacao.depois));
    }
  }
}

// Handles that die.

/// The share goes away in the middle of a write, for a moment or for longer, and others may have written by the time it
/// is back. Our half write is undone, their work never.
TEST_P(Conformidade, ArquivoMorreNaGravacao) {
  const std::string antes = m_especie.Conteudo(1, 2);
  const struct {
    Dados alheio;  ///< what others have made of the file meanwhile
    std::string depois;
    HRESULT hr = codigos::kOk;
  } casos[] = {{std::nullopt, antes},
               {m_especie.Conteudo(5, 6), m_especie.Conteudo(5, 6)},
               {m_especie.Acrescentado(antes, 7), m_especie.Acrescentado(antes, 7)},
               {antes + "x", antes + "x", m_especie.Torto()}};
  for (const auto &caso : casos) {
    for (const auto &[erro, fora, nova] :
         {std::tuple(64U, 0U, true), {1117U, 0U, false}, {64U, 1000U, true}, {1117U, 1000U, false}}) {
      for (const std::size_t gravaAntes : {std::size_t{0}, std::size_t{7}, std::size_t{1000}}) {
        for (std::size_t enesima = 1; enesima <= (apoio::CabecalhosLigados() ? 2U : 1U); ++enesima) {
          SCOPED_TRACE(testing::Message() << caso.depois << ", error " << erro << ", away for " << fora << ", "
                                          << gravaAntes << " written, write " << enesima);
          Prepara(antes);
          if (nova) {
            ASSERT_EQ(m_especie.Muda(8), codigos::kOk);
            ASSERT_EQ(m_especie.Muda(1), codigos::kOk);
          }
          m_falhas.Arma({.operacoes = kOpGrava,
                         .trecho = Nome(),
                         .enesima = enesima,
                         .falha = FalhaWin32(erro),
                         .gravaAntes = gravaAntes,
                         .aoFalhar = [&] { caso.alheio ? Poe(Nome(), caso.alheio) : void(); },
                         .morte = fora});
          const HRESULT hr = m_especie.Muda(3);
          ASSERT_TRUE(m_falhas.Disparou());
          const auto com = [&](unsigned n) {
            const std::string inicio = m_especie.Conteudo(n, 0);
            return inicio + caso.depois.substr(inicio.size());
          };
          if (fora == 0) {
            EXPECT_EQ(Falhou(hr), Falhou(caso.hr));
            EXPECT_EQ(Disco(), Inteira(Falhou(hr) ? caso.depois : com(3)));
          } else {
            EXPECT_TRUE(Falhou(hr));
            // It is back. Undoing may fail once more.
            if (gravaAntes != 0) {
              m_falhas.Arma(Falha(kOpGrava, 1117, false));
              static_cast<void>(m_especie.Muda(1));
            }
            m_falhas.Desarma();
            EXPECT_EQ(Falhou(m_especie.Muda(1)), Falhou(caso.hr));
            EXPECT_EQ(Disco(), Inteira(Falhou(caso.hr) ? caso.depois : com(1)));
          }
          m_falhas.Desarma();
          if (!Falhou(caso.hr)) {
            EXPECT_EQ(Inteira(Lido(), caso.depois.ends_with("x") ? "x" : ""), Disco());
          }
        }
      }
    }
  }
}

/// A file that has grown for a write but has not got its bytes yet is our own half write too.
TEST_P(Conformidade, ArquivoMorreComZerosNoFim) {
  const std::string antes = m_especie.Conteudo(1, 2);
  if (m_especie.Acrescentado(antes, 9).size() == antes.size()) {
    return;
  }
  Prepara(antes);
  const std::string inteiro = *Disco() + std::string(3, '\0');
  m_falhas.Arma({.operacoes = kOpGrava,
                 .trecho = Nome(),
                 .falha = FalhaWin32(64),
                 .aoFalhar = [&] { m_empresa.Escreve(Nome(), inteiro); },
                 .morte = 1000});
  EXPECT_TRUE(Falhou(m_especie.Acrescenta(9)));
  m_falhas.Desarma();
  // The next write has to find its place in the file that it gets back.
  EXPECT_EQ(m_especie.Acrescenta(9), codigos::kOk);
  ConfereTudo(m_especie.Acrescentado(antes, 9));
}

// Other programs in between.

/// While the file is closed to be opened for writing. Only the time of the last write tells a change of the same
/// length, and only the length one within a tick of the clock.
TEST_P(Conformidade, OutroProgramaNaTrocaDeModo) {
  const std::string antes = m_especie.Conteudo(1, 2);
  const struct {
    const char *nome;
    Dados alheio;
    HRESULT hr;
    Dados depois;
  } casos[] = {
      {"same length", m_especie.Conteudo(5, 6), codigos::kOk, m_especie.Conteudo(3, 6)},
      {"longer", m_especie.Acrescentado(antes, 7), codigos::kOk,
       m_especie.Conteudo(3, 0) + m_especie.Acrescentado(antes, 7).substr(m_especie.Conteudo(3, 0).size())},
      {"torn", antes + "x", m_especie.Torto(), std::nullopt},
      {"gone", std::nullopt, codigos::kArqNaoEncontrado, std::nullopt},
  };
  for (const auto &caso : casos) {
    for (const std::uint32_t erro : {0U, 3U, 32U}) {
      SCOPED_TRACE(testing::Message() << caso.nome << ", error " << erro);
      std::uint64_t ticks = 1;
      m_falhas.FixaUltimaEscrita(ticks);
      Prepara(antes);
      PlanoFalha plano = AntesDeAbrir(Nome(), [&] {
        Poe(Nome(), caso.alheio);
        m_falhas.FixaUltimaEscrita(ticks += caso.alheio && caso.alheio->size() != antes.size() ? 0U : 1U);
      });
      plano.falha = erro != 0 ? FalhaWin32(erro) : plano.falha;
      m_falhas.Arma(plano);
      const HRESULT hr = m_especie.Muda(3);
      EXPECT_EQ(hr, erro == 3 ? codigos::kArqCaminhoInvalido : caso.hr);
      m_falhas.Desarma();
      const Dados depois = Falhou(hr) ? caso.alheio : caso.depois ? caso.depois : m_especie.Conteudo(3, 2) + "x";
      EXPECT_EQ(Disco(), Inteira(depois)) << "nothing of theirs is lost, nothing created";
      EXPECT_EQ(Leitura(), Falhou(caso.hr) ? caso.hr : codigos::kOk);
      if (Falhou(caso.hr)) {
        for (const Operacao &operacao : m_especie.Operacoes()) {
          EXPECT_EQ(operacao.executa(), caso.hr) << operacao.nome;
        }
        EXPECT_EQ(Disco(), Inteira(depois));
        Poe(Nome(), m_especie.Conteudo(8, 6));
        m_falhas.FixaUltimaEscrita(++ticks);
        EXPECT_EQ(Lido(), m_especie.Conteudo(8, 6)) << "back again";
        ConfereTudo(m_especie.Conteudo(8, 6));
      } else {
        EXPECT_EQ(Inteira(Lido(), depois->ends_with("x") ? "x" : ""), Inteira(depois));
      }
    }
  }
}

/// What cannot be looked at is not taken for unchanged.
TEST_P(Conformidade, ArquivoQueNaoSeDeixaOlhar) {
  Prepara(m_especie.Conteudo(1, 2));
  m_falhas.Arma(Alheio(m_especie.Conteudo(5, 6)));
  m_falhas.ArmaTambem(Falha(apoio::kOpTamanho, 1117));
  EXPECT_EQ(m_especie.Muda(3), codigos::kArqErroFisico);
  EXPECT_EQ(Leitura(), codigos::kArqErroFisico);
  m_falhas.Desarma();
  ConfereTudo(m_especie.Conteudo(5, 6));
}

/// While a missing file is created: before it is tried, and between that and its creation.
TEST_P(Conformidade, OutroProgramaNaCriacao) {
  for (const std::size_t enesima : {1U, 2U}) {
    SCOPED_TRACE(enesima);
    Prepara(std::nullopt);
    m_falhas.Arma(Alheio(m_especie.Conteudo(5, 6), enesima));
    EXPECT_EQ(m_especie.Acrescenta(9), codigos::kOk);
    EXPECT_TRUE(m_falhas.Disparou());
    m_falhas.Desarma();
    ConfereTudo(m_especie.Acrescentado(m_especie.Conteudo(5, 6), 9));
  }
  // A file that was there at some time is none that this object has created.
  Prepara(std::nullopt);
  m_falhas.Arma(Alheio(m_especie.Conteudo(5, 6), 2));
  m_falhas.ArmaTambem(Falha(kOpGrava, 1117));
  EXPECT_TRUE(Falhou(m_especie.Acrescenta(9)));
  m_falhas.Desarma();
  ConfereTudo(m_especie.Conteudo(5, 6));
}

/// Another program has changed the file, and loading it fails half way: by a failure or by an exception. Every
/// operation answers that, and the next one recovers by itself.
TEST_P(Conformidade, RecargaQueFalha) {
  std::vector<Operacao> operacoes = m_especie.Operacoes();
  operacoes.push_back({"CopiaArquivoPara", [&] { return m_especie.File().CopiaArquivoPara(m_outra.Codigo(), QZ_DF); }});
  m_falhas.FixaUltimaEscrita(1);
  for (const Operacao &operacao : operacoes) {
    for (const bool bExcecao : {false, true}) {
      bool bDisparou = true;
      for (std::size_t enesima = 1; bDisparou; ++enesima) {
        SCOPED_TRACE(testing::Message() << operacao.nome << (bExcecao ? ", exception " : ", failure ") << enesima);
        std::uint64_t ticks = 1;
        m_falhas.FixaUltimaEscrita(ticks);
        Prepara(m_especie.Conteudo(1, 2));
        m_outra.Escreve(Nome(), "old");
        m_falhas.Arma({.operacoes = apoio::kOpLe,
                       .trecho = Nome(),
                       .enesima = enesima,
                       .bPersistente = true,
                       .falha = FalhaWin32(1117),
                       .aoFalhar = [&] { bExcecao ? throw std::bad_alloc() : void(); }});
        m_falhas.ArmaTambem(AntesDeAbrir(Nome(), [&] {
          Poe(Nome(), m_especie.Conteudo(5, 6));
          m_falhas.FixaUltimaEscrita(++ticks);
        }));
        const auto executa = [&](const std::function<HRESULT()> &funcao) {
          try {
            return funcao();
          } catch (const std::bad_alloc &) {
            return codigos::kArqErroFisico;
          }
        };
        const HRESULT hr = executa([&] { return m_especie.File().AbreArquivo(); });
        bDisparou = Falhou(hr);
        if (bDisparou) {
          EXPECT_EQ(hr, codigos::kArqErroFisico);
          m_falhas.Arma({.operacoes = apoio::kOpLe, .trecho = Nome(), .bPersistente = true});
          EXPECT_EQ(operacao.executa(), codigos::kArqErroFisico);
          m_falhas.Desarma();
          EXPECT_EQ(m_outra.LeInteiro(Nome()), "old");
          EXPECT_EQ(Disco(), Inteira(m_especie.Conteudo(5, 6)));
          EXPECT_EQ(operacao.executa(), operacao.hr);
        }
        m_falhas.Desarma();
        const std::string lido = Lido();
        EXPECT_EQ(Disco(), Inteira(lido));
      }
    }
  }
}

}  // namespace
