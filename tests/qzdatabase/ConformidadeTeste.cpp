// What holds for every kind of file: how it is opened, what a failure leaves behind, and other programs in between.

#include <array>
#include <cstdlib>
#include <new>
#include <utility>

#include "tests/qzdatabase/Especies.h"

#if !defined(__has_feature)
#define __has_feature(nome) 0
#endif

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

class Conformidade : public ComEmpresa, public testing::WithParamInterface<std::string> {
protected:
  HRESULT Abre() { return m_banco.Inicializa(m_empresa.Dono()); }
  HRESULT Fecha() { return m_banco.Finaliza(); }
  CString Nome() const { return m_pEspecie->File().GetNomeArquivo(); }
  /// Opens the file with this content, or with none there, and nothing in the list of created files; indexes included.
  void Prepara(const Dados &dados) {
    static_cast<void>(Fecha());
    Poe(kArquivoControle, std::nullopt);
    Poe(Nome(), dados);
    ASSERT_EQ(Abre(), codigos::kOk);
    ASSERT_EQ(Leitura(), codigos::kOk);
  }
  /// All bytes of the file at this moment, and those of a whole file.
  Dados Disco() { return Inteiro(Nome()); }
  Dados Inteira(const Dados &dados) const { return dados ? Dados(NoDisco(Nome(), *dados)) : dados; }
  /// A content with another first number.
  std::string Mudado(const std::string &dados, std::uint32_t n) const {
    return m_especie.Conteudo(n, 0) + dados.substr(m_especie.Conteudo(n, 0).size());
  }
  std::string Lido() {
    std::string dados;
    EXPECT_EQ(m_especie.Le(&dados), codigos::kOk);
    return dados;
  }
  HRESULT Leitura() {
    std::string sDescartado;
    return m_especie.Le(&sDescartado);
  }
  /// Has another program put its file there at the N-th opening from now.
  PlanoFalha Alheio(const Dados &dados, std::size_t enesima = 1) {
    return AntesDeAbrir(
        Nome(), [this, dados] { Poe(Nome(), dados); }, enesima);
  }
  /// A write of the file fails, and its handle dies with it; the file is away for so many openings.
  PlanoFalha Morte(std::uint32_t erro, std::size_t fora, std::size_t gravaAntes, std::function<void()> aoMorrer) {
    PlanoFalha plano = Plano(kOpGrava, Nome(), erro, false, gravaAntes);
    plano.aoFalhar = std::move(aoMorrer);
    plano.morte = fora;
    return plano;
  }
  /// A header holds over nothing but what was there before or what there was to be.
  void ConfereCabecalho(const Gravacao &gravacao) {
    const std::string disco = Disco().value_or("");
    if (apoio::CabecalhosLigados() && disco.size() > kTamanhoCabecalho) {
      const std::string dados = disco.substr(kTamanhoCabecalho);
      ASSERT_TRUE(disco != NoDisco(Nome(), dados) || dados == gravacao.antes || dados == gravacao.depois);
    }
  }
  /// Memory and disk are one, and the disk is that.
  void ConfereTudo(const std::string &dados) {
    EXPECT_EQ(Lido(), dados);
    EXPECT_EQ(Fecha(), codigos::kOk);
    EXPECT_EQ(Disco(), Inteira(dados));
  }

  CQZDataBase m_banco{QZ_DF, plataforma::NivelTrava::ArquivoDados};
  std::unique_ptr<Especie> m_pEspecie = CriaEspecie(GetParam(), &m_banco);
  Especie &m_especie = *m_pEspecie;
  const std::string m_sAntes = m_especie.Conteudo(1, 2);
  const std::string m_sAlheio = m_especie.Conteudo(5, 6);
  apoio::EmpresaComBase m_outra;
};

INSTANTIATE_TEST_SUITE_P(Arquivo, Conformidade, kEspecies, [](const auto &parametro) { return parametro.param; });

// Opening.

