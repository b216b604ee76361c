#include "tests/apoio/EmpresaComBase.h"
#include "tests/qzdados/ApoioQzdados.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/RegVeiculo.h"

namespace {

using apoio::EmpresaTeste;
using apoio::Linhas;

/// Three vehicles, "V1" to "V3", and the beginning of one more.
std::string Veiculos() {
  tagREG_VEICULOPS veiculo = VeiculoCompleto();
  Preenche(veiculo.szDescricao, "a\"b;\\\x80\xE3\n");
  veiculo.vTara = -12345;
  veiculo.vCapacidadeKg = 75000000;
  veiculo.vCapacidadeM3 = 455000;
  std::string sDados;
  for (const char *lpCodigo : {"V1", "V2", "V3"}) {
    Preenche(veiculo.szCodigo, lpCodigo);
    RegVeiculo reg;
    CopiaParaRegistro(veiculo, &reg);
    sDados += Bytes(reg);
  }
  return apoio::NoDisco("DFVEIC.DAT", sDados) + "xyz";
}

TEST(Listagem, NosTresFormatos) {
  const apoio::ChaveCabecalho cabecalho(true);
  const EmpresaTeste empresa;
  const std::string sLonga(65537, 'x');
  empresa.Escreve("DFVEIC.DAT", Veiculos());
  empresa.Escreve("NOTAS.OFL", Linhas({"um", "", std::string("do\0is", 5), "a;\x01", sLonga, "fim"}) + "\x09\0\0\0ab");
  empresa.Escreve("CURTO.OFL", Linhas({"um"}) + std::string("\x09\0\0\0ab", 6));
  empresa.Escreve("DFVEIVS.DAT", kVersao1);
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
  const struct {
    std::vector<std::string> aOpcoes;  ///< the file's name first
    std::string sSaida;
    std::string sAviso;
  } aCasos[] = {
      {{"DFVEIC.DAT", "--csv", "--de", "2"}, sTitulo + "2;V2" + sCampos + "3;V3" + sCampos, "3 bytes a mais"},
      {{"DFVEIC.DAT", "--json", "--ate", "2"},
       "[\n{\"posicao\":1,\"codigo\":\"V1\"," + sJson + ",\n{\"posicao\":2,\"codigo\":\"V2\"," + sJson + "\n]\n",
       "3 bytes a mais"},
      {{"DFVEIC.DAT", "--json", "--de", "4"}, "[\n]\n", "3 bytes a mais"},
      {{"DFVEIC.DAT", "--de", "3"},
       " posicao  codigo         placa      uf    ano        tara          kg        m3  descricao\n"
       "       3  V3             ABC1D23    SP   2020     -1,2345        7500      45,5  a\"b;\\\x80\xE3.\n",
       "3 bytes a mais"},
      {{"NOTAS.OFL", "--ate", "4"}, "   linha  texto\n       1  um\n       2  \n       3  do\n       4  a;.\n", ""},
      {{"NOTAS.OFL", "--csv", "--de", "4", "--ate", "4"}, "linha;texto\n4;\"a;\x01\"\n", ""},
      {{"NOTAS.OFL", "--csv", "--de", "5"}, "linha;texto\n5;" + sLonga.substr(1) + "\n6;fim\n", "de 65537 bytes"},
      {{"CURTO.OFL", "--json"}, "[\n{\"linha\":1,\"texto\":\"um\"}\n]\n", "6 bytes a mais"},
      {{"DFVEIVS.DAT", "--json"}, "[\n{\"versao\":1}\n]\n", ""},
      {{"DFVEIVS.DAT", "--csv"}, "versao\n1\n", ""},
  };
  for (const auto &caso : aCasos) {
    std::vector<std::string> aTextos = caso.aOpcoes;
    aTextos.front() = empresa.Caminho(aTextos.front());
    aTextos.insert(aTextos.begin(), "lista");
    const Rodada rodada(aTextos);
    EXPECT_EQ(rodada.Saida(), caso.sSaida);
    EXPECT_EQ(rodada.iCodigo, 0);
    EXPECT_TRUE(Contem(rodada.Erros(), caso.sAviso)) << rodada.Erros();
  }
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
      {{"verifica", empresa.Caminho(""), "--como", "X.DAT"}, 4, "--como"},
      {{"verifica", sArquivo, "--como", "pasta\\X.DAT"}, 4, "--como"},
      {{"lista", sArquivo, "--de", "3", "--ate", "2"}, 4, "--ate"},
      {{"lista", sArquivo, "--csv", "--json"}, 4, "--json"},
      {{"lista", empresa.Caminho("falta")}, 3, "n\xE3o existe"},
      {{"lista", sArquivo, "--como", "X.TXT"}, 3, "--como"},
  };
  for (const auto &caso : aCasos) {
    const Rodada rodada(caso.aTextos);
    EXPECT_EQ(rodada.iCodigo, caso.iCodigo) << caso.lpTrecho;
    EXPECT_TRUE(Contem(rodada.Erros(), caso.lpTrecho)) << rodada.Erros();
    EXPECT_EQ(rodada.Saida(), "");
  }
  EXPECT_TRUE(Contem(Rodada({"verifica", empresa.Caminho("falta"), sArquivo}).Saida(), "n\xE3o existe\ns\xE3o "));
}

}  // namespace
