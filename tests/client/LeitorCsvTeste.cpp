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

// Which lines are taken, and as what, is for the fuzzer of CSV texts to tell.
TEST(LeitorCsv, OQueERuimEDito) {
  const struct {
    std::string sLinhas;
    const char *pTrecho;
  } aCasos[] = {
      {"codigo;tara\nA;1;2\n", "3 campos"},
      {"codigo\n\"A\n", "aspas sem fechamento"},
      {"codigo\n\"A\"B\n", "depois do fechamento"},
      {"codigo\nA\"B\n", "no meio de um campo"},
      {"codigo\n\"" + std::string(600, 'A') + "\"\n", "codigo: o texto tem 600"},
      {std::string("codigo\nA\0B\n", 11), "codigo: o texto cont"},
      {"tara\n-\n", "tara: "},
      {"rodado\n256\n", "rodado: \"256\" passa"},
      {"codigo;descrisao\n", "\"descricao\""},
      {"codigo,ano\n", "separador"},
      {"codigo;placa;codigo\n", "\"codigo\""},
      {"", "vazio"},
  };
  for (const auto &caso : aCasos) {
    std::string sErro;
    try {
      sErro = LeTudo(caso.sLinhas).at(0).sErro;
    } catch (const CErroCsv &erro) {
      sErro = erro.what();
    }
    EXPECT_NE(sErro.find(caso.pTrecho), std::string::npos) << caso.sLinhas << ": " << sErro;
  }
}

TEST(LeitorCsv, AspasQueNaoFechamEstragamSoASuaLinha) {
  std::string sTexto = "codigo;descricao\nX;\"duas\nlinhas\"\nA;\"aberta\n";
  for (int i = 0; i < 200; ++i) {
    sTexto += "B;2\n";
  }
  const auto aLinhas = LeTudo(sTexto + "C;3\"\n");
  std::string sBons;
  for (const CLinhaCsv &linha : aLinhas) {
    sBons += linha.sErro.empty() ? LeCampo(linha.veiculo.szCodigo) : "!";
  }
  EXPECT_EQ(sBons, "X!" + std::string(200, 'B') + "!");
  EXPECT_EQ(aLinhas.back().uiLinha, 205U);
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
  constexpr auto kNenhuma = std::nullopt;
  const std::pair<std::string, std::optional<ECodificacao>> aBons[] = {
      {s1252, kNenhuma},
      {s1252, ECodificacao::Windows1252},
      {s8, kNenhuma},
      {s8, ECodificacao::Utf8},
      {"\xEF\xBB\xBF" + s8, kNenhuma},
      {Em16(u"\uFEFF" + s16, false), kNenhuma},
      {Em16(u"\uFEFF" + s16, true), ECodificacao::Utf16le},
      {Em16(s16, false), ECodificacao::Utf16le},
      {Em16(s16, true), ECodificacao::Utf16be},
  };
  for (const auto &[sBytes, eDada] : aBons) {
    EXPECT_EQ(LeCampo(LeTudo(sBytes, eDada).at(0).veiculo.szDescricao), "ba\xFA \x80") << sBytes;
    EXPECT_EQ(Decodifica(sBytes, eDada).sAviso.empty(), sBytes != s8 || eDada) << sBytes;
  }
  EXPECT_EQ(Codifica(s1252, ECodificacao::Utf8), s8);
  EXPECT_EQ(Codifica(s1252, ECodificacao::Utf16be), Em16(s16, true));
  EXPECT_NE(Decodifica(s1252 + s8, kNenhuma).sAviso, "");
  EXPECT_FALSE(Decodifica(s1252 + s8, kNenhuma).bUtf8);
  EXPECT_EQ(LeCampo(LeTudo(s8, ECodificacao::Windows1252)[0].veiculo.szDescricao), "ba\xC3\xBA \xE2\x82\xAC");

  // Told otherwise than marked, UTF-16 without a mark, half a character, UTF-32.
  const std::pair<std::string, std::optional<ECodificacao>> aRuins[] = {
      {"\xEF\xBB\xBF" + s8, ECodificacao::Windows1252},
      {Em16(s16, false), kNenhuma},
      {Em16(s16, true), kNenhuma},
      {Em16(s16, true) + "x", ECodificacao::Utf16be},
      {"\xFF\xFE\0\0c\0\0\0"s, kNenhuma}};
  for (const auto &[sBytes, eDada] : aRuins) {
    EXPECT_THROW(Decodifica(sBytes, eDada), CErroCodificacao) << sBytes;
  }

  // No Windows-1252 form, a look-alike that must not be taken for a letter, malformed UTF-8, beyond 16 bits.
  for (const std::string sRuim : {"\xE6\x97\xA5", "\xC4\x81", "\xC3", "\xC0\xAF"}) {
    EXPECT_NE(LeTudo("codigo\n" + sRuim + "\n", ECodificacao::Utf8)[0].sErro, "") << sRuim;
  }
  EXPECT_NE(LeTudo(Em16(u"codigo\n\xD83D\xDE9A\n", false), ECodificacao::Utf16le)[0].sErro, "");
}

TEST(Importacao, SegueDepoisDeLinhasRuinsEDizOndeParou) {
  const CConteudoTexto conteudo{"ano;codigo\n1;A\nx;\n3;B\n4;A\n5;\n6;\n", false, ""};
  std::string sFeito;
  unsigned uiAnoQueFalha = 0;
  int iPerguntas = 100;
  std::size_t uiProgresso = 0;
  const CPassosImportacao passos{[&](const tagREG_VEICULOPS &veiculo) {
                                   if (veiculo.iAno == uiAnoQueFalha) {
                                     throw std::runtime_error("x");
                                   }
                                   sFeito += std::to_string(veiculo.iAno) + " ";
                                 },
                                 [&](const CLinhaCsv &linha) { sFeito += "!" + std::to_string(linha.uiLinha) + " "; },
                                 [&](std::size_t uiAgora, std::size_t) { uiProgresso = uiAgora; },
                                 [&] { return --iPerguntas == 0; }};
  // What was written and refused, how many of each and of those that were there, the last line written and the next.
  const auto importa = [&](std::size_t uiDesdeLinha, CCodigosConhecidos *pConhecidos) {
    sFeito.clear();
    CResultadoImportacao resultado;
    try {
      ImportaCsv(CLeitorCsv(conteudo), uiDesdeLinha, pConhecidos, passos, resultado);
    } catch (const std::runtime_error &) {
      sFeito += "failed ";
    }
    sFeito += resultado.bParada ? "stopped" : "";
    for (const std::size_t uiConta : {resultado.uiGravados, resultado.uiRecusados, resultado.uiRepetidos,
                                      resultado.uiUltimaGravada, resultado.uiProximaLinha}) {
      sFeito += "|" + std::to_string(uiConta);
    }
    return sFeito;
  };
  CCodigosConhecidos conhecidos;
  EXPECT_EQ(importa(1, &conhecidos), "1 !3 3 5 6 |4|1|1|7|7");
  EXPECT_EQ(uiProgresso, conteudo.sTexto.size());
  uiAnoQueFalha = 4;
  EXPECT_EQ(importa(1, nullptr), "1 !3 3 failed |2|1|0|4|5");
  uiAnoQueFalha = 0;
  iPerguntas = 3;
  EXPECT_EQ(importa(4, nullptr), "3 4 stopped|2|0|0|5|6");
  EXPECT_EQ(importa(6, nullptr), "5 6 |2|0|0|7|7");
}

}  // namespace