TEST_P(Conformidade, CodigoETentativasDaAbertura) {
  const std::tuple<plataforma::FalhaArquivo, HRESULT, std::size_t, std::size_t> casos[] = {
      {FalhaWin32(3), codigos::kArqCaminhoInvalido, 1, 0},
      {{plataforma::CausaArquivo::DiretorioCheio, 0}, codigos::kArqDiretorioCheio, 1, 0},
      {FalhaWin32(32), codigos::kArqCompartilhamento, 100, 99},
      {FalhaWin32(33), codigos::kArqBloqueio, 100, 99},
      {FalhaWin32(4), codigos::kArqMuitosAbertos, 100, 99},
      {FalhaWin32(5), codigos::kArqAcessoNegado, 100, 99},
      {FalhaWin32(112), codigos::kArqDiscoCheio, 100, 99},
      {FalhaWin32(1117), codigos::kArqOutra, 100, 100}};
  Poe(Nome(), m_sAntes);
  for (const auto &[falha, hr, tentativas, esperas] : casos) {
    const std::size_t antes = m_relogio.Esperas().size();
    m_falhas.Arma({.operacoes = kOpAbre, .trecho = Nome(), .bPersistente = true, .falha = falha});
    EXPECT_EQ(Abre(), hr) << falha.erroSO;
    EXPECT_EQ(m_falhas.Vistas(), tentativas) << falha.erroSO;
    EXPECT_EQ(m_relogio.Esperas().size() - antes, esperas) << falha.erroSO;
  }
  Falha(kOpAbre, Nome(), 32, false);
  EXPECT_EQ(Abre(), codigos::kOk) << "one busy moment is ridden out";
  EXPECT_EQ(m_relogio.Esperas().back(), 10U);
  ConfereTudo(m_sAntes);
}

/// Who else may open the file meanwhile. The mode in force is not opened again, and a file that nobody has changed is
/// not loaded again.
TEST_P(Conformidade, Modos) {
  Prepara(m_sAntes);
  for (const auto &[eModo, erro] :
       {std::pair(eModoLeitura, 32U), {eModoLeituraGravacao, 32U}, {eModoLeituraCompartilhada, 0U}}) {
    Falha(apoio::kOpLe, Nome(), 1117);
    ASSERT_EQ(m_especie.File().AbreArquivo(eModo), codigos::kOk);
    std::unique_ptr<plataforma::IArquivoAberto> terceiro;
    const plataforma::ModoAbertura modo{plataforma::Acesso::Leitura, plataforma::Compartilhamento::NegaNada};
    EXPECT_EQ(plataforma::ServicosDoSistema().arquivos->Abre(m_empresa.Caminho(Nome()), modo, &terceiro).erroSO, erro);
    Falha(apoio::kOpTodas, Nome(), 1117);
    EXPECT_EQ(m_especie.File().AbreArquivo(eModo), codigos::kOk);
    EXPECT_EQ(Lido(), m_sAntes);
    EXPECT_EQ(m_falhas.Vistas(), 0U);
    m_falhas.Desarma();
  }
}

TEST_P(Conformidade, LerNaoCriaEIgualNaoGrava) {
  Prepara(std::nullopt);
  EXPECT_EQ(m_especie.File().AbreArquivo(eModoLeitura), codigos::kOk);
  EXPECT_EQ(Lido(), "");
  EXPECT_EQ(Disco(), std::nullopt);
  Prepara(m_sAntes);
  Falha(apoio::kOpTodas, Nome(), 1117);
  EXPECT_EQ(m_especie.Muda(1), codigos::kOk);
  EXPECT_EQ(m_falhas.Vistas(), 0U);
}

