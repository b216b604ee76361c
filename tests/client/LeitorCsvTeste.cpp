#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "client/Importacao.h"
#include "client/LeitorCsv.h"
#include "client/QZVeiculosCampos.h"

namespace {

std::vector<CLinhaCsv> LeTudo(const std::string &sBytes, std::optional<ECodificacao> eDada = std::nullopt) {
  const CConteudoTexto conteudo = Decodifica(sBytes, eDada);
  CLeitorCsv leitor(conteudo);
  std::vector<CLinhaCsv> aLinhas;
  while (std::optional<CLinhaCsv> linha = leitor.Proxima()) {
    aLinhas.push_back(*linha);
  }
  return aLinhas;
}

TEST(LeitorCsv, NumerosDasLinhasTambemComFinsDeLinhaEntreAspas) {
  const auto aLinhas = LeTudo("descricao;codigo\r\n\"a;\"\"b\"\"\";X1\r\n\n\xE7;Y2\n\"a\r\nb\n\";W4\n;V5");
  std::string sLido;
  for (const CLinhaCsv &linha : aLinhas) {
    sLido += std::to_string(linha.uiLinha) + LeCampo(linha.veiculo.szDescricao) + LeCampo(linha.veiculo.szCodigo);
  }
  EXPECT_EQ(sLido, "2a;\"b\"X14\xE7Y25a\r\nb\nW48V5");
}

TEST(LeitorCsv, LinhasRuinsSaoDitasENaoEstorvamASeguinte) {
  const struct {
    std::string sLinha;
    const char *pTrecho;
  } aCasos[] = {
      {"A;1", "2 campos"},
      {"A;1;2;3", "4 campos"},
      {"\"A;1;2", "aspas sem fechamento"},
      {"\"A\"B;1;2", "depois do fechamento"},
      {"A\"B;1;2", "no meio de um campo"},
      {"ABCDEFGHIJKLMN;1;2", "codigo: o texto tem 14"},
      {"\"" + std::string(600, 'A') + "\";1;2", "codigo: o texto tem 600"},
      {std::string("A\0B;1;2", 7), "codigo: o texto cont"},
      {"A;-;2", "tara: "},
      {"A;1;256", "rodado: \"256\" passa"},
      {"A;1; 2", "rodado: \" 2\""},
  };
  for (const auto &caso : aCasos) {
    const auto aLinhas = LeTudo("codigo;tara;rodado\n" + caso.sLinha + "\nBOM;3;4\n");
    ASSERT_EQ(aLinhas.size(), 2U) << caso.sLinha;
    EXPECT_NE(aLinhas[0].sErro.find(caso.pTrecho), std::string::npos) << caso.sLinha << ": " << aLinhas[0].sErro;
    EXPECT_EQ(aLinhas[1].sErro, "");
    EXPECT_EQ(aLinhas[1].veiculo.iTipoRodado, 4);
  }
}

TEST(LeitorCsv, AspasQueNaoFechamEstragamSoASuaLinha) {
  std::string sTexto = "codigo;descricao\nA;\"aberta\n";
  for (int i = 0; i < 200; ++i) {
    sTexto += "B;2\n";
  }
  std::string sBons;
  for (const CLinhaCsv &linha : LeTudo(sTexto + "C;3\"\n")) {
    sBons += linha.sErro.empty() ? LeCampo(linha.veiculo.szCodigo) : "!";
  }
  EXPECT_EQ(sBons, "!" + std::string(200, 'B') + "!");
}

std::string Em16(const std::u16string &sTexto, bool bMaiorPrimeiro) {
  std::string sBytes;
  for (const char16_t c : sTexto) {
    const char aBytes[] = {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
    sBytes += {aBytes[bMaiorPrimeiro ? 1 : 0], aBytes[bMaiorPrimeiro ? 0 : 1]};
  }
  return sBytes;
}

TEST(Codificacao, DecideAMarcaDepoisOUsuarioDepoisOsBytes) {
  using namespace std::string_literals;
  const std::string s1252 = "codigo;descricao\nA;ba\xFA \x80\n";
  const std::string s8 = "codigo;descricao\nA;ba\xC3\xBA \xE2\x82\xAC\n";
  const std::u16string s16 = u"codigo;descricao\nA;ba\u00FA \u20AC\n";
  const struct {
    std::string sBytes;
    std::optional<ECodificacao> eDada;
    bool bAviso;
  } aBons[] = {
      {s1252, std::nullopt, false},
      {s1252, ECodificacao::Windows1252, false},
      {s8, std::nullopt, true},
      {s8, ECodificacao::Utf8, false},
      {"\xEF\xBB\xBF" + s8, std::nullopt, false},
      {Em16(u"\uFEFF" + s16, false), std::nullopt, false},
      {Em16(u"\uFEFF" + s16, true), ECodificacao::Utf16le, false},
      {Em16(s16, false), ECodificacao::Utf16le, false},
      {Em16(s16, true), ECodificacao::Utf16be, false},
  };
  for (const auto &caso : aBons) {
    EXPECT_EQ(LeCampo(LeTudo(caso.sBytes, caso.eDada).at(0).veiculo.szDescricao), "ba\xFA \x80") << caso.sBytes;
    EXPECT_EQ(Decodifica(caso.sBytes, caso.eDada).sAviso.empty(), !caso.bAviso) << caso.sBytes;
  }
  EXPECT_EQ(Codifica(s1252, ECodificacao::Utf8), s8);
  EXPECT_EQ(Codifica(s1252, ECodificacao::Utf16be), Em16(s16, true));
  EXPECT_NE(Decodifica(s1252 + s8, std::nullopt).sAviso, "");
  EXPECT_FALSE(Decodifica(s1252 + s8, std::nullopt).bUtf8);
  EXPECT_EQ(LeCampo(LeTudo(s8, ECodificacao::Windows1252)[0].veiculo.szDescricao), "ba\xC3\xBA \xE2\x82\xAC");

  // Told otherwise than marked, UTF-16 without a mark, half a character, UTF-32.
  EXPECT_THROW(Decodifica("\xEF\xBB\xBF" + s8, ECodificacao::Windows1252), CErroCodificacao);
  EXPECT_THROW(Decodifica(Em16(s16, false), std::nullopt), CErroCodificacao);
  EXPECT_THROW(Decodifica(Em16(s16, true), std::nullopt), CErroCodificacao);
  EXPECT_THROW(Decodifica(Em16(s16, true) + "x", ECodificacao::Utf16be), CErroCodificacao);
  EXPECT_THROW(Decodifica("\xFF\xFE\0\0c\0\0\0"s, std::nullopt), CErroCodificacao);

  // No Windows-1252 form, a look-alike that must not be taken for a letter, beyond 16 bits, malformed UTF-8.
  for (const std::string sRuim : {"\xE6\x97\xA5", "\xC4\x81", "\xF0\x9F\x9A\x9A", "\xFA", "\xC3", "\xC0\xAF"}) {
    const auto aLinhas = LeTudo("codigo\n" + sRuim + "\nB\n", ECodificacao::Utf8);
    ASSERT_EQ(aLinhas.size(), 2U);
    EXPECT_NE(aLinhas[0].sErro, "");
    EXPECT_EQ(LeCampo(aLinhas[1].veiculo.szCodigo), "B");
  }
  EXPECT_NE(LeTudo(Em16(u"codigo\n\xD83D\xDE9A\n", false), ECodificacao::Utf16le)[0].sErro, "");
}

TEST(LeitorCsv, CabecalhoRuimDizAColuna) {
  for (const auto &[sTexto, sTrecho] :
       std::vector<std::pair<std::string, std::string>>{{"codigo;cor\n", "\"cor\""},
                                                        {"codigo;descrisao\n", "\"descricao\""},
                                                        {"codigo,ano\n", "separador"},
                                                        {"codigo;placa;codigo\n", "\"codigo\""},
                                                        {"", "vazio"},
                                                        {"codigo;\n", "\"\""}}) {
    try {
      LeTudo(sTexto);
      ADD_FAILURE() << sTexto;
    } catch (const CErroCsv &erro) {
      EXPECT_NE(std::string(erro.what()).find(sTrecho), std::string::npos) << erro.what();
    }
  }
}

TEST(Importacao, SegueDepoisDeLinhasRuinsEDizOndeParou) {
  const CConteudoTexto conteudo{"ano;codigo\n1;A\nx;\n3;B\n4;A\n5;\n6;\n", false, ""};
  std::vector<std::size_t> aRecusadas;
  std::vector<unsigned> aGravados;
  unsigned uiFalha = 0;
  std::size_t uiPerguntas = 100;
  std::size_t uiFeito = 0;
  const CPassosImportacao passos{[&](const tagREG_VEICULOPS &veiculo) {
                                   if (veiculo.iAno == uiFalha) {
                                     throw std::runtime_error("x");
                                   }
                                   aGravados.push_back(veiculo.iAno);
                                 },
                                 [&](const CLinhaCsv &linha) { aRecusadas.push_back(linha.uiLinha); },
                                 [&](std::size_t uiAgora, std::size_t uiTotal) {
                                   EXPECT_GT(uiAgora, uiFeito);
                                   EXPECT_EQ(uiTotal, conteudo.sTexto.size());
                                   uiFeito = uiAgora;
                                 },
                                 [&] { return --uiPerguntas == 0; }};
  CCodigosConhecidos conhecidos;
  const auto importa = [&](std::size_t uiDesdeLinha, CCodigosConhecidos *pConhecidos) {
    uiFeito = 0;
    CResultadoImportacao resultado;
    try {
      ImportaCsv(CLeitorCsv(conteudo), uiDesdeLinha, pConhecidos, passos, resultado);
    } catch (const std::runtime_error &) {
    }
    return resultado;
  };
  const CResultadoImportacao tudo = importa(1, &conhecidos);
  EXPECT_EQ(aGravados, (std::vector<unsigned>{1, 3, 5, 6}));
  EXPECT_EQ(aRecusadas, (std::vector<std::size_t>{3}));
  EXPECT_EQ(tudo.uiGravados, 4U);
  EXPECT_EQ(tudo.uiRecusados, 1U);
  EXPECT_EQ(tudo.uiRepetidos, 1U);
  EXPECT_EQ(tudo.uiUltimaGravada, 7U);
  EXPECT_EQ(uiFeito, conteudo.sTexto.size());

  uiFalha = 4;
  const CResultadoImportacao falha = importa(1, nullptr);
  EXPECT_EQ(falha.uiUltimaGravada, 4U);
  EXPECT_EQ(falha.uiProximaLinha, 5U);
  EXPECT_FALSE(falha.bParada);

  uiFalha = 0;
  uiPerguntas = 3;
  const CResultadoImportacao parada = importa(4, nullptr);
  EXPECT_TRUE(parada.bParada);
  EXPECT_EQ(parada.uiGravados, 2U);
  EXPECT_EQ(parada.uiProximaLinha, 6U);
  aGravados.clear();
  importa(parada.uiProximaLinha, nullptr);
  EXPECT_EQ(aGravados, (std::vector<unsigned>{5, 6}));
}

}  // namespace
