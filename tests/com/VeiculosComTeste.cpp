// veiculos.exe as its user meets it: a process against the registered server, the real registry and real files.

#include <gtest/gtest.h>

#include <functional>
#include <regex>
#include <string>
#include <vector>

#include "tests/apoio/ProcessoFilho.h"
#include "tests/com/ApoioCom.h"

using namespace apoiocom;

namespace {

bool Contem(const std::string &sTexto, const std::string &sTrecho) {
  return sTexto.find(sTrecho) != std::string::npos;
}

/// A vehicle whose texts would end a line, a field or a file, where they were not taken as they are.
tagREG_VEICULOPS Dificil(int i) {
  tagREG_VEICULOPS veiculo = Veiculo("\"" + std::to_string(i));
  veiculo.vTara = -i;
  veiculo.iAno = 0xFFFFFFFF;
  veiculo.iTipoRodado = 255;
  Preenche(veiculo.szDescricao, "\";\r\n\x1A\n \t,\x81\xC3\xA7\xFF" + std::string(51, 'D'));
  Preenche(veiculo.szUF, ";\n");
  return veiculo;
}

class VeiculosCom : public testing::Test {
protected:
  /// Runs the program for a company; what it says stays in m_sSaida. The exit code and a part of the output are these.
  void Espera(DWORD dwCodigo, const std::string &sTrecho, const CString &sEmpresa, const std::string &sArgumentos) {
    // A final backslash must not take the quote along.
    const std::string sFim = sEmpresa.ends_with('\\') ? "\\\" " : "\" ";
    EXPECT_EQ(Executa(m_sPrograma, "--empresa \"" + sEmpresa + sFim + sArgumentos, &m_sSaida), dwCodigo) << sArgumentos;
    std::erase(m_sSaida, '\r');
    EXPECT_TRUE(Contem(m_sSaida, sTrecho)) << sArgumentos << ": " << m_sSaida;
  }
  void Espera(DWORD dwCodigo, const std::string &sTrecho, const std::string &sArgumentos) {
    Espera(dwCodigo, sTrecho, m_empresa.Codigo(), sArgumentos);
  }

  /// A file with these bytes; its quoted path.
  std::string Arquivo(const std::string &sConteudo) const {
    apoio::EscreveArquivo(m_pasta / "dados.csv", sConteudo);
    return Novo("dados.csv");
  }
  std::string Novo(const std::string &sNome) const { return "\"" + (m_pasta / sNome) + "\""; }

  const std::string m_sPrograma = PastaDoPrograma() + "veiculos.exe";
  const apoio::PastaTemporaria m_pasta;
  apoio::RegistroTeste m_registro;
  const Empresa m_empresa;
  std::string m_sSaida;
};

}  // namespace

TEST_F(VeiculosCom, EmpresaErradaERecusadaAntesDoServidor) {
  ASSERT_GE(EsperaServidorTerminar(), 0);
  const CString sAqui = m_empresa.Codigo();
  const CString sChave = m_empresa.ChaveDaEmpresa();
  m_registro.DefineTexto(sChave + "v", "DF", "");
  m_registro.DefineTexto(sChave + "a", "DF", m_pasta / "ausente");
  Espera(1, "o mais parecido \xE9 \"T", sAqui + "x", "grava --codigo X");
  Espera(1, "n\xE3o est\xE1 registrada", sAqui + "\\", "grava --codigo X");
  Espera(1, "est\xE1 registrada como \"T", "t" + sAqui.substr(1), "grava --codigo X");
  Espera(1, "n\xE3o tem diret\xF3rio de dados (valor DF de HKLM\\SOFTWARE", sAqui + "v", "grava --codigo X");
  for (const char *const lpComando : {"conta", "importa dados.csv", "exporta -"}) {
    Espera(1, "o diret\xF3rio de dados n\xE3o existe", sAqui + "a", lpComando);
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
      {"busca --ano-min 2002 --so-posicoes --json", 0, "[\n1\n]\n"},
      {"conta --csv", 0, "registros\n1\n"},
      {"lista --de 2 --csv", 0, "transporte\n"},
      {"lista --json --saida " + sArquivo, 0, ""},
      {"lista --saida " + sArquivo, 2, "j\xE1 existe"},
  };
  for (const auto &caso : casos) {
    Espera(caso.dwCodigo, caso.sTrecho, caso.sArgumentos);
  }
  EXPECT_TRUE(Contem(apoio::LeArquivo(m_pasta / "saida.json"), "\"tara\":-5000.5,"));
  Espera(0, "", "lista --csv --substitui --saida " + sArquivo);
  EXPECT_EQ(apoio::LeArquivo(m_pasta / "saida.json").substr(0, 10), "\xEF\xBB\xBFposicao");
}