TEST_P(Conformidade, SomenteLeituraTemCodigoProprio) {
  Prepara(m_sAntes);
  apoio::MarcaSomenteLeitura(m_empresa.Caminho(Nome()), true);
  if (!apoio::SomenteLeituraSemEfeito()) {
    EXPECT_EQ(m_especie.Muda(3), codigos::kArqSomenteLeitura);
  }
  apoio::MarcaSomenteLeitura(m_empresa.Caminho(Nome()), false);
  EXPECT_EQ(m_especie.Muda(3), codigos::kOk);
}

/// A file that cannot be opened for writing is put back into its old mode with one attempt. Where that fails too each
/// operation asks once and answers the file's code.
TEST_P(Conformidade, AberturaQueFalhaVoltaAoModoAnterior) {
  for (const auto &[erro, hr, tentativas] :
       {std::tuple(3U, codigos::kArqCaminhoInvalido, 1U), {32U, codigos::kArqCompartilhamento, 100U}}) {
    Prepara(m_sAntes);
    Falha(kOpAbre, Nome(), 3, false);
    EXPECT_EQ(m_especie.Muda(3), codigos::kArqCaminhoInvalido);
    EXPECT_EQ(Lido(), m_sAntes);
    EXPECT_EQ(m_falhas.Vistas(), 2U) << "it is open";
    Falha(kOpAbre, Nome(), erro);
    EXPECT_EQ(m_especie.Muda(3), hr);
    EXPECT_EQ(Leitura(), hr);
    EXPECT_EQ(m_falhas.Vistas(), tentativas + 2);
    // It is no file that this object has created, whatever the next write comes to.
    Falha(kOpGrava, Nome(), 1117);
    EXPECT_TRUE(Falhou(m_especie.Muda(3)));
    m_falhas.Desarma();
    ConfereTudo(m_sAntes);
  }
}

// Failures while writing.

/// Each write with its N-th operation on any file failing; that one and all after it; and two operations. What the disk
/// holds is looked at before anything has repaired it.
TEST_P(Conformidade, FalhaEmCadaOperacaoDaGravacao) {
  const bool bUmRegistro = m_especie.Torto() == codigos::kTamanhoDiferente;
  for (const Gravacao &gravacao : m_especie.Gravacoes()) {
    // A header is torn within its check.
    for (const auto &[erro, gravaAntes] : {std::pair(112U, 7U), {1117U, 58U}}) {
      SCOPED_TRACE(testing::Message() << gravacao.nome << ", error " << erro);
      for (apoio::SerieFalhas serie(m_falhas, Plano(apoio::kOpTodas, "", erro, false, gravaAntes), Duracao::Todas);
           serie.Proxima();) {
        Prepara(gravacao.antes);
        const HRESULT hr = serie.Roda(gravacao.grava);
        const Dados agora = Inteira(Falhou(hr) ? gravacao.antes : gravacao.depois);
        if (!Falhou(hr) || (serie.Passageira() && (gravacao.antes || bUmRegistro))) {
          ASSERT_EQ(Disco(), agora) << "at once";
        }
        ConfereCabecalho(gravacao);
        ASSERT_EQ(Lido(), Falhou(hr) ? m_especie.Carregado(gravacao.antes) : gravacao.depois);
        ASSERT_EQ(Fecha(), codigos::kOk);
        if (!Falhou(hr) || gravacao.antes || bUmRegistro) {
          ASSERT_EQ(Disco(), agora) << "a single-record file without its record would be refused";
        } else {
          ASSERT_LE(Disco().value_or("").size(), kTamanhoCabecalho);
        }
        if (!serie.Persistente()) {
          ASSERT_EQ(Abre(), codigos::kOk) << "nothing is listed that is not there";
          ASSERT_EQ(Falhou(hr) ? gravacao.grava() : hr, codigos::kOk);
          ASSERT_EQ(Disco(), Inteira(gravacao.depois));
        }
      }
    }
  }
}

