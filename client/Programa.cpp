#include "client/Programa.h"

#include <array>
#include <iterator>
#include <limits>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "client/Campos.h"
#include "client/Codificacao.h"

namespace {

using COpcoes = std::vector<COpcaoConhecida>;

constexpr std::string_view kNotasValores =
    "Valores V têm até 4 casas decimais, com vírgula ou ponto e sem separador de\n"
    "milhar. Um texto que comece com -- escreve-se --opcao=TEXTO.\n";

constexpr std::string_view kNotasTextos =
    "Textos T: exatos, ou com * e ? (menos --uf). O primeiro texto com * ou ?, na\n"
    "ordem descricao, antt, codigo, renavam, placa, decide sozinho: os de texto\n"
    "seguintes e os de tipo não são olhados.\n";

constexpr std::string_view kNotasCsv =
    "O arquivo: na primeira linha os nomes das colunas, que são os campos de grava\n"
    "sem --; separador ; e aspas onde um texto tem ; aspas ou fim de linha. O que\n"
    "exporta, le, busca e lista escrevem com --csv importa lê de volta.\n"
    "\n"
    "A codificação: uma marca (BOM) no começo do arquivo decide. Sem marca, bytes\n"
    "que são UTF-8 válido e não só ASCII são lidos como UTF-8, com um aviso; outros\n"
    "como Windows-1252. UTF-16 sem marca é recusado: diga --codificacao.\n"
    "\n"
    "Ctrl+C para depois da linha que está sendo gravada. O resumo diz então a última\n"
    "linha gravada e o --desde-linha com que se continua. A linha em que o servidor\n"
    "caiu pode já estar na base: continue com --sem-repetir.\n";

std::string_view NomeDoValor(const CCampo &campo) {
  switch (campo.eTipo) {
    case ECampo::Texto:
      return "T";
    case ECampo::Moeda:
    case ECampo::Limite:
      return "V";
    case ECampo::Numero:
      return "N";
    case ECampo::Mascara:
      return "N,N...";
  }
  return "";
}

COpcoes Junta(std::initializer_list<COpcoes> aListas) {
  COpcoes aTodas;
  for (const COpcoes &aLista : aListas) {
    aTodas.insert(aTodas.end(), aLista.begin(), aLista.end());
  }
  return aTodas;
}

COpcoes OpcoesDosCampos(std::span<const CCampo> aCampos) {
  COpcoes aOpcoes;
  for (const CCampo &campo : aCampos) {
    aOpcoes.push_back({campo.sNome, NomeDoValor(campo), campo.sRotulo});
  }
  return aOpcoes;
}

/// Whose work it is.
COpcoes DaEmpresa(bool bObrigatoria = true) {
  return {{"empresa", "CODIGO", "empresa dona da base", bObrigatoria},
          {"usuario", "N", "usuário, 0 a 65535 (padrão 1)"},
          {"sessao", "N", "sessão (padrão 1)"}};
}

constexpr COpcaoConhecida kCodificacao{"codificacao", "NOME", "windows-1252, utf-8 ou utf-16, do arquivo CSV"};
constexpr COpcaoConhecida kSubstitui{"substitui", "", "o arquivo da saída pode já existir"};

/// How and where a result is shown.
COpcoes DaSaida() {
  return {{"csv", "", "saída em CSV"},
          {"json", "", "saída em JSON"},
          {"saida", "ARQUIVO", "grava a saída neste arquivo, que não pode existir; CSV em UTF-8 com marca"},
          kSubstitui,
          kCodificacao};
}

std::vector<CComandoConhecido> Comandos() {
  return {
      {"grava",
       "",
       0,
       0,
       "inclui um veículo; com --posicao, regrava aquela posição",
       kNotasValores,
       Junta({DaEmpresa(),
              {{"posicao", "N", "regrava a posição N, trocando só os campos dados"}},
              OpcoesDosCampos(CamposVeiculo())}),
       {"--empresa 0001 grava --codigo TRK1 --placa ABC1D23 --tara 8200",
        "--empresa 0001 grava --posicao 12 --descricao \"Caminhão baú\""}},
      {"le",
       "POSICAO...",
       1,
       kSemLimite,
       "mostra os veículos das posições",
       "",
       Junta({DaEmpresa(), DaSaida()}),
       {"--empresa 0001 le 1 2 3", "--empresa 0001 le 12 --json"}},
      {"existe",
       "TEXTO",
       1,
       1,
       "procura pelo código ou, se não houver, pela placa",
       "",
       Junta({DaEmpresa(), DaSaida()}),
       {"--empresa 0001 existe TRK1", "--empresa 0001 existe ABC1D23 --csv"}},
      {"busca",
       "",
       0,
       0,
       "lista os veículos que passam por todos os filtros",
       kNotasTextos,
       Junta({DaEmpresa(),
              OpcoesDosCampos(CamposFiltro()),
              {{"so-posicoes", "", "só as posições"}, {"limite", "N", "no máximo N veículos"}},
              DaSaida()}),
       {"--empresa 0001 busca --uf SP --ano-min 2015 --rodados 1,3",
        "--empresa 0001 busca --descricao \"*TRUCK*\" --limite 10 --csv"}},
      {"lista",
       "",
       0,
       0,
       "lista todos os veículos, ou os de um trecho da base",
       "",
       Junta({DaEmpresa(), {{"de", "N", "da posição N em diante"}, {"ate", "N", "até a posição N"}}, DaSaida()}),
       {"--empresa 0001 lista --de 100 --ate 120", "--empresa 0001 lista --json --saida frota.json"}},
      {"conta",
       "",
       0,
       0,
       "mostra a quantidade de registros",
       "",
       Junta({DaEmpresa(), DaSaida()}),
       {"--empresa 0001 conta"}},
      {"exporta",
       "ARQUIVO|-",
       1,
       1,
       "grava todos os veículos em um arquivo CSV (-: saída padrão)",
       "O arquivo só toma o seu nome quando está completo. Sem --codificacao é UTF-8\n"
       "com marca, a que importa devolve cada byte dos textos.\n",
       Junta({DaEmpresa(), {kSubstitui, kCodificacao}}),
       {"--empresa 0001 exporta frota.csv", "--empresa 0001 exporta frota.csv --substitui"}},
      {"importa",
       "ARQUIVO|-",
       1,
       1,
       "inclui os veículos de um arquivo CSV (-: entrada padrão)",
       kNotasCsv,
       Junta({DaEmpresa(),
              {{"ensaio", "", "lê e confere tudo e não grava nada"},
               {"tudo-ou-nada", "", "confere todas as linhas antes e não grava nada se houver linha ruim"},
               {"sem-repetir", "", "não grava veículos cujo código já existe, na base ou antes no arquivo"},
               {"desde-linha", "N", "não olha as linhas do arquivo antes da N"},
               kCodificacao}}),
       {"--empresa 0001 importa frota.csv --ensaio", "--empresa 0001 importa frota.csv",
        "--empresa 0001 importa frota.csv --desde-linha 815 --sem-repetir"}},
      {"diagnostico",
       "",
       0,
       0,
       "confere a instalação: registro, diretórios, servidor e, com --abre, a base",
       "Sem --abre nenhuma empresa é aberta. Abrir uma base cria os arquivos que faltam\n"
       "nela e converte uma base antiga.\n",
       Junta({DaEmpresa(false), {{"abre", "", "abre a base da empresa e conta os seus registros"}}}),
       {"diagnostico", "--empresa 0001 diagnostico --abre"}},
  };
}

bool DefineCampos(const CArgumentos &argumentos, std::span<const CCampo> aCampos, void *pRegistro) {
  bool bAlgum = false;
  for (const CCampo &campo : aCampos) {
    const std::string *const pValor = argumentos.Opcao(campo.sNome);
    if (pValor == nullptr) {
      continue;
    }
    bAlgum = true;
    try {
      DefineCampo(campo, *pValor, pRegistro);
    } catch (const CErroCampo &erro) {
      throw CErroUso("--" + std::string(campo.sNome) + ": " + erro.what());
    }
  }
  return bAlgum;
}

}  // namespace

