// What is special to files of text.

#include <sstream>

#include "tests/qzdatabase/BancoTeste.h"

namespace {

using namespace std::string_literals;

using Textos = std::vector<std::string>;

/// Lines in short form: separated by blanks, "-" is an empty one, '0' a zero byte.
Textos T(const std::string &resumo) {
  Textos textos;
  std::istringstream entrada(resumo);
  for (std::string texto; entrada >> texto;) {
    std::replace(texto.begin(), texto.end(), '0', '\0');
    textos.push_back(texto == "-" ? "" : texto);
  }
  return textos;
}

std::string Linhas(const Textos &textos) {
  return apoio::Linhas(textos);
}
std::string Linhas(const char *resumo) {
  return apoio::Linhas(T(resumo));
}

Textos Junta(Textos textos, const Textos &outros) {
  textos.insert(textos.end(), outros.begin(), outros.end());
  return textos;
}

class ArquivoTexto : public ComBanco {
protected:
  void Prepara(const std::string &bytes) {
    static_cast<void>(m_banco.Finaliza());
    Poe("TEXTO.DAT", bytes);
    ASSERT_EQ(Abre(), codigos::kOk);
  }
  HRESULT Grava(std::uint64_t *puiPosicao, const Textos &textos) {
    return Texto().GravaColecao(*puiPosicao, Colecao(textos));
  }
  /// All lines, read one by one until there are no more.
  Textos Lidas() {
    Textos textos;
    CString sTexto;
    while (Texto().Le(textos.size() + 1, sTexto) == codigos::kOk) {
      textos.push_back(sTexto);
    }
    return textos;
  }
  std::vector<std::uint64_t> Offsets() {
    std::vector<std::uint64_t> offsets;
    for (std::size_t idx = 0; idx < Texto().GetPtrArrayRegistros()->GetSize(); ++idx) {
      offsets.push_back((*Texto().GetPtrArrayRegistros())[idx].uiOffset);
    }
    return offsets;
  }

