#include "qzdados/Comandos.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "client/Ajuda.h"
#include "client/Argumentos.h"
#include "client/Codificacao.h"
#include "core/platform/Plataforma.h"
#include "qzdados/Listagem.h"
#include "qzdados/Pasta.h"
#include "qzdados/Relatorio.h"
#include "qzdados/Reparo.h"

namespace {

constexpr std::uint64_t kMaiorPosicao = std::numeric_limits<std::int64_t>::max();

constexpr COpcaoConhecida kComo{"como", "NOME",
                                "toma o arquivo pelo que tem este nome no servidor, por exemplo DFVEIC.DAT para uma "
                                "cópia dele"};
constexpr COpcaoConhecida kEm{"em", "NOVO", "o arquivo a gravar, que não pode existir", true};

const CProgramaConhecido &Programa() {
  static const CProgramaConhecido programa{
      "qzdados",
      KALVO_VERSAO,
      "COMANDO [opções e valores]\n\n"
      "Examina os arquivos de dados de uma empresa sem o servidor. Só lê os arquivos\n"
      "que recebe; o que grava é sempre um arquivo novo.",
      "Código de saída: 0 são; 1 reparável; 2 danificado; 3 não pôde ser lido ou\n"
      "gravado; 4 uso errado. De vários arquivos vale o pior.\n",
      {
          {"verifica",
           "PASTA|ARQUIVO...",
           1,
           kSemLimite,
           "examina cada arquivo e escreve uma linha de cada um",
           "",
           {{"detalhes", "", "tudo o que se sabe de cada arquivo"}, kComo},
           {"verifica D:\\Dados\\0001", "verifica --detalhes D:\\Copia\\DFVEIC.DAT"}},
          {"lista",
           "ARQUIVO",
           1,
           1,
           "mostra os registros, ou as linhas de um texto",
           "",
           {{"de", "N", "da posição N em diante"},
            {"ate", "N", "até a posição N"},
            {"csv", "", "saída em CSV, e não em tabela"},
            {"json", "", "saída em JSON, e não em tabela"},
            kComo},
           {"lista DFVEIC.DAT --de 1200", "lista copia.bin --como DFVEIC.DAT --csv"}},
          {"recupera",
           "ARQUIVO",
           1,
           1,
           "grava uma cópia reparada: cabeçalho refeito, sobra do fim cortada, registros inteiros nas suas posições",
           "",
           {kEm, kComo},
           {"recupera DFVEIC.DAT --em DFVEIC.novo"}},
          {"cabecalho",
           "poe|tira ARQUIVO",
           2,
           2,
           "grava uma cópia com, ou sem, cabeçalho",
           "",
           {kEm, kComo},
           {"cabecalho poe DFVEIC.DAT --em DFVEIC.com"}},
          {"versao",
           "",
           0,
           0,
           "grava o DFVEIVS.DAT de uma base já convertida que perdeu o seu",
           "",
           {kEm},
           {"versao --em DFVEIVS.DAT"}},
      }};
  return programa;
}

/// What a file is taken for: by its own name or by the one that the user gives it.
IdentidadeArquivo Identidade(const CArgumentos &argumentos, const CString &sCaminho) {
  const std::string *const pComo = argumentos.Opcao("como");
  if (pComo != nullptr && (pComo->empty() || NomeDoCaminho(*pComo) != *pComo)) {
    throw CErroUso("--como: um nome de arquivo, sem pasta");
  }
  return IdentificaNome(pComo != nullptr ? *pComo : NomeDoCaminho(sCaminho));
}

/// The directory that an argument names, ending with a separator; empty for anything else.
CString PastaDe(const CString &sCaminho) {
  bool bExiste = false;
  const plataforma::FalhaArquivo falha = plataforma::Arquivos().Existe(sCaminho, &bExiste);
  const bool bTermina = sCaminho.empty() || sCaminho.find_last_of("\\/") == sCaminho.size() - 1;
  const CString sPasta = sCaminho + (bTermina ? "" : sCaminho.find('/') != CString::npos ? "/" : "\\");
  std::vector<CString> nomes;
  const bool bPasta = falha && !plataforma::Arquivos().Lista(sPasta, &nomes);
  return bPasta ? sPasta : CString();
}

EEstado Relata(const std::vector<ResultadoExame> &exames, bool bDetalhes, ITela &tela) {
  EEstado ePior = EEstado::Sao;
  for (const ResultadoExame &exame : exames) {
    tela.Escreve(LinhaRelatorio(exame) + (bDetalhes ? DetalhesRelatorio(exame) : CString()));
    ePior = std::max(ePior, exame.eEstado);
  }
  return ePior;
}

EEstado Verifica(const CArgumentos &argumentos, ITela &tela) {
  EEstado ePior = EEstado::Sao;
  for (const std::string &sCaminho : argumentos.Valores()) {
    const CString sPasta = PastaDe(sCaminho);
    if (!sPasta.empty() && argumentos.Tem("como")) {
      throw CErroUso("--como: vale para arquivos, não para uma pasta"_pt);
    }
    const std::vector<ResultadoExame> exames =
        sPasta.empty() ? std::vector{ExaminaArquivo(sCaminho, Identidade(argumentos, sCaminho), ProgressoNaTela(tela))}
                       : ExaminaPasta(sPasta, ProgressoNaTela(tela));
    ePior = std::max(ePior, Relata(exames, argumentos.Tem("detalhes"), tela));
  }
  return ePior;
}

EEstado Lista(const CArgumentos &argumentos, ITela &tela) {
  FaixaPosicoes faixa;
  faixa.uiDe = argumentos.Numero("de", 1, kMaiorPosicao, 1);
  faixa.uiAte = argumentos.Numero("ate", 1, kMaiorPosicao, kMaiorPosicao);
  if (faixa.uiAte < faixa.uiDe) {
    throw CErroUso("--ate: vem antes de --de");
  }
  argumentos.SoUma("csv", "json");
  const CString &sCaminho = argumentos.Valores().front();
  const EFormato eFormato = argumentos.Tem("csv")    ? EFormato::Csv
                            : argumentos.Tem("json") ? EFormato::Json
                                                     : EFormato::Tabela;
  ListaArquivo(sCaminho, Identidade(argumentos, sCaminho), eFormato, faixa, tela);
  return EEstado::Sao;
}

EEstado Cabecalho(const CArgumentos &argumentos, ITela &tela) {
  const std::string &sOque = argumentos.Valores().front();
  const std::string &sCaminho = argumentos.Valores().back();
  if (sOque != "poe" && sOque != "tira") {
    throw CErroUso("cabecalho: poe ou tira, e não "_pt + sOque);
  }
  return (sOque == "poe" ? PoeCabecalho : TiraCabecalho)(sCaminho, Identidade(argumentos, sCaminho),
                                                         *argumentos.Opcao("em"), tela);
}

EEstado Executa(const CArgumentos &argumentos, ITela &tela) {
  const std::string_view sComando = argumentos.Comando().sNome;
  if (sComando == "verifica") {
    return Verifica(argumentos, tela);
  }
  if (sComando == "lista") {
    return Lista(argumentos, tela);
  }
  if (sComando == "cabecalho") {
    return Cabecalho(argumentos, tela);
  }
  if (sComando == "versao") {
    CriaVersao(*argumentos.Opcao("em"), tela);
    return EEstado::Sao;
  }
  const std::string &sCaminho = argumentos.Valores().front();
  return Recupera(sCaminho, Identidade(argumentos, sCaminho), *argumentos.Opcao("em"), tela);
}

}  // namespace

int ExecutaQzdados(std::span<const std::string> aTextos, ITela &tela) {
  if (aTextos.empty()) {
    tela.EscreveErro(TextoAjuda(Programa()));
    return kUsoErrado;
  }
  if (const std::optional<std::string> sPedido = TextoPedido(aTextos, Programa())) {
    tela.Escreve(*sPedido);
    return 0;
  }
  try {
    return static_cast<int>(Executa(CArgumentos(aTextos, Programa()), tela));
  } catch (const CErroUso &erro) {
    tela.EscreveErro(std::string(erro.what()) + "\nUse \"qzdados --ajuda\" para ver o modo de usar.\n"_pt);
    return kUsoErrado;
  } catch (const CErroArquivo &erro) {
    tela.EscreveErro(std::string(erro.what()) + "\n");
    return static_cast<int>(EEstado::Ilegivel);
  }
}
