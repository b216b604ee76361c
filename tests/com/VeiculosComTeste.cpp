// veiculos.exe as its user meets it: a process against the registered server, the real registry and real files.

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "core/platform/ServicosSistema.h"
#include "server/ClasseVeiculos.h"
#include "tests/apoio/ArquivosDecorado.h"
#include "tests/apoio/ProcessoFilho.h"
#include "tests/apoio/ServicosTrocados.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

constexpr char kEmpresas[] = "SOFTWARE\\Wow6432Node\\Tarvel\\Empresas\\";

std::string Programa() {
  return PastaDoPrograma() + "veiculos.exe";
}

bool Contem(const std::string &sTexto, const std::string &sTrecho) {
  return sTexto.find(sTrecho) != std::string::npos;
}

/// A vehicle whose texts would end a line, a field or a file, where they were not taken as they are.
tagREG_VEICULOPS Dificil(int i) {
  tagREG_VEICULOPS veiculo = Veiculo("\"" + std::to_string(i));
  veiculo.vTara = -i;
  veiculo.vCapacidadeM3 = 0;
  veiculo.iAno = 0xFFFFFFFF;
  veiculo.iTipoRodado = 255;
  Preenche(veiculo.szDescricao, "\";\r\n\x1A\n \t,\x81\xC3\xA7\xFF" + std::string(51, 'D'));
  Preenche(veiculo.szUF, ";\n");
  return veiculo;
}

class VeiculosCom : public testing::Test {
protected:
  DWORD Roda(const Empresa &empresa, const std::string &sArgumentos) {
    const DWORD dwCodigo = Executa(Programa(), "--empresa " + empresa.Codigo() + " " + sArgumentos, &m_sSaida);
    m_sSaida.erase(std::remove(m_sSaida.begin(), m_sSaida.end(), '\r'), m_sSaida.end());
    return dwCodigo;
  }
  DWORD Roda(const std::string &sArgumentos) { return Roda(m_empresa, sArgumentos); }

  /// A file with these bytes; its quoted path.
  std::string Arquivo(const std::string &sConteudo) const {
    apoio::EscreveArquivo(m_pasta / "dados.csv", sConteudo);
    return "\"" + (m_pasta / "dados.csv") + "\"";
  }
  std::string Novo(const std::string &sNome) const { return "\"" + (m_pasta / sNome) + "\""; }

  /// Appends so many vehicles to the company.
  bool IncluiDificeis(int iQuantos) const {
    const Veiculos spVeiculos = Abre(m_empresa.Codigo());
    bool bTodos = spVeiculos != nullptr;
    for (int i = 0; bTodos && i < iQuantos; ++i) {
      LONG lPos = 0;
      bTodos = spVeiculos->Grava(&lPos, Dificil(i)) == S_OK;
    }
    return bTodos;
  }

  const apoio::PastaTemporaria m_pasta;
  const Empresa m_empresa;
  std::string m_sSaida;
};

/// A server of this class in the place of Kalvo.exe, which ends at the given write to a vehicle file.
int ServeAteAGravacao(const std::vector<std::string> &argumentos) {
  const Apartamento apartamento;
  apoio::ArquivosComFalha arquivos(plataforma::ArquivosDoSistema());
  const apoio::ServicosTrocados servicos(&arquivos);
  arquivos.Arma(
      {.operacoes = apoio::kOpGrava, .trecho = "DFVEIC.DAT", .enesima = std::stoul(argumentos[0]), .aoFalhar = [] {
         ExitProcess(0);
       }});
  CClasseVeiculos classe;
  const CRegistroClasse registro(classe);
  if (FAILED(registro.Resultado()) || FAILED(CoResumeClassObjects())) {
    return 1;
  }
  std::cout << "pronto" << std::endl;
  std::string sLinha;
  std::getline(std::cin, sLinha);
  return 1;
}

const apoio::RegistraFilha g_serve("serve_ate_a_gravacao", ServeAteAGravacao);

}  // namespace