/// What cannot be undone at once is told by everything that tries again, the end of the file included, and put right by
/// whatever comes first.
TEST_P(Conformidade, GravacaoQueNaoSeDesfaz) {
  std::vector<Gravacao> gravacoes = m_especie.Gravacoes();
  gravacoes.front() = {"first", m_sAntes, [this] { return m_especie.Muda(3); }, m_especie.Conteudo(3, 2)};
  for (const Gravacao &gravacao : gravacoes) {
    std::vector<std::pair<std::function<HRESULT()>, Dados>> reparos{
        {[this] { return Fecha(); }, gravacao.antes},
        {[this] { return m_especie.File().AbreArquivo(eModoLeitura); }, gravacao.antes},
        {[this] { return m_especie.File().CopiaArquivoPara(m_outra.Codigo(), QZ_DF); }, gravacao.antes},
        {gravacao.grava, gravacao.depois}};
    if (&gravacao == &gravacoes.front()) {
      reparos.emplace_back([this] { return m_especie.Muda(1); }, gravacao.antes);  // nothing to write
    }
    for (std::size_t i = 0; i < 2 * reparos.size(); ++i) {
      const auto &[repara, depois] = reparos[i / 2];
      SCOPED_TRACE(testing::Message() << gravacao.nome << ", " << i);
      Prepara(gravacao.antes);
      Falha(kOpGrava | apoio::kOpAjustaTamanho, Nome(), 1117);
      EXPECT_EQ(gravacao.grava(), codigos::kArqErroFisico);
      if (i % 2 != 0) {
        EXPECT_EQ(repara(), codigos::kArqErroFisico) << "not yet";
        ConfereCabecalho(gravacao);
      }
      m_falhas.Desarma();
      if (m_banco.EstaInicializado()) {
        EXPECT_EQ(repara(), codigos::kOk);
        EXPECT_EQ(Disco(), Inteira(depois));
      } else if (apoio::CabecalhosLigados()) {
        EXPECT_EQ(Abre(), codigos::kOk) << "what was to be undone is noted";
        EXPECT_EQ(Disco(), Inteira(gravacao.antes));
      }
    }
  }
}

TEST_P(Conformidade, TentaDeNovoOQueNaoEFatal) {
  Prepara(m_sAntes);
  for (const auto &[erro, esperas] :
       {std::pair(32U, 50U), {112U, 50U}, {5U, 50U}, {25U, 0U}, {38U, 0U}, {1117U, 0U}, {2U, 0U}, {3U, 0U}}) {
    const std::size_t antes = m_relogio.Esperas().size();
    m_falhas.Arma(Plano(kOpGrava, Nome(), erro, true, 0));
    EXPECT_EQ(m_especie.Muda(3), CodigoDaFalha(FalhaWin32(erro))) << erro;
    EXPECT_EQ(m_relogio.Esperas().size() - antes, esperas) << erro;
    m_falhas.Desarma();
  }
  ConfereTudo(m_sAntes);
}

/// Memory is obtained before the disk is touched: whichever allocation fails, nothing has happened.
TEST_P(Conformidade, MemoriaQueFalta) {
  for (const Gravacao &gravacao : m_especie.Gravacoes()) {
    for (std::size_t enesima = 1, resta = 0; resta == 0; enesima += apoio::kPasso) {
      SCOPED_TRACE(testing::Message() << gravacao.nome << ", allocation " << enesima);
      Prepara(gravacao.antes);
      HRESULT hr = codigos::kArqOutra;
      t_alocacoesAteFalhar = enesima;
      try {
        hr = gravacao.grava();
      } catch (const std::bad_alloc &) {
        t_alocacoesAteFalhar = 0;
      }
      resta = std::exchange(t_alocacoesAteFalhar, 0);
      if (gravacao.antes) {
        ASSERT_EQ(Disco(), Inteira(Falhou(hr) ? gravacao.antes : gravacao.depois));
      }
      ASSERT_EQ(Lido(), Falhou(hr) ? m_especie.Carregado(gravacao.antes) : gravacao.depois);
      ASSERT_EQ(Fecha(), codigos::kOk);
      ASSERT_EQ(Abre(), codigos::kOk) << "nothing is left that would be refused";
      ASSERT_EQ(Falhou(hr) ? gravacao.grava() : hr, codigos::kOk);
      ASSERT_EQ(Disco(), Inteira(gravacao.depois));
    }
  }
}

