#include "client/Comandos.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <limits>
#include <memory>
#include <utility>

#include "client/BarraProgresso.h"
#include "client/Campos.h"
#include "client/Codificacao.h"
#include "client/Console.h"
#include "client/Diagnostico.h"
#include "client/Importacao.h"
#include "client/QZVeiculosCliente.h"
#include "client/Saida.h"

namespace {

// Records of one LePonteiros call: enough to make the calls few, small enough to keep each message below 100 KB.
constexpr std::size_t kBlocoLeitura = 500;
constexpr std::size_t kSemLimite = std::numeric_limits<std::size_t>::max();

std::vector<COpcaoConhecida> OpcoesDosCampos(std::span<const CCampo> aCampos,
                                             std::initializer_list<COpcaoConhecida> aOutras) {
  std::vector<COpcaoConhecida> aOpcoes(aOutras);
  for (const CCampo &campo : aCampos) {
    aOpcoes.push_back({campo.sNome, true});
  }
  return aOpcoes;
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

// The service of the command line's company, user and session.
class CServico {
public:
  explicit CServico(const CArgumentos &argumentos)
      : m_veiculos(*argumentos.Opcao("empresa"), UsuarioDeArgumentos(argumentos), SessaoDeArgumentos(argumentos)) {}
  CQZVeiculos *operator->() { return &m_veiculos; }

private:
  CQZApartamento m_apartamento;
  CQZVeiculos m_veiculos;
};

eSaida Grava(const CArgumentos &argumentos) {
  constexpr std::uint64_t kMaiorPosicao = std::numeric_limits<LONG>::max();
  const auto lPosicao = static_cast<LONG>(argumentos.Numero("posicao", 1, kMaiorPosicao, 0));
  tagREG_VEICULOPS veiculo{};
  if (!AplicaCampos(argumentos, veiculo)) {
    throw CErroUso("nenhum campo informado para gravar");
  }
  CServico servico(argumentos);
  if (lPosicao != 0) {
    veiculo = servico->Le(lPosicao);
    AplicaCampos(argumentos, veiculo);
  }
  const LONG lGravada = servico->Grava(lPosicao, veiculo);
  Escreve("Veículo gravado na posição "_pt + std::to_string(lGravada) + "\n");
  return kSucesso;
}

eSaida Le(const CArgumentos &argumentos) {
  const bool bCsv = argumentos.Tem("csv");
  std::vector<LONG> aPosicoes;
  for (const std::string &sValor : argumentos.Valores()) {
    aPosicoes.push_back(PosicaoDeTexto(sValor));
  }
  CServico servico(argumentos);
  if (bCsv) {
    Escreve(TituloCsv());
  }
  // One by one, so that the records before one that cannot be read are shown.
  for (const LONG lPosicao : aPosicoes) {
    const tagREG_VEICULOPS veiculo = servico->Le(lPosicao);
    Escreve(bCsv ? LinhaCsv(lPosicao, veiculo) : FichaVeiculo(lPosicao, veiculo) + "\n");
  }
  return kSucesso;
}

eSaida Existe(const CArgumentos &argumentos) {
  const std::string &sTexto = argumentos.Valores().front();
  constexpr std::size_t kMaximo = sizeof(tagREG_VEICULOPS::szCodigo);
  if (sTexto.empty() || sTexto.size() > kMaximo) {
    throw CErroUso("existe: o texto deve ter de 1 a " + std::to_string(kMaximo) + " caracteres");
  }
  CServico servico(argumentos);
  tagREG_VEICULOPS veiculo;
  const LONG lPosicao = servico->Existe(sTexto, veiculo);
  if (lPosicao == 0) {
    EscreveErro("não encontrado: "_pt + sTexto + "\n");
    return kNaoEncontrado;
  }
  Escreve(argumentos.Tem("csv") ? TituloCsv() + LinhaCsv(lPosicao, veiculo) : FichaVeiculo(lPosicao, veiculo));
  return kSucesso;
}

void EscreveVeiculos(CServico &servico, const std::vector<LONG> &aPosicoes, bool bCsv) {
  Escreve(bCsv ? TituloCsv() : TituloLista());
  for (auto it = aPosicoes.begin(); it != aPosicoes.end();) {
    const std::size_t uiBloco = std::min(kBlocoLeitura, static_cast<std::size_t>(aPosicoes.end() - it));
    const std::vector<LONG> aBloco(it, it + static_cast<std::ptrdiff_t>(uiBloco));
    const std::vector<tagREG_VEICULOPS> aVeiculos = servico->LePonteiros(aBloco);
    for (std::size_t i = 0; i < uiBloco; ++i) {
      Escreve(bCsv ? LinhaCsv(aBloco[i], aVeiculos[i]) : LinhaLista(aBloco[i], aVeiculos[i]));
    }
    it += static_cast<std::ptrdiff_t>(uiBloco);
  }
}

eSaida Busca(const CArgumentos &argumentos) {
  const bool bCsv = argumentos.Tem("csv");
  const tagREG_FILTRO_VEICULOSPS filtro = FiltroDeArgumentos(argumentos);
  const std::uint64_t uiLimite = argumentos.Numero("limite", 0, kSemLimite, kSemLimite);
  CServico servico(argumentos);
  std::vector<LONG> aPosicoes = servico->BuscaPonteiros(filtro);
  const std::size_t uiEncontrados = aPosicoes.size();
  aPosicoes.resize(std::min<std::uint64_t>(uiEncontrados, uiLimite));
  if (argumentos.Tem("so-posicoes")) {
    Escreve(bCsv ? "posicao\n" : "");
    for (const LONG lPosicao : aPosicoes) {
      Escreve(std::to_string(lPosicao) + "\n");
    }
    return kSucesso;
  }
  EscreveVeiculos(servico, aPosicoes, bCsv);
  if (!bCsv) {
    Escreve("Encontrados: " + std::to_string(uiEncontrados) + "  Mostrados: " + std::to_string(aPosicoes.size()) +
            "\n");
  }
  return kSucesso;
}

eSaida Conta(const CArgumentos &argumentos) {
  CServico servico(argumentos);
  Escreve(std::to_string(servico->GetQuantidadeRegistros()) + "\n");
  return kSucesso;
}

std::string LeArquivo(const std::string &sNome) {
  struct CFecha {
    void operator()(std::FILE *pArquivo) const { std::fclose(pArquivo); }
  };
  const std::unique_ptr<std::FILE, CFecha> spArquivo(_wfopen(De1252Para16(sNome).c_str(), L"rb"));
  std::string sConteudo;
  if (spArquivo) {
    std::array<char, 65536> aBloco;
    while (const std::size_t uiLidos = std::fread(aBloco.data(), 1, aBloco.size(), spArquivo.get())) {
      sConteudo.append(aBloco.data(), uiLidos);
    }
  }
  if (!spArquivo || std::ferror(spArquivo.get()) != 0) {
    throw std::runtime_error("o arquivo não pôde ser lido: "_pt + sNome);
  }
  return sConteudo;
}

void DizRecusada(const CLinhaCsv &linha) {
  EscreveErro("linha " + std::to_string(linha.uiLinha) + ": " + linha.sErro + "\n");
}

std::string ResumoImportacao(const CResultadoImportacao &resultado, double dSegundos) {
  std::array<char, 120> aTempo;
  std::snprintf(aTempo.data(), aTempo.size(), "  Tempo: %.2f s  (%.0f registros/s)\n", dSegundos,
                dSegundos > 0 ? static_cast<double>(resultado.uiGravados) / dSegundos : 0.0);
  std::string sTempo = aTempo.data();
  std::replace(sTempo.begin(), sTempo.end(), '.', ',');
  return "Gravados: " + std::to_string(resultado.uiGravados) + "  Recusados: " + std::to_string(resultado.uiRecusados) +
         sTempo;
}

eSaida Importa(const CArgumentos &argumentos) {
  const std::string sConteudo = LeArquivo(argumentos.Valores().front());
  const CLeitorCsv leitor(sConteudo);
  if (argumentos.Tem("tudo-ou-nada")) {
    const std::size_t uiRecusados = ValidaCsv(leitor, DizRecusada);
    if (uiRecusados != 0) {
      Escreve("Gravados: 0  Recusados: " + std::to_string(uiRecusados) + "\n");
      return kLinhasRecusadas;
    }
  }

  CServico servico(argumentos);
  CBarraProgresso barra;
  CResultadoImportacao resultado;
  const CPassosImportacao passos{[&](const tagREG_VEICULOPS &veiculo) { servico->Inclui(veiculo); },
                                 [&](const CLinhaCsv &linha) {
                                   barra.Limpa();
                                   DizRecusada(linha);
                                 },
                                 [&](std::size_t uiFeito, std::size_t uiTotal) { barra.Mostra(uiFeito, uiTotal); }};
  const auto tInicio = std::chrono::steady_clock::now();
  const auto escreveResumo = [&] {
    barra.Limpa();
    const std::chrono::duration<double> tempo = std::chrono::steady_clock::now() - tInicio;
    Escreve(ResumoImportacao(resultado, tempo.count()));
  };
  try {
    ImportaCsv(leitor, passos, resultado);
  } catch (const CQZErroVeiculos &) {
    escreveResumo();
    EscreveErro("a importação parou na linha "_pt + std::to_string(resultado.uiLinha) + "\n");
    throw;
  }
  escreveResumo();
  return resultado.uiRecusados == 0 ? kSucesso : kLinhasRecusadas;
}

eSaida Diagnostico(const CArgumentos &argumentos) {
  const std::string *const pEmpresa = argumentos.Opcao("empresa");
  return Diagnostica(pEmpresa != nullptr ? *pEmpresa : "") ? kSucesso : kOperacaoFalhou;
}

using FComando = eSaida (*)(const CArgumentos &);

struct CComando {
  CComandoConhecido conhecido;
  FComando Executa;
};

// A command on one company: its own options and those that say whose work it is.
CComandoConhecido DaEmpresa(std::string_view sNome, std::vector<COpcaoConhecida> aOpcoes, std::size_t uiMinimoValores,
                            std::size_t uiMaximoValores) {
  aOpcoes.insert(aOpcoes.end(), {{"empresa", true, true}, {"usuario", true}, {"sessao", true}});
  return {sNome, std::move(aOpcoes), uiMinimoValores, uiMaximoValores};
}

// The names and the functions, side by side; ComandosConhecidos hands out the first half.
const std::vector<CComando> &Comandos() {
  static const std::vector<CComando> aComandos{
      {DaEmpresa("grava", OpcoesDosCampos(CamposVeiculo(), {{"posicao", true}}), 0, 0), Grava},
      {DaEmpresa("le", {{"csv", false}}, 1, kSemLimite), Le},
      {DaEmpresa("existe", {{"csv", false}}, 1, 1), Existe},
      {DaEmpresa("busca", OpcoesDosCampos(CamposFiltro(), {{"csv", false}, {"so-posicoes", false}, {"limite", true}}),
                 0, 0),
       Busca},
      {DaEmpresa("conta", {}, 0, 0), Conta},
      {DaEmpresa("importa", {{"tudo-ou-nada", false}}, 1, 1), Importa},
      {{"diagnostico", {{"empresa", true}, {"usuario", true}, {"sessao", true}}, 0, 0}, Diagnostico},
  };
  return aComandos;
}

}  // namespace

std::span<const CComandoConhecido> ComandosConhecidos() {
  static const std::vector<CComandoConhecido> aConhecidos = [] {
    std::vector<CComandoConhecido> aLista;
    for (const CComando &comando : Comandos()) {
      aLista.push_back(comando.conhecido);
    }
    return aLista;
  }();
  return aConhecidos;
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

eSaida ExecutaComando(const CArgumentos &argumentos) {
  const auto &aComandos = Comandos();
  const auto it = std::find_if(aComandos.begin(), aComandos.end(), [&](const CComando &comando) {
    return comando.conhecido.sNome == argumentos.Comando().sNome;
  });
  return it->Executa(argumentos);
}