TEST_F(VeiculosCom, EmpresaErradaERecusadaAntesDoServidor) {
  ASSERT_GE(EsperaServidorTerminar(), 0);
  apoio::RegistroTeste registro;
  const std::string sAqui = m_empresa.Codigo();
  registro.DefineTexto(kEmpresas + sAqui + "v", "DF", "");
  registro.DefineTexto(kEmpresas + sAqui + "r", "DF", "Dados\\0001");
  registro.DefineTexto(kEmpresas + sAqui + "a", "DF", m_pasta / "ausente");
  registro.DefineTexto(kEmpresas + sAqui + "f", "DF", PastaDoPrograma() + "Kalvo.exe");
  const struct {
    std::string sCodigo;
    const char *lpTrecho;
  } casos[] = {
      {sAqui + "x", "o mais parecido \xE9 \"T"},
      {sAqui + "\\", "n\xE3o est\xE1 registrada"},
      {"t" + sAqui.substr(1), "est\xE1 registrada como \"T"},
      {sAqui + "v", "n\xE3o tem diret\xF3rio de dados (valor DF de HKLM\\SOFTWARE"},
      {sAqui + "r", "n\xE3o \xE9 um caminho completo"},
      {sAqui + "a", "o diret\xF3rio de dados n\xE3o existe"},
      {sAqui + "f", "o diret\xF3rio de dados n\xE3o existe"},
  };
  const auto recusa = [&](const std::string &sCodigo, const std::string &sComando, const char *lpTrecho) {
    const std::string sCitado = "\"" + sCodigo + (sCodigo.back() == '\\' ? "\\\"" : "\"");
    EXPECT_EQ(Executa(Programa(), "--empresa " + sCitado + " " + sComando, &m_sSaida), 1U)
        << sCodigo << ": " << m_sSaida;
    EXPECT_TRUE(Contem(m_sSaida, lpTrecho)) << sCodigo << ": " << m_sSaida;
  };
  for (const auto &caso : casos) {
    recusa(caso.sCodigo, "grava --codigo X", caso.lpTrecho);
  }
  for (const char *const lpComando : {"conta", "importa dados.csv", "exporta -"}) {
    recusa(sAqui + "a", lpComando, "o diret\xF3rio de dados n\xE3o existe");
  }
  EXPECT_TRUE(Servidores().empty());
}

TEST_F(VeiculosCom, ComandosSaidasECodigos) {
  const Veiculos spVivo = Cria();  // keeps the server from ending between two commands
  const std::string sArquivo = Novo("saida.json");
  const struct {
    std::string sArgumentos;
    DWORD dwCodigo;
    std::string sTrecho;
  } casos[] = {
      {"grava", 2, "nenhum campo"},
      {"grava --posicao 0 --ano 1", 2, "--posicao"},
      {"grava --codigo X1 --ano 2001 --tara -5000,5", 0, "posi\xE7\xE3o 1\n"},
      {"grava --posicao 1 --ano 2002", 0, "posi\xE7\xE3o 1\n"},
      {"grava --posicao 2 --ano 2003", 1, "0x810809DA: "},
      {"le 1 --csv", 0, "\n1;X1;;;;2002;;0;0;0;-5000,5;0;0;;0;0\n"},
      {"le 1 2", 1, ".: X1\nPlaca ."},
      {"le 1 --json", 0,
       "[\n{\"posicao\":1,\"codigo\":\"X1\",\"placa\":\"\",\"uf\":\"\",\"descricao\":\"\",\"ano\":2002"},
      {"le 2 --saida " + sArquivo, 1, "O que fazer: veiculos conta"},
      {"existe X1", 0, "X1\n"},
      {"existe X2", 3, "n\xE3o encontrado: X2\n"},
      {"existe 12345678901234", 2, "13"},
      {"busca --ano-min 2002 --so-posicoes --json", 0, "[\n1\n]\n"},
      {"busca --ano-min 2003", 0, "Encontrados: 0"},
      {"conta --csv", 0, "registros\n1\n"},
      {"lista --de 2 --csv", 0, "transporte\n"},
      {"lista --json --saida " + sArquivo, 0, ""},
      {"lista --saida " + sArquivo, 2, "j\xE1 existe"},
      {"lista --csv --json", 2, "s\xF3 um dos dois"},
  };
  for (const auto &caso : casos) {
    EXPECT_EQ(Roda(caso.sArgumentos), caso.dwCodigo) << caso.sArgumentos << ": " << m_sSaida;
    EXPECT_TRUE(Contem(m_sSaida, caso.sTrecho)) << caso.sArgumentos << ": " << m_sSaida;
  }
  EXPECT_TRUE(Contem(apoio::LeArquivo(m_pasta / "saida.json"), "\"tara\":-5000.5,"));
  EXPECT_EQ(Roda("lista --csv --substitui --saida " + sArquivo), 0U);
  EXPECT_EQ(apoio::LeArquivo(m_pasta / "saida.json").substr(0, 10), "\xEF\xBB\xBFposicao");
}