  /// Length of the file's header.
  const std::uint64_t m_uiCabecalho = apoio::CabecalhosLigados() ? kTamanhoCabecalho : 0;
};

/// The decision for each kind of write, the bytes it leaves and the places it records.
TEST_F(ArquivoTexto, GravacaoByteAByte) {
  struct Passo {
    std::uint64_t uiPosicao;
    const char *textos;
    std::uint64_t uiPosicaoDepois;
  };
  struct Caso {
    const char *nome;
    const char *antes;
    std::vector<Passo> passos;
    const char *memoria;
    std::vector<std::uint64_t> offsets;
    std::string disco{};  ///< when it is not just the lines of `memoria`
  };
  const std::uint64_t h = m_uiCabecalho;
  const std::string sDuasVezes = Linhas("um dois") + std::string(h != 0 ? h - 8 : 0, '\0') + Linhas("DOIS");
  const Caso casos[] = {
      {"append", "um dois", {{0, "tres - x", 5}}, "um dois tres - x", {0, 6, h + 14, h + 22, h + 26}},
      {"to an empty file", "", {{0, "um", 1}}, "um", {h}},
      {"longer goes to the end", "um dois x", {{2, "trinta", 4}}, "um dois x trinta", {0, 6, 14, h + 19}},
      {"with the whole range", "um dois x", {{1, "u trinta", 5}}, "um dois x u trinta", {0, 6, 14, h + 19, h + 24}},
      {"same length in place", "um dois x", {{1, "UM DOIS", 1}}, "UM DOIS x", {0, 6, 14}},
      {"shorter rewrites", "um dois x", {{2, "2", 2}}, "um 2 x", {0, 6, 11}},
      {"empty line", "um dois x", {{1, "- DOIS", 1}}, "- DOIS x", {0, 4, 12}},
      {"rewritten appended lines", "um", {{0, "dois x", 3}, {1, "u", 1}, {2, "DOIS", 2}}, "u DOIS x", {0, 5, 13}},
      {"past the end", "um dois", {{2, "DOIS x", 2}}, "um DOIS x", {0, 6, 0}},
      {"over an added line", "um dois", {{2, "DOIS x", 2}, {3, "X", 3}}, "um DOIS X", {0, 6, 0}},
      {"past the end, longer",
       "um dois x",
       {{2, "trinta x -", 2}, {0, "y", 5}},
       "um trinta x - y",
       {0, 6, 14, 0, h + 25}},
      {"over a moved line", "um dois x", {{2, "trinta x -", 2}, {3, "X", 3}}, "um trinta X -", {0, 6, 14, 0}},
      {"past the end, shorter", "um dois", {{2, "d x", 2}}, "um d x", {0, 6, 11}},
      {"zero byte, not loaded yet", "um", {{0, "a0b", 2}, {1, "UM", 1}}, "UM a0b", {0, h + 6}},
      {"line cut at its zero byte", "a0b c", {{1, "a", 1}, {2, "C", 2}}, "a C", {0, 7}, Linhas("a0b C")},
      {"as long as the cut text", "a0b c", {{1, "A", 1}}, "A c", {0, 5}},
      {"longer than the cut text", "a0b c", {{1, "AB", 3}}, "a c AB", {0, 7, h + 12}, Linhas("a0b c AB")},
      {"header counted twice", "um", {{0, "dois", 2}, {2, "DOIS", 2}}, "um DOIS", {0, h + 6}, h != 0 ? sDuasVezes : ""},
  };
  for (const Caso &caso : casos) {
    SCOPED_TRACE(caso.nome);
    Prepara(Linhas(caso.antes));
    for (const Passo &passo : caso.passos) {
      std::uint64_t uiPosicao = passo.uiPosicao;
      EXPECT_EQ(Grava(&uiPosicao, T(passo.textos)), codigos::kOk);
      EXPECT_EQ(uiPosicao, passo.uiPosicaoDepois);
    }
    EXPECT_EQ(Lidas(), T(caso.memoria));
    EXPECT_EQ(Offsets(), caso.offsets);
    EXPECT_EQ(Disco("TEXTO.DAT"), caso.disco.empty() ? Linhas(caso.memoria) : caso.disco);
  }
}

/// Another program writes to the file while it is closed to be opened for writing: the way of writing is chosen anew.
TEST_F(ArquivoTexto, OutroProgramaMudaOArquivo) {
  const std::tuple<const char *, HRESULT, std::uint64_t, const char *> casos[] = {
      {"um", codigos::kGravacaoAlemDoFim, 2, "um"},
      {"um dois-mais", codigos::kOk, 2, "um trinta"},
      {"um dois tres", codigos::kOk, 4, "um dois tres trinta"}};
  for (const auto &[lpOutro, hr, uiPosicaoDepois, lpDepois] : casos) {
    SCOPED_TRACE(lpOutro);
    Prepara(Linhas("um dois"));
    m_falhas.Arma(AntesDeAbrir("TEXTO.DAT", [this, outro = Linhas(lpOutro)] { Poe("TEXTO.DAT", outro); }));
    std::uint64_t uiPosicao = 2;
    EXPECT_EQ(Texto().Grava(uiPosicao, "trinta"), hr);
    EXPECT_EQ(uiPosicao, uiPosicaoDepois);
    EXPECT_EQ(Disco("TEXTO.DAT"), Linhas(lpDepois));
  }
}

TEST_F(ArquivoTexto, NadaAGravarNaoTocaODisco) {
  Prepara(Linhas("um dois"));
  Falha(apoio::kOpTodas, "TEXTO.DAT", 1117);
  std::uint64_t uiPosicao = 2;
  EXPECT_EQ(Texto().Grava(uiPosicao, "dois"), codigos::kOk);
  EXPECT_EQ(Grava(&uiPosicao, {}), codigos::kOk);
  EXPECT_EQ(uiPosicao, 2U);
  EXPECT_EQ(Texto().Grava(uiPosicao, ""), codigos::kOk);
  EXPECT_EQ(uiPosicao, 0U);
  EXPECT_EQ(m_falhas.Vistas(), 0U);
}

/// Any bytes load; a line appended behind a damaged end is found again.
TEST_F(ArquivoTexto, ArquivosQuaisquer) {
  const Textos grandes = {std::string(2047, 'a'), "", std::string(2048, 'b'), std::string(300000, 'c'), "d"};
  const Textos muitas(40000, "linha");
  const std::string longa(70000, 'z');
  const std::pair<std::string, Textos> casos[] = {
      {"", {}},
      {Linhas(grandes), grandes},
      {Linhas(muitas), muitas},
      {std::string(8, '\0'), {"", ""}},
      {"x", {}},
      {Linhas("um") + "\2\0\0"s, {"um"}},
      {Linhas("um") + "\xFF\xFF\xFF\xFF"s, {"um", ""}},
      {Linhas("um") + "\xFF\xFF\xFF\xFF"s + "resto", {"um", "resto"}},
      {Linhas("um") + "\6\0\0\0re\0to"s, {"um", "re"}},
  };
  for (const auto &[disco, memoria] : casos) {
    SCOPED_TRACE(disco.substr(0, 20));
    Prepara(disco);
    ASSERT_EQ(Lidas(), memoria);
    std::uint64_t uiPosicao = 0;
    ASSERT_EQ(Grava(&uiPosicao, {"mais", longa}), codigos::kOk);
    EXPECT_EQ(uiPosicao, memoria.size() + 2);
    uiPosicao = 0;
    ASSERT_EQ(Grava(&uiPosicao, {"fim"}), codigos::kOk);
    const Textos depois = Junta(memoria, {"mais", longa});
    EXPECT_EQ(Offsets().back(), m_uiCabecalho + Linhas(depois).size()) << "appended: the end is damaged no more";
    ASSERT_EQ(Disco("TEXTO.DAT"), Linhas(Junta(depois, {"fim"})));
  }
}

TEST_F(ArquivoTexto, RastroDeUmaFalha) {
  const std::string s = "CQZTextFile::";
  const std::string f = "|QZTextFile.cpp|";
  Prepara(Linhas("um dois"));
  apoio::ColetorRastro rastro;
  std::uint64_t uiPosicao = 2;
  Falha(apoio::kOpGrava, "TEXTO.DAT", 1117, false);
  EXPECT_EQ(Texto().Grava(uiPosicao, "x"), codigos::kArqErroFisico);
  EXPECT_EQ(rastro.Toma(), (Textos{s + "ExecutaShrink" + f + "CatchGravacao(pEx)",
                                   s + "GravaRegistros" + f + "ExecutaShrink(uiPosicao, aRegistros)",
                                   s + "GravaColecao" + f + "GravaRegistros(uiPosicao, aRegistros)",
                                   s + "Grava" + f + "GravaColecao(uiPosicao, aRegistros)"}));
}

TEST_F(ArquivoTexto, CopiaOffline) {
  Prepara(Linhas("a0b - c"));
  m_empresa.Escreve("TEXTO.OFL", "an earlier companion");
  EXPECT_EQ(Texto().GeraArquivoOffline(), codigos::kOk);
  EXPECT_EQ(Disco("TEXTO.OFL"), Linhas("a - c"));
  ASSERT_EQ(Abre(), codigos::kOk);
  for (const auto &[operacao, hr] :
       {std::pair(apoio::kOpApaga, codigos::kOfflineNaoApagado), {apoio::kOpGrava, codigos::kArqErroFisico}}) {
    Falha(operacao, "TEXTO.OFL", 1117);
    EXPECT_EQ(Texto().GeraArquivoOffline(), hr);
    EXPECT_TRUE(operacao == apoio::kOpGrava || m_falhas.Vistas() == 50);
  }
  m_falhas.Desarma();
  EXPECT_EQ(Texto().DeletaArquivoOffline(), codigos::kOk);
  EXPECT_EQ(Texto().DeletaArquivoOffline(), codigos::kOk) << "none is fine";
  Prepara("");
  EXPECT_EQ(Texto().GeraArquivoOffline(), codigos::kOk);
  EXPECT_FALSE(m_empresa.Existe("TEXTO.OFL")) << "without lines there is none";
}

}  // namespace
