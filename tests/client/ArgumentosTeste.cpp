#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "client/Ajuda.h"
#include "client/Argumentos.h"
#include "client/BarraProgresso.h"
#include "client/Programa.h"
#include "client/QZVeiculosCampos.h"

namespace {

using CTextos = std::vector<std::string>;

CArgumentos Le(CTextos aTextos) {
  aTextos.insert(aTextos.begin(), {"--empresa", "0001"});
  return CArgumentos(aTextos, ProgramaVeiculos());
}

tagREG_FILTRO_VEICULOSPS Filtro(const CTextos &aOpcoes) {
  CTextos aTextos{"busca"};
  aTextos.insert(aTextos.end(), aOpcoes.begin(), aOpcoes.end());
  return FiltroDeArgumentos(Le(aTextos));
}

// The text of the usage error, empty when there is none.
template <typename F>
std::string ErroUso(F Executa) {
  try {
    Executa();
  } catch (const CErroUso &erro) {
    return erro.what();
  }
  return "";
}

TEST(Argumentos, OpcoesEValoresEmQualquerOrdem) {
  const CTextos aTextos{"le", "3", "--csv", "--sessao=7", "--empresa", "0001", "--", "--csv"};
  const CArgumentos argumentos(aTextos, ProgramaVeiculos());
  EXPECT_EQ(argumentos.Comando().sNome, "le");
  EXPECT_EQ(argumentos.Valores(), (CTextos{"3", "--csv"}));
  EXPECT_TRUE(argumentos.Tem("csv"));
  EXPECT_EQ(SessaoDeArgumentos(argumentos), 7);
  EXPECT_EQ(UsuarioDeArgumentos(argumentos), 1);
}

TEST(Argumentos, UsoErradoDizAOpcao) {
  const struct {
    CTextos aTextos;
    const char *pTrecho;
  } aCasos[] = {
      {{}, "falta o comando"},
      {{"el", "1"}, "\"le\""},
      {{"diag"}, "\"diagnostico\""},
      {{"grava", "--renavan", "1"}, "\"renavam\""},
      {{"le", "1", "--placa", "X"}, "--placa"},
      {{"busca", "--placa", "--uf", "SP"}, "--placa: falta"},
      {{"busca", "--csv=1"}, "--csv: "},
      {{"busca", "--uf", "SP", "--uf", "RJ"}, "--uf: "},
      {{"busca", "1"}, "valor a mais"},
      {{"le"}, "faltam valores"},
  };
  for (const auto &caso : aCasos) {
    const std::string sErro = ErroUso([&] { Le(caso.aTextos); });
    EXPECT_NE(sErro.find(caso.pTrecho), std::string::npos) << caso.pTrecho << " / " << sErro;
  }
  EXPECT_EQ(ErroUso([] { Le({"apaga"}); }), "comando desconhecido: apaga") << "nothing like it, no suggestion";
  EXPECT_NE(ErroUso([] { CArgumentos(CTextos{"conta"}, ProgramaVeiculos()); }).find("--empresa"), std::string::npos);
  const CArgumentos alem = Le({"conta", "--usuario", "65536"});
  EXPECT_NE(ErroUso([&] { UsuarioDeArgumentos(alem); }).find("--usuario"), std::string::npos);
  EXPECT_EQ(UsuarioDeArgumentos(Le({"conta", "--usuario", "65535"})), 65535);
}

TEST(Ajuda, PedidaEmQualquerLugarMenosDentroDeUmValor) {
  const struct {
    CTextos aTextos;
    const char *pTrecho;  // of the text; empty: none is asked for
  } aCasos[] = {
      {{"apaga", "--cor", "-h"}, "\nComandos:\n"},
      {{"--empresa", "0001", "importa", "x", "/?"}, "Uso: veiculos importa ARQUIVO|- --empresa CODIGO"},
      {{"--ajuda", "importa"}, "  veiculos --empresa 0001 importa frota.csv --ensaio\n"},
      {{"busca", "-h"}, "  --carrocerias N,N...    tipos de carroceria aceitos, 0 a 5\n"},
      {{"conta", "--versao"}, "veiculos "},
      {{"grava", "--descricao", "-h"}, ""},
      {{"existe", "--", "/?"}, ""},
  };
  for (const auto &caso : aCasos) {
    const std::optional<std::string> sTexto = TextoPedido(caso.aTextos, ProgramaVeiculos());
    EXPECT_EQ(sTexto.has_value(), *caso.pTrecho != '\0') << caso.aTextos.front();
    EXPECT_NE(sTexto.value_or("").find(caso.pTrecho), std::string::npos) << caso.pTrecho;
  }
  for (const CComandoConhecido &comando : ProgramaVeiculos().aComandos) {
    const std::string sAjuda = TextoAjuda(ProgramaVeiculos(), comando);
    for (std::size_t i = 0, uiFim = 0; (uiFim = sAjuda.find('\n', i)) != std::string::npos; i = uiFim + 1) {
      EXPECT_LE(uiFim - i, 80U) << sAjuda.substr(i, uiFim - i);
    }
    for (const std::string_view sExemplo : comando.aExemplos) {
      EXPECT_NE(sExemplo.find(comando.sNome), std::string_view::npos) << sExemplo;
    }
  }
}

TEST(Argumentos, LetrasForaDoWindows1252) {
  const std::vector<std::wstring> aBons{L"--descricao", L"ba\u00FA \u20AC"};
  EXPECT_EQ(TextosDaLinhaDeComando(aBons), (CTextos{"--descricao", "ba\xFA \x80"}));
  const struct {
    std::vector<std::wstring> aPalavras;
    const char *pTrecho;
  } aCasos[] = {{{L"grava", L"--placa", L"\u65E5"}, "--placa: "},
                {{L"--uf=\u0101"}, "--uf: "},
                {{L"existe", L"\u65E5"}, "argumento 2: "}};
  for (const auto &caso : aCasos) {
    const std::string sErro = ErroUso([&] { TextosDaLinhaDeComando(caso.aPalavras); });
    EXPECT_EQ(sErro.find(caso.pTrecho), 0U) << sErro;
  }
}

TEST(Filtro, OpcoesChegamAosSeusCampos) {
  const auto filtro = Filtro(
      {"--tara-min",    "1",     "--tara-max", "2",     "--kg-min",  "3",   "--kg-max",      "4",  "--m3-min",    "5",
       "--m3-max",      "6",     "--ano-min",  "7",     "--ano-max", "8",   "--cliente",     "9",  "--descricao", "D*",
       "--antt",        "A",     "--codigo",   "C",     "--renavam", "R",   "--placa",       "P?", "--uf",        "SP",
       "--carrocerias", "5,5,0", "--rodados",  "1,3,6", "--tipos",   "0,1", "--transportes", "1"});
  const tagREG_FILTRO_VEICULOSPS esperado{10000, 20000, 30000, 40000, 50000, 60000, 7,    8,    9,  "D*", "A",
                                          "C",   "R",   "P?",  "SP",  0x21,  0x25,  0x03, 0x02, {}, 0,    {}};
  EXPECT_EQ(std::memcmp(&filtro, &esperado, sizeof filtro), 0);
  const CTextos aRuins[] = {{"--tara-min", "-1"},     {"--carrocerias", "6"}, {"--carrocerias", ""},
                            {"--carrocerias", "0;2"}, {"--rodados", "0"},     {"--rodados", "7"},
                            {"--tipos", "2"},         {"--transportes", "0,"}};
  for (const CTextos &aRuim : aRuins) {
    EXPECT_NE(ErroUso([&] { Filtro(aRuim); }).find(aRuim[0] + ": "), std::string::npos) << aRuim[0] << aRuim[1];
  }
}

TEST(Campos, SoAsOpcoesDadasMudamOVeiculo) {
  tagREG_VEICULOPS veiculo{};
  EXPECT_FALSE(AplicaCampos(Le({"grava", "--posicao", "3"}), veiculo));
  ASSERT_TRUE(AplicaCampos(Le({"grava", "--placa", "ABC1D23", "--tara", "7500,25", "--cliente", "12"}), veiculo));
  ASSERT_TRUE(AplicaCampos(Le({"grava", "--ano=2024", "--placa="}), veiculo));
  EXPECT_EQ(LeCampo(veiculo.szPlaca), "");
  EXPECT_EQ(veiculo.vTara, 75002500);
  EXPECT_EQ(veiculo.iPonteiroCliente, 12);
  EXPECT_EQ(veiculo.iAno, 2024U);
}

TEST(Progresso, LinhaDeLarguraFixa) {
  const std::string sMeio = "[" + std::string(25, '#') + std::string(25, ' ') + "]  50%";
  EXPECT_EQ(LinhaProgresso(5, 10), sMeio);
  for (const auto &[uiFeito, uiTotal] : std::vector<std::pair<std::size_t, std::size_t>>{{10, 10}, {11, 10}, {0, 0}}) {
    EXPECT_EQ(LinhaProgresso(uiFeito, uiTotal), "[" + std::string(50, '#') + "] 100%");
  }
  EXPECT_EQ(LinhaProgresso(0, 10).size(), sMeio.size());
}

}  // namespace