TEST_F(VeiculosCom, ExportaEImportaNadaPerdem) {
  const Veiculos spVivo = Cria();
  ASSERT_TRUE(IncluiDificeis(501));  // more than the program reads with one call
  const std::string sRegistros = Registros(m_empresa);
  const Empresa porArquivo;
  ASSERT_EQ(Roda("exporta " + Novo("tudo.csv")), 0U) << m_sSaida;
  EXPECT_EQ(Roda(porArquivo, "importa " + Novo("tudo.csv")), 0U) << m_sSaida;
  EXPECT_TRUE(Contem(m_sSaida, "Gravados: 501  Recusados: 0")) << m_sSaida;
  EXPECT_TRUE(Registros(porArquivo) == sRegistros);

  const Empresa porTubo;
  const auto parte = [](const Empresa &empresa, const std::string &sComando) {
    return "\"" + Programa() + "\" --codificacao windows-1252 --empresa " + empresa.Codigo() + " " + sComando + " -";
  };
  const std::string sTubo = "/s /c \"" + parte(m_empresa, "exporta") + " | " + parte(porTubo, "importa") + "\"";
  EXPECT_EQ(Executa("C:\\windows\\system32\\cmd.exe", sTubo, &m_sSaida), 0U) << m_sSaida;
  EXPECT_TRUE(Registros(porTubo) == sRegistros) << m_sSaida;
}

TEST_F(VeiculosCom, ImportaDosModosPedidos) {
  const Veiculos spVivo = Cria();
  const std::string sCsv = Arquivo("codigo;ano\nA;1\nB;x\nA;2\n;3\n;4\n");
  EXPECT_EQ(Roda("importa --ensaio " + sCsv), 4U);
  EXPECT_TRUE(Contem(m_sSaida, "linha 3: ano: ")) << m_sSaida;
  EXPECT_TRUE(Contem(m_sSaida, "Bons: 4  Recusados: 1\n")) << m_sSaida;
  EXPECT_EQ(Roda("importa --tudo-ou-nada " + sCsv), 4U);
  EXPECT_EQ(GetFileAttributesA(m_empresa.Arquivo("DFVEIVS.DAT").c_str()), INVALID_FILE_ATTRIBUTES);

  EXPECT_EQ(Roda("importa --sem-repetir " + sCsv), 4U);
  EXPECT_TRUE(Contem(m_sSaida, "Gravados: 3  Recusados: 1  Repetidos: 1  Tempo: ")) << m_sSaida;
  EXPECT_EQ(Roda("importa --sem-repetir --desde-linha 4 " + sCsv), 0U);
  EXPECT_TRUE(Contem(m_sSaida, "Gravados: 2  Recusados: 0  Repetidos: 1")) << m_sSaida;
  EXPECT_EQ(CodigosNoDisco(m_empresa), (std::vector<std::string>{"A", "", "", "", ""}));
}

// Ended by its user it is in tests/com/interrupcao.
TEST_F(VeiculosCom, ImportacaoSemServidorDizOndeSeContinua) {
  std::string sCsv = "codigo\n";
  std::vector<std::string> esperados;
  for (int i = 1; i <= 9; ++i) {
    esperados.push_back("V" + std::to_string(i));
    sCsv += esperados.back() + "\n";
  }
  const std::string sArquivo = Arquivo(sCsv);
  ASSERT_GE(EsperaServidorTerminar(), 0);
  apoio::ProcessoFilho servidor("serve_ate_a_gravacao", {"5"});
  ASSERT_EQ(servidor.LeLinha(), "pronto");
  EXPECT_EQ(Roda("importa " + sArquivo), 5U) << m_sSaida;
  EXPECT_EQ(servidor.Espera(), 0);
  EXPECT_TRUE(Contem(m_sSaida, "Gravados: 4 ")) << m_sSaida;
  EXPECT_TRUE(Contem(m_sSaida, "linha 6 pode j\xE1 estar na base")) << m_sSaida;
  EXPECT_TRUE(Contem(m_sSaida, "gravada: 5. Para continuar: --desde-linha 6\n")) << m_sSaida;
  EXPECT_EQ(Roda("importa --sem-repetir --desde-linha 6 " + sArquivo), 0U) << m_sSaida;
  EXPECT_EQ(CodigosNoDisco(m_empresa), esperados);
}
