#include "tests/apoio/EmpresaComBase.h"
#include "tests/qzdados/ApoioQzdados.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/RegVeiculo.h"

namespace {

using apoio::EmpresaTeste;
using apoio::Linhas;

std::string Registro(const tagREG_VEICULOPS &veiculo) {
  RegVeiculo reg{};
  CopiaParaRegistro(veiculo, &reg);
  return Bytes(reg);
}

tagREG_VEICULOPS Amostra() {
  tagREG_VEICULOPS veiculo = VeiculoCompleto();
  Preenche(veiculo.szDescricao, "a\"b;\\\x80\xE3\n");
  veiculo.vTara = -12345;
  veiculo.vCapacidadeKg = 75000000;
  veiculo.vCapacidadeM3 = 455000;
  return veiculo;
}

struct Caso {
  std::vector<std::string> aOpcoes;
  std::string sSaida;
};

TEST(Listagem, VeiculosNosTresFormatos) {
  const EmpresaTeste empresa;
  const std::string sTitulo =
      "posicao;codigo;placa;uf;descricao;ano;antt;carroceria;rodado;tipo;tara;kg;m3;renavam;"
      "cliente;transporte\n";
  const std::string sCampos =
      ";ABC1D23;SP;\"a\"\"b;\\\x80\xE3\n\";2020;12345678;2;1;3;-1,2345;7500;45,5;00123456789;"
      "31098;4\n";
  const std::string sJson =
      "\"placa\":\"ABC1D23\",\"uf\":\"SP\",\"descricao\":\"a\\\"b;\\\\\\u20ac\\u00e3\\u000a\","
      "\"ano\":2020,\"antt\":\"12345678\",\"carroceria\":2,\"rodado\":1,\"tipo\":3,"
      "\"tara\":-1.2345,\"kg\":7500,\"m3\":45.5,\"renavam\":\"00123456789\",\"cliente\":31098,"
      "\"transporte\":4}";
  std::string sDados;
  for (const char *lpCodigo : {"V1", "V2", "V3"}) {
    tagREG_VEICULOPS veiculo = Amostra();
    Preenche(veiculo.szCodigo, lpCodigo);
    sDados += Registro(veiculo);
  }
  const apoio::ChaveCabecalho cabecalho(true);
  empresa.Escreve("DFVEIC.DAT", apoio::NoDisco("DFVEIC.DAT", sDados) + "xyz");
  const Caso aCasos[] = {
      {{"--csv", "--de", "2"}, sTitulo + "2;V2" + sCampos + "3;V3" + sCampos},
      {{"--csv", "--de=3", "--ate=9"}, sTitulo + "3;V3" + sCampos},
      {{"--csv", "--de", "4"}, sTitulo},
      {{"--json", "--ate", "2"},
       "[\n{\"posicao\":1,\"codigo\":\"V1\"," + sJson + ",\n{\"posicao\":2,\"codigo\":\"V2\"," + sJson + "\n]\n"},
      {{"--json", "--de", "4"}, "[\n]\n"},
      {{"--de", "3"},
       " posicao  codigo         placa      uf    ano        tara          kg        m3  descricao\n"
       "       3  V3             ABC1D23    SP   2020     -1,2345        7500      45,5  a\"b;\\\x80\xE3.\n"},
  };
  for (const Caso &caso : aCasos) {
    std::vector<std::string> aTextos{"lista", empresa.Caminho("DFVEIC.DAT")};
    aTextos.insert(aTextos.end(), caso.aOpcoes.begin(), caso.aOpcoes.end());
    const Rodada rodada(aTextos);
    EXPECT_EQ(rodada.Saida(), caso.sSaida);
    EXPECT_EQ(rodada.iCodigo, 0);
    EXPECT_TRUE(Contem(rodada.Erros(), "3 bytes a mais")) << rodada.Erros();
  }
}

TEST(Listagem, TextoEVersao) {
  const EmpresaTeste empresa;
  const std::string sLonga(65537, 'x');
  empresa.Escreve("NOTAS.OFL", Linhas({"um", "", std::string("do\0is", 5), "a;\x01", sLonga, "fim"}) + "\x09\0\0\0ab");
  empresa.Escreve("CURTO.OFL", Linhas({"um"}) + std::string("\x09\0\0\0ab", 6));
  empresa.Escreve("DFVEIVS.DAT", kVersao1);
  const Caso aCasos[] = {
      {{"NOTAS.OFL", "--ate", "4"}, "   linha  texto\n       1  um\n       2  \n       3  do\n       4  a;.\n"},
      {{"NOTAS.OFL", "--csv", "--de", "4", "--ate", "4"}, "linha;texto\n4;\"a;\x01\"\n"},
      {{"NOTAS.OFL", "--csv", "--de", "6"}, "linha;texto\n6;fim\n"},
      {{"CURTO.OFL", "--json"}, "[\n{\"linha\":1,\"texto\":\"um\"}\n]\n"},
      {{"DFVEIVS.DAT", "--json"}, "[\n{\"versao\":1}\n]\n"},
      {{"DFVEIVS.DAT", "--csv"}, "versao\n1\n"},
  };
  for (const Caso &caso : aCasos) {
    std::vector<std::string> aTextos{"lista", empresa.Caminho(caso.aOpcoes.front())};
    aTextos.insert(aTextos.end(), caso.aOpcoes.begin() + 1, caso.aOpcoes.end());
    const Rodada rodada(aTextos);
    EXPECT_EQ(rodada.Saida(), caso.sSaida);
    EXPECT_EQ(rodada.iCodigo, 0) << rodada.Erros();
  }
  const Rodada longa({"lista", empresa.Caminho("NOTAS.OFL"), "--csv", "--de", "5", "--ate", "5"});
  EXPECT_EQ(longa.Saida(), "linha;texto\n5;" + sLonga.substr(1) + "\n");
  EXPECT_TRUE(Contem(longa.Erros(), "de 65537 bytes")) << longa.Erros();
  EXPECT_TRUE(Contem(Rodada({"lista", empresa.Caminho("CURTO.OFL")}).Erros(), "6 bytes a mais"));
}

TEST(Uso, ErradoOuSemArquivo) {
  const EmpresaTeste empresa;
  empresa.Escreve("DFVEIC.DAT", "");
  const std::string sArquivo = empresa.Caminho("DFVEIC.DAT");
  const struct {
    std::vector<std::string> aTextos;
    int iCodigo;
    const char *lpTrecho;
  } aCasos[] = {
      {{}, 4, "Uso: qzdados"},
      {{"apaga"}, 4, "comando desconhecido: apaga"},
      {{"verifica"}, 4, "faltam valores"},
      {{"verifica", sArquivo, "--csv"}, 4, "--csv"},
      {{"verifica", empresa.Caminho(""), "--como", "X.DAT"}, 4, "--como"},
      {{"verifica", sArquivo, "--como", "pasta\\X.DAT"}, 4, "--como"},
      {{"recupera", sArquivo}, 4, "--em"},
      {{"cabecalho", "troca", sArquivo, "--em", "X"}, 4, "troca"},
      {{"lista", sArquivo, "--de", "3", "--ate", "2"}, 4, "--ate"},
      {{"lista", sArquivo, "--de", "0"}, 4, "--de"},
      {{"lista", sArquivo, "--csv", "--json"}, 4, "--json"},
      {{"lista", empresa.Caminho("falta")}, 3, "n\xE3o existe"},
      {{"lista", sArquivo, "--como", "X.TXT"}, 3, "--como"},
      {{"recupera", empresa.Caminho("falta"), "--em", "X"}, 3, "n\xE3o existe"},
  };
  for (const auto &caso : aCasos) {
    const Rodada rodada(caso.aTextos);
    EXPECT_EQ(rodada.iCodigo, caso.iCodigo) << caso.lpTrecho;
    EXPECT_TRUE(Contem(rodada.Erros(), caso.lpTrecho)) << rodada.Erros();
    EXPECT_EQ(rodada.Saida(), "");
  }
  EXPECT_TRUE(Contem(Rodada({"verifica", empresa.Caminho("falta"), sArquivo}).Saida(), "n\xE3o existe\ns\xE3o "));
  EXPECT_EQ(Rodada({"verifica", empresa.Caminho("falta"), sArquivo}).iCodigo, 3);
  EXPECT_TRUE(Contem(Rodada({"--ajuda"}).Saida(),
                     "C\xF3"
                     "digo de sa\xED"
                     "da"));
  EXPECT_TRUE(Contem(Rodada({"--versao"}).Saida(), "qzdados "));
}

}  // namespace
