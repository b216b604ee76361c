#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "client/Importacao.h"
#include "client/LeitorCsv.h"
#include "client/QZVeiculosErros.h"
#include "client/QZVeiculosTextos.h"
#include "client/Saida.h"

namespace {

constexpr std::string_view kMarca = "\xEF\xBB\xBF";

std::vector<CLinhaCsv> LeTudo(const std::string &sTexto) {
  CLeitorCsv leitor(sTexto);
  std::vector<CLinhaCsv> aLinhas;
  while (std::optional<CLinhaCsv> linha = leitor.Proxima()) {
    aLinhas.push_back(*linha);
  }
  return aLinhas;
}

TEST(LeitorCsv, ColumnsInAnyOrderQuotesAndLineEnds) {
  const auto aLinhas = LeTudo(
      "descricao;tara;codigo;ano;posicao\r\n"
      "\"a;\"\"b\"\"\";1234,5;\"X1\";2020;9\r\n"
      "\n"
      "\xE7;;Y2;;\n"
      ";\"10.5\";Z3;4294967295;x");
  ASSERT_EQ(aLinhas.size(), 3U);
  for (const CLinhaCsv &linha : aLinhas) {
    EXPECT_EQ(linha.sErro, "");
  }
  EXPECT_EQ(aLinhas[0].uiLinha, 2U);
  EXPECT_EQ(LeCampo(aLinhas[0].veiculo.szDescricao), "a;\"b\"");
  EXPECT_EQ(LeCampo(aLinhas[0].veiculo.szCodigo), "X1");
  EXPECT_EQ(aLinhas[0].veiculo.vTara, 12345000);
  EXPECT_EQ(aLinhas[0].veiculo.iAno, 2020U);
  EXPECT_EQ(aLinhas[0].veiculo.lPosicao, 0);
  EXPECT_EQ(aLinhas[1].uiLinha, 4U);
  EXPECT_EQ(LeCampo(aLinhas[1].veiculo.szDescricao), "\xE7");
  EXPECT_EQ(aLinhas[1].veiculo.vTara, 0);
  EXPECT_EQ(aLinhas[2].veiculo.iAno, 4294967295U);
}

TEST(LeitorCsv, BadLinesAreToldAndDoNotDisturbTheNext) {
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
      {std::string("A\0B;1;2", 7), "codigo: o texto cont"},
      {"A;-1;2", "tara: o valor"},
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

TEST(LeitorCsv, Utf8OnlyBehindTheByteOrderMark) {
  const std::string sDados = "codigo;descricao\nA;ba\xC3\xBA \xE2\x82\xAC\n";
  EXPECT_EQ(LeCampo(LeTudo(std::string(kMarca) + sDados)[0].veiculo.szDescricao), "ba\xFA \x80");
  EXPECT_EQ(LeCampo(LeTudo(sDados)[0].veiculo.szDescricao), "ba\xC3\xBA \xE2\x82\xAC");
  // No Windows-1252 form, a look-alike that must not be taken for a letter, and malformed UTF-8.
  for (const std::string sRuim : {"\xE6\x97\xA5", "\xC4\x81", "\xFA", "\xC3"}) {
    const auto aLinhas = LeTudo(std::string(kMarca) + "codigo\n" + sRuim + "\nB\n");
    ASSERT_EQ(aLinhas.size(), 2U);
    EXPECT_NE(aLinhas[0].sErro, "");
    EXPECT_EQ(LeCampo(aLinhas[1].veiculo.szCodigo), "B");
  }
}

TEST(LeitorCsv, BadHeaderNamesTheColumn) {
  for (const auto &[sTexto, sTrecho] :
       std::vector<std::pair<std::string, std::string>>{{"codigo;cor\n", "\"cor\""},
                                                        {"codigo;placa;codigo\n", "\"codigo\""},
                                                        {"", "vazio"},
                                                        {"codigo;\n", "\"\""}}) {
    try {
      CLeitorCsv leitor(sTexto);
      ADD_FAILURE() << sTexto;
    } catch (const CErroCsv &erro) {
      EXPECT_NE(std::string(erro.what()).find(sTrecho), std::string::npos) << erro.what();
    }
  }
}

TEST(LeitorCsv, TakesTheOutputOfTheProgramBack) {
  tagREG_VEICULOPS veiculo{};
  PreencheCampo(veiculo.szCodigo, "ABCDEFGHIJKLM");
  PreencheCampo(veiculo.szDescricao, "ba\xFA; \"novo\"");
  PreencheCampo(veiculo.szUF, "SP");
  veiculo.vTara = 1;
  veiculo.vCapacidadeM3 = 905000;
  veiculo.iAno = 1999;
  veiculo.iPonteiroCliente = 65535;
  veiculo.iTipoCarroceria = 7;
  veiculo.iTipoTransporte = 255;
  const auto aLinhas = LeTudo(TituloCsv() + LinhaCsv(12, veiculo));
  ASSERT_EQ(aLinhas.size(), 1U);
  EXPECT_EQ(aLinhas[0].sErro, "");
  EXPECT_EQ(std::memcmp(&aLinhas[0].veiculo, &veiculo, sizeof veiculo), 0);
}

TEST(Importacao, GoesOnAfterBadLinesAndTellsWhereAFailureStoppedIt) {
  const std::string sCsv = "ano\n1\nx\n3\n4\n";
  std::vector<std::size_t> aRecusadas;
  std::vector<unsigned> aGravados;
  unsigned uiFalha = 0;
  CPassosImportacao passos;
  passos.Grava = [&](const tagREG_VEICULOPS &veiculo) {
    if (veiculo.iAno == uiFalha) {
      throw CQZErroVeiculos(E_FAIL);
    }
    aGravados.push_back(veiculo.iAno);
  };
  passos.Recusa = [&](const CLinhaCsv &linha) { aRecusadas.push_back(linha.uiLinha); };
  std::size_t uiFeito = 0;
  passos.MostraProgresso = [&](std::size_t uiAgora, std::size_t uiTotal) {
    EXPECT_GT(uiAgora, uiFeito);
    EXPECT_EQ(uiTotal, sCsv.size());
    uiFeito = uiAgora;
  };

  EXPECT_EQ(ValidaCsv(CLeitorCsv(sCsv), passos.Recusa), 1U);
  EXPECT_TRUE(aGravados.empty());

  CResultadoImportacao resultado;
  ImportaCsv(CLeitorCsv(sCsv), passos, resultado);
  EXPECT_EQ(aGravados, (std::vector<unsigned>{1, 3, 4}));
  EXPECT_EQ(aRecusadas, (std::vector<std::size_t>{3, 3}));
  EXPECT_EQ(resultado.uiGravados, 3U);
  EXPECT_EQ(resultado.uiRecusados, 1U);
  EXPECT_EQ(uiFeito, sCsv.size());

  uiFalha = 3;
  uiFeito = 0;
  CResultadoImportacao parada;
  EXPECT_THROW(ImportaCsv(CLeitorCsv(sCsv), passos, parada), CQZErroVeiculos);
  EXPECT_EQ(parada.uiGravados, 1U);
  EXPECT_EQ(parada.uiLinha, 4U);
}

}  // namespace
