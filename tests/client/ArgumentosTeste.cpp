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
  const CTextos aTextos{"le", "3", "--csv", "--usuario=65535", "--empresa", "0001", "--", "--csv"};
  const CArgumentos argumentos(aTextos, ProgramaVeiculos());
  EXPECT_EQ(argumentos.Comando().sNome, "le");
  EXPECT_EQ(argumentos.Valores(), (CTextos{"3", "--csv"}));
  EXPECT_TRUE(argumentos.Tem("csv"));
  EXPECT_EQ(SessaoDeArgumentos(argumentos), 1);
  EXPECT_EQ(UsuarioDeArgumentos(argumentos), 65535);
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
      {{"conta", "--usuario", "65536"}, "--usuario: "},
      {{"busca", "--placa", "--uf", "SP"}, "--placa: falta"},
      {{"busca", "--csv=1"}, "--csv: "},
      {{"busca", "--uf", "SP", "--uf", "RJ"}, "--uf: "},
      {{"busca", "1"}, "valor a mais"},
      {{"le"}, "faltam valores"},
      {{"busca", "--tara-min", "-1"}, "--tara-min: "},
      {{"busca", "--carrocerias", "6"}, "--carrocerias: "},
      {{"busca", "--carrocerias", ""}, "--carrocerias: "},
      {{"busca", "--carrocerias", "0;2"}, "--carrocerias: "},
      {{"busca", "--rodados", "0"}, "--rodados: "},
      {{"busca", "--rodados", "7"}, "--rodados: "},
      {{"busca", "--tipos", "2"}, "--tipos: "},
      {{"busca", "--transportes", "0,"}, "--transportes: "},
  };
  for (const auto &caso : aCasos) {
    const std::string sErro = ErroUso([&] {
      const CArgumentos argumentos = Le(caso.aTextos);
      UsuarioDeArgumentos(argumentos);
      FiltroDeArgumentos(argumentos);
    });
    EXPECT_NE(sErro.find(caso.pTrecho), std::string::npos) << caso.pTrecho << " / " << sErro;
  }
  EXPECT_EQ(ErroUso([] { Le({"apaga"}); }), "comando desconhecido: apaga") << "nothing like it, no suggestion";
  EXPECT_NE(ErroUso([] { CArgumentos(CTextos{"conta"}, ProgramaVeiculos()); }).find("--empresa"), std::string::npos);
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
}

TEST(Argumentos, LetrasForaDoWindows1252) {
  const std::vector<std::wstring> aBons{L"--descricao", L"ba\u00FA \u20AC"};
  EXPECT_EQ(TextosDaLinhaDeComando(aBons), (CTextos{"--descricao", "ba\xFA \x80"}));
  const auto erroEm = [](const std::vector<std::wstring> &aPalavras) {
    return ErroUso([&] { TextosDaLinhaDeComando(aPalavras); });
  };
  EXPECT_TRUE(erroEm({L"grava", L"--placa", L"\u65E5"}).starts_with("--placa: "));
  EXPECT_TRUE(erroEm({L"--uf=\u0101"}).starts_with("--uf: "));
  EXPECT_TRUE(erroEm({L"existe", L"\u65E5"}).starts_with("argumento 2: "));
}

TEST(Filtro, OpcoesChegamAosSeusCampos) {
  const auto filtro = FiltroDeArgumentos(
      Le({"busca", "--tara-min", "1",     "--tara-max",  "2",   "--kg-min",      "3",  "--kg-max",
          "4",     "--m3-min",   "5",     "--m3-max",    "6",   "--ano-min",     "7",  "--ano-max",
          "8",     "--cliente",  "9",     "--descricao", "D*",  "--antt",        "A",  "--codigo",
          "C",     "--renavam",  "R",     "--placa",     "P?",  "--uf",          "SP", "--carrocerias",
          "5,5,0", "--rodados",  "1,3,6", "--tipos",     "0,1", "--transportes", "1"}));
  const tagREG_FILTRO_VEICULOSPS esperado{10000, 20000, 30000, 40000, 50000, 60000, 7,    8,    9,  "D*", "A",
                                          "C",   "R",   "P?",  "SP",  0x21,  0x25,  0x03, 0x02, {}, 0,    {}};
  EXPECT_EQ(std::memcmp(&filtro, &esperado, sizeof filtro), 0);
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
  const std::string sCheia = "[" + std::string(50, '#') + "] 100%";
  EXPECT_EQ(LinhaProgresso(5, 10), "[" + std::string(25, '#') + std::string(25, ' ') + "]  50%");
  EXPECT_EQ(LinhaProgresso(11, 10), sCheia);
  EXPECT_EQ(LinhaProgresso(0, 0), sCheia);
}

}  // namespace