/// Undoing a creation leaves alone what others have written to the file by then.
TEST_P(Conformidade, CriacaoDesfeitaPoupaOQueEDeOutros) {
  Prepara(std::nullopt);
  Falha(kOpGrava, Nome(), 1117);
  m_falhas.ArmaTambem(
      {.operacoes = apoio::kOpTamanho, .trecho = Nome(), .bPersistente = true, .falha = {}, .aoFalhar = [this] {
         if (m_falhas.Abertos() == 0) {
           Poe(Nome(), m_sAlheio);
         }
       }});
  EXPECT_TRUE(Falhou(m_especie.Acrescenta(9)));
  m_falhas.Desarma();
  static_cast<void>(Fecha());
  EXPECT_TRUE(Disco().value_or("").size() <= kTamanhoCabecalho || Disco() == Inteira(m_sAlheio));
  EXPECT_EQ(Disco().has_value(), true);
}

// Handles that die.

/// The share goes away in the middle of a write, for a moment or for longer, and others may have written by the time it
/// is back. Our half write is undone, their work never.
TEST_P(Conformidade, ArquivoMorreNaGravacao) {
  const std::tuple<Dados, HRESULT> casos[] = {{std::nullopt, codigos::kOk},
                                              {m_sAlheio, codigos::kOk},
                                              {m_especie.Acrescentado(m_sAntes, 7), codigos::kOk},
                                              {m_sAntes + "x", m_especie.Torto()}};
  for (const auto &caso : casos) {
    const Dados &alheio = std::get<0>(caso);
    const HRESULT hrCarga = std::get<1>(caso);
    for (const auto &[erro, fora] : {std::pair(64U, 0U), {1117U, 0U}, {64U, 1000U}, {1117U, 1000U}}) {
      for (std::size_t i = 0; i < (apoio::CabecalhosLigados() ? 6 : 3); ++i) {
        const std::size_t gravaAntes = std::array<std::size_t, 3>{0, 7, 1000}[i % 3];
        const std::string depois = alheio.value_or(m_sAntes);
        SCOPED_TRACE(testing::Message() << depois << ", error " << erro << ", away for " << fora << ", " << i);
        Prepara(m_sAntes);
        if (erro == 64) {
          // Open for writing already.
          ASSERT_EQ(m_especie.Muda(8), codigos::kOk);
          ASSERT_EQ(m_especie.Muda(1), codigos::kOk);
        }
        PlanoFalha plano = Morte(erro, fora, gravaAntes, [&] { alheio ? Poe(Nome(), alheio) : void(); });
        plano.enesima = 1 + i / 3;
        m_falhas.Arma(plano);
        const HRESULT hr = m_especie.Muda(3);
        ASSERT_TRUE(m_falhas.Disparou());
        EXPECT_EQ(Falhou(hr), fora != 0 || Falhou(hrCarga));
        m_falhas.Desarma();
        if (fora != 0 && gravaAntes != 0) {
          // It is back. Undoing may fail once more.
          Falha(kOpGrava, Nome(), 1117, false);
          static_cast<void>(m_especie.Muda(1));
          m_falhas.Desarma();
        }
        EXPECT_TRUE(fora == 0 || Falhou(m_especie.Muda(1)) == Falhou(hrCarga));
        const std::string agora = Falhou(hrCarga) ? depois : Mudado(depois, fora == 0 ? 3 : 1);
        EXPECT_EQ(Disco(), Inteira(agora));
        if (!Falhou(hrCarga)) {
          EXPECT_EQ(Lido(), m_especie.Carregado(agora));
        }
      }
    }
  }
}