TEST_F(VeiculosCom, ExportaEImportaNadaPerdem) {
  const Veiculos spVivo = Cria();
  Veiculos spVeiculos = Abre(m_empresa.Codigo());
  for (int i = 0; i < 501; ++i) {  // more than the program reads with one call
    LONG lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, Dificil(i)), S_OK);
  }
  spVeiculos.reset();
  const std::string sRegistros = Registros(m_empresa);
  const Empresa porArquivo;
  Espera(0, "", "exporta " + Novo("tudo.csv"));
  Espera(0, "Gravados: 501  Recusados: 0", porArquivo.Codigo(), "importa " + Novo("tudo.csv"));
  EXPECT_TRUE(Registros(porArquivo) == sRegistros);

  const Empresa porTubo;
  const auto parte = [this](const Empresa &empresa, const std::string &sComando) {
    return "\"" + m_sPrograma + "\" --codificacao windows-1252 --empresa " + empresa.Codigo() + " " + sComando + " -";
  };
  const std::string sTubo = "/s /c \"" + parte(m_empresa, "exporta") + " | " + parte(porTubo, "importa") + "\"";
  EXPECT_EQ(Executa("C:\\windows\\system32\\cmd.exe", sTubo, &m_sSaida), 0U) << m_sSaida;
  EXPECT_TRUE(Registros(porTubo) == sRegistros) << m_sSaida;
}

TEST_F(VeiculosCom, ImportaDosModosPedidos) {
  const Veiculos spVivo = Cria();
  const std::string sCsv = Arquivo("codigo;ano\nA;1\nB;x\nA;2\n;3\n;4\n");
  Espera(4, "linha 3: ano: ", "importa --ensaio " + sCsv);
  EXPECT_TRUE(Contem(m_sSaida, "Bons: 4  Recusados: 1\n")) << m_sSaida;
  Espera(4, "", "importa --tudo-ou-nada " + sCsv);
  EXPECT_FALSE(m_empresa.Existe("DFVEIVS.DAT"));

  Espera(4, "Gravados: 3  Recusados: 1  Repetidos: 1  Tempo: ", "importa --sem-repetir " + sCsv);
  Espera(0, "Gravados: 2  Recusados: 0  Repetidos: 1", "importa --sem-repetir --desde-linha 4 " + sCsv);
  EXPECT_EQ(CodigosNoDisco(m_empresa), (std::vector<std::string>{"A", "", "", "", ""}));
}

// Ended by its user it is in tests/com/interrupcao.
TEST_F(VeiculosCom, ImportacaoSemServidorDizOndeSeContinua) {
  ASSERT_GE(EsperaServidorTerminar(), 0);
  apoio::ProcessoFilho servidor("serve_ate_a_gravacao", {"5", "0"});
  ASSERT_EQ(servidor.LeLinha(), "pronto");
  Espera(5, "Gravados: 4 ", "importa " + Arquivo("codigo\nV1\nV2\nV3\nV4\nV5\nV6\n"));
  EXPECT_EQ(servidor.Espera(), 0);
  EXPECT_TRUE(Contem(m_sSaida, "linha 6 pode j\xE1 estar na base")) << m_sSaida;
  EXPECT_TRUE(Contem(m_sSaida, "gravada: 5. Para continuar: --desde-linha 6\n")) << m_sSaida;
}

// With an installation directory and a company in order.
TEST_F(VeiculosCom, DiagnosticoApontaOQueFalta) {
  m_registro.DefineTexto(CString(kChaveSuite) + "Miran Empresarial", "Path", m_pasta.Caminho());
  const CString sOutro = m_pasta / "Kalvo.exe";
  const struct {
    const char *lpNome;
    std::function<void()> quebra;
    std::string sFalhas;  ///< what stands before the dots of each failure
    std::string sTrecho;
  } casos[] = {
      {"base damaged", [this] { m_empresa.Escreve("DFVEIVS.DAT", "12345"); }, "base|", "0x810809E7"},
      {"server file missing",
       [&] {
         m_pasta.CriaSubpasta("x86");
         for (const char *const lpArquivo : {"Kalvo.exe", "QZDF_VeiculosPS.dll", "x86\\QZDF_VeiculosPS.dll"}) {
           ASSERT_TRUE(CopyFileA((PastaDoPrograma() + lpArquivo).c_str(), (m_pasta / lpArquivo).c_str(), TRUE));
         }
         ASSERT_EQ(Executa(sOutro, "/RegServer", &m_sSaida), 0U) << m_sSaida;
         ASSERT_TRUE(DeleteFileA(sOutro.c_str()));
       },
       "servidor|biblioteca de tipos|ativa\xE7\xE3o|", sOutro + " (HKLM): o arquivo n\xE3o existe"},
      {"unregistered", [] { ASSERT_EQ(ExecutaKalvo("/UnregServer"), 0U); },
       "classe|ProgID|servidor|biblioteca de tipos|interface|proxy de 32 bits|ativa\xE7\xE3o|", "0x80040154"},
  };
  const std::regex falha("\\[FALHA\\] *(.*?) \\.");
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.lpNome);
    ASSERT_GE(EsperaServidorTerminar(), 0);  // one that still runs would hide what is missing
    caso.quebra();
    Espera(1, caso.sTrecho, "diagnostico --abre");
    std::string sFalhas;
    for (std::sregex_iterator it(m_sSaida.begin(), m_sSaida.end(), falha), fim; it != fim; ++it) {
      sFalhas += (*it)[1].str() + "|";
    }
    EXPECT_EQ(sFalhas, caso.sFalhas) << m_sSaida;
    EXPECT_TRUE(Contem(m_sSaida, "o que fazer: ") && !Contem(m_sSaida, "Tudo em ordem")) << m_sSaida;
    EXPECT_EQ(ExecutaKalvo("/RegServer"), 0U);
    DeleteFileA(m_empresa.Caminho("DFVEIVS.DAT").c_str());
  }
}