const CProgramaConhecido &ProgramaVeiculos() {
  static const CProgramaConhecido programa{
      "veiculos", KALVO_VERSAO, "--empresa CODIGO COMANDO [opções e valores]",
      "Código de saída: 0 sucesso; 1 a operação falhou; 2 uso errado; 3 não encontrado\n"
      "(existe); 4 houve linhas recusadas (importa); 5 o trabalho parou no meio.\n",
      Comandos()};
  return programa;
}

std::uint16_t UsuarioDeArgumentos(const CArgumentos &argumentos) {
  return static_cast<std::uint16_t>(argumentos.Numero("usuario", 0, std::numeric_limits<std::uint16_t>::max(), 1));
}

std::int32_t SessaoDeArgumentos(const CArgumentos &argumentos) {
  return static_cast<std::int32_t>(argumentos.Numero("sessao", 0, std::numeric_limits<std::int32_t>::max(), 1));
}

tagREG_FILTRO_VEICULOSPS FiltroDeArgumentos(const CArgumentos &argumentos) {
  tagREG_FILTRO_VEICULOSPS filtro{};
  DefineCampos(argumentos, CamposFiltro(), &filtro);
  return filtro;
}

bool AplicaCampos(const CArgumentos &argumentos, tagREG_VEICULOPS &veiculo) {
  return DefineCampos(argumentos, CamposVeiculo(), &veiculo);
}

std::optional<ECodificacao> CodificacaoDeArgumentos(const CArgumentos &argumentos) {
  const std::string *const pNome = argumentos.Opcao("codificacao");
  if (pNome == nullptr) {
    return std::nullopt;
  }
  const std::optional<ECodificacao> eNomeada = CodificacaoDoNome(*pNome);
  if (!eNomeada) {
    throw CErroUso("--codificacao: windows-1252, utf-8 ou utf-16 (utf-16le, utf-16be), e não \""_pt + *pNome + "\"");
  }
  return eNomeada;
}