/// A header that is torn, and whose repair fails, is written again although it is to hold what it held.
TEST_P(Conformidade, CabecalhoRasgadoDuasVezes) {
  Prepara(m_sAntes);
  PlanoFalha plano = Plano(kOpGrava, Nome(), 1117, false, 58);
  plano.enesima = apoio::CabecalhosLigados() ? 2 : 1;
  m_falhas.Arma(plano);
  plano.gravaAntes = 0;
  plano.enesima = 3;  // of those that the first plan lets pass
  m_falhas.ArmaTambem(plano);
  EXPECT_TRUE(Falhou(m_especie.Muda(3)));
  m_falhas.Desarma();
  EXPECT_EQ(m_especie.Muda(1), codigos::kOk);
  EXPECT_EQ(Disco(), Inteira(m_sAntes));
}

/// The place of a write is found anew in the file that comes back. Others may have added to it; or it has grown for our
/// write without getting its bytes, which is our own half write too.
TEST_P(Conformidade, ArquivoMorreNoAcrescimo) {
  const std::string maior = m_especie.Acrescentado(m_sAntes, 7);
  Prepara(m_sAntes);
  m_falhas.Arma(Morte(64, 0, 0, [&] { Poe(Nome(), maior); }));
  EXPECT_EQ(m_especie.Acrescenta(9), codigos::kOk);
  ConfereTudo(m_especie.Acrescentado(maior, 9));

  Prepara(m_sAntes);
  const std::string comZeros = *Disco() + std::string(maior.size() > m_sAntes.size() ? 3 : 0, '\0');
  m_falhas.Arma(Morte(64, 1000, 0, [&] { m_empresa.Escreve(Nome(), comZeros); }));
  EXPECT_TRUE(Falhou(m_especie.Acrescenta(9)));
  m_falhas.Desarma();
  EXPECT_EQ(m_especie.Acrescenta(9), codigos::kOk);
  ConfereTudo(m_especie.Acrescentado(m_sAntes, 9));
}

// Other programs in between.

/// While the file is closed to be opened for writing, which may fail. Only the time of the last write tells a change of
/// the same length, and only the length one within a tick of the clock.
TEST_P(Conformidade, OutroProgramaNaTrocaDeModo) {
  const std::tuple<Dados, HRESULT> casos[] = {{m_sAlheio, codigos::kOk},
                                              {m_especie.Acrescentado(m_sAntes, 7), codigos::kOk},
                                              {m_sAntes + "x", m_especie.Torto()},
                                              {std::nullopt, codigos::kArqNaoEncontrado}};
  std::vector<Operacao> operacoes = m_especie.Operacoes();
  operacoes.emplace_back("AbreArquivo", [this] { return m_especie.File().AbreArquivo(eModoLeitura); });
  operacoes.emplace_back("Copia", [this] { return m_especie.File().CopiaArquivoPara(m_outra.Codigo(), QZ_DF); });
  for (const auto &[alheio, hrCarga] : casos) {
    for (const std::uint32_t erro : {0U, 3U, 32U}) {
      SCOPED_TRACE(testing::Message() << alheio.value_or("gone") << ", error " << erro);
      std::uint64_t ticks = 1;
      m_falhas.FixaUltimaEscrita(ticks);
      Prepara(m_sAntes);
      PlanoFalha plano = AntesDeAbrir(Nome(), [&, dados = alheio] {
        Poe(Nome(), dados);
        m_falhas.FixaUltimaEscrita(ticks += dados && dados->size() != m_sAntes.size() ? 0U : 1U);
      });
      plano.falha = FalhaWin32(erro);
      m_falhas.Arma(plano);
      const HRESULT hr = m_especie.Muda(3);
      EXPECT_EQ(hr, erro == 3 ? codigos::kArqCaminhoInvalido : hrCarga);
      m_falhas.Desarma();
      if (Falhou(hrCarga)) {
        for (const auto &[lpNome, executa] : operacoes) {
          EXPECT_EQ(executa(), hrCarga) << lpNome;
        }
        EXPECT_FALSE(m_especie.File().ExisteArquivo());
        EXPECT_EQ(Disco(), Inteira(alheio)) << "nothing created, nothing changed";
        m_falhas.FixaUltimaEscrita(++ticks);
        Poe(Nome(), m_sAlheio);
        ConfereTudo(m_sAlheio);
      } else {
        const std::string depois = Falhou(hr) ? *alheio : Mudado(*alheio, 3);
        EXPECT_EQ(Disco(), Inteira(depois));
        EXPECT_EQ(Lido(), m_especie.Carregado(depois));
      }
    }
  }
}

