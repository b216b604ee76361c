// Damaged files: what the server says of each, what the tool says, and that the server opens what the tool repairs.

#include "client/Codificacao.h"
#include "tests/apoio/EmpresaComBase.h"
#include "tests/apoio/ValoresProprios.h"
#include "tests/qzdados/ApoioQzdados.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/BaseVeiculos.h"
#include "vehicles/DiarioConversao.h"
#include "vehicles/QZDataBaseVeiculos.h"
#include "vehicles/VersaoBaseVeiculos.h"

namespace {

using apoio::EmpresaTeste;
using apoio::Linhas;

constexpr char kVeiculos[] = "DFVEIC.DAT";
constexpr char kLista[] = "QZDATABASE_FILE_CTRL.DAT";
const std::string kCriados = Linhas({kArquivoVersao, "", kVeiculos});
/// Bytes of a header, from its beginning.
constexpr std::size_t kByteVersao = 8;
constexpr std::size_t kByteRegistro = 84;

/// A header for these data in front of them, from whichever program.
std::string Com(const CString &sNome, const std::string &sDados, const std::string &sAnotados,
                std::uint32_t uiInstalacao = 0) {
  const RegCabecalhoArquivo reg =
      MontaRegCabecalho(uiInstalacao, sNome, CalculaCrc64(sAnotados.data(), sAnotados.size()));
  return Bytes(MontaRegVersao()) + Bytes(reg) + sDados;
}

std::string Com(const CString &sNome, const std::string &sDados) {
  return Com(sNome, sDados, sDados);
}

std::string Trocado(std::string sBytes, std::size_t uiOnde) {
  sBytes[uiOnde] = static_cast<char>(sBytes[uiOnde] ^ 0x20);
  return sBytes;
}

/// With the version record of a later program.
std::string DeVersao2(const std::string &sBytes) {
  std::string sVersao("\2\0\0\0\0\0\0\0", 8);
  sVersao += Bytes(CalculaCrc64(sVersao.data(), 2));
  sVersao += Bytes(CalculaCrc64(sVersao.data() + 8, 8));
  return sVersao + sBytes.substr(sVersao.size());
}

void EscreveBase(const EmpresaTeste &empresa) {
  empresa.Escreve(kVeiculos, Com(kVeiculos, Base("AB")));
  empresa.Escreve(kArquivoVersao, Com(kArquivoVersao, kVersao1));
  empresa.Escreve(kLista, Com(kLista, kCriados));
}

/// How many records the server finds in the company, or the code that it refuses it with.
std::uint32_t Abre(const EmpresaTeste &empresa) {
  const apoio::ChaveCabecalho cabecalho(true);
  CBaseVeiculos base;
  const HRESULT hr = base.Inicializa(empresa.Codigo(), 7, 42);
  std::uint32_t uiRegistros = 0;
  EXPECT_TRUE(Falhou(hr) || !Falhou(base.GetQuantidadeRegistros(&uiRegistros)));
  return Falhou(hr) ? BitsResultado(hr) : uiRegistros;
}

struct Dano {
  const char *lpNome;  ///< of the case
  const char *lpArquivo;
  std::string sBytes;
  std::uint32_t uiServidor;  ///< what the server comes to
  int iEstado;
  std::string sTrecho;
  std::string sReparado{};        ///< of what can be repaired
  std::uint32_t uiRegistros = 2;  ///< that the server finds then
};

std::vector<Dano> Danos() {
  const std::string sBase = Base("AB");
  const std::string sTudo = Com(kVeiculos, sBase);
  return {
      {"são", kVeiculos, sTudo, 2, 0, "2 registros, com cabe"},
      {"registro em branco", kVeiculos, std::string(256, '\0'), 1, 0, "1 registro, sem cabe"},
      {"anexado depois do cabeçalho", kVeiculos, Com(kVeiculos, Base("ABC"), sBase, 77), 0x81080A42, 1,
       "conferem 2 de 3 registros", Com(kVeiculos, Base("ABC"), Base("ABC"), 77), 3},
      {"primeiro depois do cabeçalho", kVeiculos, Com(kVeiculos, Base("A"), ""), 0x81080A42, 1,
       "conferem 0 de 1 registro", Com(kVeiculos, Base("A")), 1},
      {"sobra com cabeçalho", kVeiculos, sTudo + "abc", 0x81080A42, 1, "3 bytes a mais", sTudo},
      {"sobra anotada", kVeiculos, Com(kVeiculos, sBase + "abc"), 0x810809D8, 1, "0x810809D8", sTudo},
      {"só a sobra", kVeiculos, std::string(255, 'x'), 0x810809D8, 2, "255 bytes a mais"},
      {"registro do cabeçalho", kVeiculos, Trocado(sTudo, kByteRegistro), 0x81080A3F, 1, "0x81080A3F", sTudo},
      {"registro de versão", kVeiculos, Trocado(sTudo, kByteVersao), 0x810809D8, 1, "registro de vers", sTudo},
      {"dois cabeçalhos", kVeiculos, Com(kVeiculos, Trocado(sTudo, kByteVersao)), 0x810809D8, 1, "2 cabe", sTudo},
      {"dois cabeçalhos e sobra", kVeiculos,
       Com(kVeiculos, Trocado(Com(kVeiculos, Base("ABC") + "xy", sBase), kByteVersao)), 0x810809D8, 1,
       "conferem 2 de 3 registros", Com(kVeiculos, Base("ABC")), 3},
      {"só o nome confere", kVeiculos, Trocado(Trocado(sTudo, kByteVersao), kByteRegistro), 0x810809D8, 1,
       "registro de vers", sTudo},
      {"nome de outro", kVeiculos, Com("OUTRO.DAT", sBase), 0x81080A43, 2, "outro arquivo: OUTRO.DAT"},
      {"versão 2", kVeiculos, DeVersao2(sTudo), 0x81080A3E, 2, "0x81080A3E"},
      {"fim no cabeçalho", kVeiculos, sTudo.substr(0, 91), 0x81080A3F, 2, "termina dentro"},
      {"registros sumidos", kVeiculos, sTudo.substr(0, 92), 0x81080A42, 2, "sumiram"},
      {"versão curta", kArquivoVersao, kVersao1.substr(0, 15), 0x810809E7, 2, "0x810809E7"},
      {"versão comprida", kArquivoVersao, kVersao1 + kVersao1, 0x810809E7, 1, "16 bytes a mais", kVersao1},
      {"versão desmentida", kArquivoVersao, Com(kArquivoVersao, kVersao1, ""), 0x81080A42, 1, "0x81080A42",
       Com(kArquivoVersao, kVersao1)},
      {"base mais nova", kArquivoVersao, '\2' + kVersao1.substr(1), 0x810809C7, 2, "0x810809C7"},
      {"lista desmentida", kLista, Com(kLista, kCriados, Linhas({kArquivoVersao})), 0x81080A42, 1, "3 linhas",
       Com(kLista, kCriados)},
      {"lista com dois cabeçalhos", kLista, Com(kLista, Trocado(Com(kLista, kCriados), kByteVersao)), 2, 1, "2 cabe",
       Com(kLista, kCriados)},
      {"lista cortada no tamanho", kLista, kCriados + std::string("\x0A\0", 2), 2, 1, "2 bytes a mais", kCriados},
      {"tamanho sem fim", kLista, "\xFF\xFF\xFF\xFFxx", 2, 1, "6 bytes a mais", ""},
  };
}

TEST(Danos, OQueOServidorRecusaEDitoEOQueEReparadoElePodeAbrir) {
  for (const Dano &dano : Danos()) {
    SCOPED_TRACE(dano.lpNome);
    const EmpresaTeste semReparo;
    const EmpresaTeste empresa;
    for (const EmpresaTeste *pEmpresa : {&semReparo, &empresa}) {
      EscreveBase(*pEmpresa);
      pEmpresa->Escreve(dano.lpArquivo, dano.sBytes);
    }
    EXPECT_EQ(Abre(semReparo), dano.uiServidor);

    const std::string sArquivo = empresa.Caminho(dano.lpArquivo);
    const Rodada verificada({"verifica", sArquivo});
    EXPECT_EQ(verificada.iCodigo, dano.iEstado) << verificada.Saida();
    EXPECT_TRUE(Contem(verificada.Saida(), *De8Para1252(dano.sTrecho))) << verificada.Saida();
    EXPECT_EQ(Rodada({"verifica", empresa.Caminho("")}).iCodigo, dano.iEstado);

    const bool bReparavel = dano.iEstado == 1;
    const Rodada recuperada({"recupera", sArquivo, "--em", empresa.Caminho("NOVO")});
    EXPECT_EQ(recuperada.iCodigo, bReparavel ? 0 : dano.iEstado) << recuperada.Erros();
    EXPECT_EQ(Contem(recuperada.Saida(), "nada a recuperar"), dano.iEstado == 0) << recuperada.Saida();
    ASSERT_EQ(empresa.Existe("NOVO"), bReparavel);
    if (bReparavel) {
      EXPECT_EQ(empresa.Le("NOVO"), dano.sReparado);
      empresa.Escreve(dano.lpArquivo, dano.sReparado);
      EXPECT_EQ(Abre(empresa), dano.uiRegistros);
    }
  }
}

TEST(Cabecalho, PostoETirado) {
  const EmpresaTeste empresa;
  empresa.Escreve(kVeiculos, Base("AB"));
  empresa.Escreve("SOBRA", Base("AB") + "x");
  const auto copia = [&](const char *lpOque, const char *lpDe, const char *lpEm) {
    return Rodada({"cabecalho", lpOque, empresa.Caminho(lpDe), "--em", empresa.Caminho(lpEm), "--como", "dfveic.dat"})
        .iCodigo;
  };
  EXPECT_EQ(copia("poe", kVeiculos, "COM"), 0);
  EXPECT_EQ(empresa.Le("COM"), Com(kVeiculos, Base("AB")));
  EXPECT_EQ(copia("tira", "COM", "SEM"), 0);
  EXPECT_EQ(empresa.Le("SEM"), Base("AB"));

  // What is there already, or must be repaired first, is not written.
  EXPECT_EQ(copia("tira", kVeiculos, "X"), 0);
  EXPECT_EQ(copia("poe", "COM", "X"), 0);
  EXPECT_EQ(copia("poe", "SOBRA", "X"), 1);
  EXPECT_FALSE(empresa.Existe("X"));
}

/// The remedy for a version file that is missing, and the one for vehicles that are to begin empty.
TEST(Remedios, ArquivoListadoQueFalta) {
  const EmpresaTeste vazia;
  vazia.Escreve(kArquivoVersao, kVersao1);
  vazia.Escreve(kLista, Linhas({kArquivoVersao, "FALTA.DAT", kVeiculos}));
  const EmpresaTeste semVersao;
  semVersao.Escreve(kVeiculos, Base("AB"));
  semVersao.Escreve(kLista, kCriados);
  const std::vector<std::string> aVersao{"versao", "--em", semVersao.Caminho(kArquivoVersao)};
  for (const EmpresaTeste *pEmpresa : {&vazia, &semVersao}) {
    const Rodada rodada({"verifica", pEmpresa->Caminho("")});
    EXPECT_EQ(rodada.iCodigo, 2);
    EXPECT_TRUE(Contem(rodada.Saida(), "0x81080A50")) << rodada.Saida();
    EXPECT_FALSE(Contem(rodada.Saida(), "retira o primeiro")) << rodada.Saida();
    EXPECT_EQ(Abre(*pEmpresa), 0x81080A50U);
  }
  vazia.Escreve(kVeiculos, "");
  EXPECT_EQ(Abre(vazia), 0U);
  EXPECT_EQ(Rodada(aVersao).iCodigo, 0);
  EXPECT_EQ(Abre(semVersao), 2U);
  EXPECT_EQ(Rodada(aVersao).iCodigo, 3);
}

TEST(Pasta, SobrasEDiario) {
  const auto diario = [](const std::string &sConvertidos) {
    RegDiario reg{
        kVersaoBaseVeiculos, {}, {sConvertidos.size(), CalculaCrc64(sConvertidos.data(), sConvertidos.size())}, 0};
    reg.uiCrcDiario = CalculaCrc64(&reg, offsetof(RegDiario, uiCrcDiario));
    return Bytes(reg);
  };
  const struct {
    const char *lpNome;
    std::string sVeiculos;
    std::string sDiario;
    bool bVersao;
    int iEstado;
    const char *lpTrecho;
  } aCasos[] = {
      {"falta trocar", Base("ZAB"), diario(Base("AB")), false, 0, "DFVEIVSD.TRA: "},
      {"falta a versão, com cabeçalho", Com(kVeiculos, Base("AB")), diario(Base("AB")), false, 0, "com cabe"},
      {"outra base", Base("ZAC"), diario(Base("AB")), false, 2, "0x810809D6"},
      {"outra base, já convertida", Base("ZAC"), diario(Base("AB")), true, 0, "3 registros"},
      {"diário rasgado", Base("ZAC"), Trocado(diario(Base("AB")), 9), false, 0, "retira o primeiro"},
      {"versão 0", Base("ZAC"), "", false, 0, "retira o primeiro"},
      {"sem veículos", "", "", false, 0,
       "0 registros, sem cabe\xE7"
       "alho\n"},
  };
  for (const auto &caso : aCasos) {
    SCOPED_TRACE(caso.lpNome);
    const EmpresaTeste empresa;
    empresa.Escreve(kVeiculos, caso.sVeiculos);
    empresa.Escreve("DFVEIC.INT", "abc");
    empresa.Escreve("DFVEIC.TRA", "abc");
    if (!caso.sDiario.empty()) {
      empresa.Escreve(kArquivoDiario, caso.sDiario);
    }
    if (caso.bVersao) {
      empresa.Escreve(kArquivoVersao, kVersao1);
    }
    const Rodada rodada({"verifica", empresa.Caminho("")});
    EXPECT_EQ(rodada.iCodigo, caso.iEstado) << rodada.Saida();
    EXPECT_TRUE(Contem(rodada.Saida(), caso.lpTrecho)) << rodada.Saida();
    EXPECT_EQ(Contem(rodada.Saida(), "retira o primeiro"), std::string(caso.lpTrecho) == "retira o primeiro");
    EXPECT_TRUE(Contem(rodada.Saida(), "DFVEIC.INT: inten\xE7\xE3o de grava\xE7\xE3o; sobra")) << rodada.Saida();
  }
}

}  // namespace