/// Another program has added to the file, and loading it fails half way, by a failure or by an exception. Nothing is
/// answered from what is half loaded, and a write finds its place in what is there.
TEST_P(Conformidade, RecargaQueFalha) {
  const std::string maior = m_especie.Acrescentado(m_sAlheio, 7);
  const auto abre = [&] {
    try {
      return m_especie.File().AbreArquivo();
    } catch (const std::bad_alloc &) {
      return codigos::kArqErroFisico;
    }
  };
  for (const bool bExcecao : {false, true}) {
    HRESULT hr = codigos::kArqOutra;
    for (std::size_t enesima = 1; Falhou(hr); ++enesima) {
      SCOPED_TRACE(testing::Message() << (bExcecao ? "exception " : "failure ") << enesima);
      m_falhas.FixaUltimaEscrita(1);
      Prepara(m_sAntes);
      PlanoFalha plano = Plano(apoio::kOpLe, Nome(), 1117);
      plano.enesima = enesima;
      plano.aoFalhar = [&] { bExcecao ? throw std::bad_alloc() : void(); };
      m_falhas.Arma(plano);
      m_falhas.ArmaTambem(AntesDeAbrir(Nome(), [&] {
        Poe(Nome(), maior);
        m_falhas.FixaUltimaEscrita(2);
      }));
      hr = abre();
      Falha(apoio::kOpLe, Nome(), 1117);
      for (const auto &[lpNome, executa] : m_especie.Operacoes()) {
        EXPECT_TRUE(!Falhou(hr) || executa() == codigos::kArqErroFisico) << lpNome;
      }
      m_falhas.Desarma();
      EXPECT_EQ(Disco(), Inteira(maior));
      EXPECT_EQ(m_especie.Acrescenta(9), codigos::kOk);
      ConfereTudo(m_especie.Acrescentado(maior, 9));
    }
  }
}

/// What cannot be looked at is not taken for unchanged.
TEST_P(Conformidade, ArquivoQueNaoSeDeixaOlhar) {
  Prepara(m_sAntes);
  m_falhas.Arma(Alheio(m_sAlheio));
  m_falhas.ArmaTambem(Plano(apoio::kOpTamanho, Nome(), 1117));
  EXPECT_EQ(m_especie.Muda(3), codigos::kArqErroFisico);
  EXPECT_EQ(Leitura(), codigos::kArqErroFisico);
  m_falhas.Desarma();
  ConfereTudo(m_sAlheio);
}

/// While a missing file is created: before it is tried, and between that and its creation. It is none that this object
/// has created, whatever the write comes to.
TEST_P(Conformidade, OutroProgramaNaCriacao) {
  for (const std::size_t enesima : {1U, 2U}) {
    for (const bool bFalha : {false, true}) {
      Prepara(std::nullopt);
      m_falhas.Arma(Alheio(m_sAlheio, enesima));
      if (bFalha) {
        m_falhas.ArmaTambem(Plano(kOpGrava, Nome(), 1117));
      }
      EXPECT_EQ(m_especie.Acrescenta(9), bFalha ? codigos::kArqErroFisico : codigos::kOk);
      m_falhas.Desarma();
      ConfereTudo(bFalha ? m_sAlheio : m_especie.Acrescentado(m_sAlheio, 9));
    }
  }
}

}  // namespace
