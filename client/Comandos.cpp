#include "client/Comandos.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "client/BarraProgresso.h"
#include "client/Campos.h"
#include "client/Codificacao.h"
#include "client/Console.h"
#include "client/Destino.h"
#include "client/Diagnostico.h"
#include "client/EmpresaRegistrada.h"
#include "client/Importacao.h"
#include "client/Interrupcao.h"
#include "client/QZVeiculosCliente.h"
#include "client/Relacao.h"
#include "client/Remedios.h"
#include "client/Saida.h"

namespace {

// Records of one LePonteiros call: enough to make the calls few, small enough to keep each message below 100 KB.
constexpr std::size_t kBlocoLeitura = 500;
constexpr std::uint64_t kSemLimite = std::numeric_limits<std::size_t>::max();
constexpr std::uint64_t kMaiorPosicao = std::numeric_limits<LONG>::max();

// The service of the command line's company, user and session.
class CServico {
public:
  explicit CServico(const CArgumentos &argumentos)
      : m_veiculos(Empresa(argumentos), UsuarioDeArgumentos(argumentos), SessaoDeArgumentos(argumentos)) {}
  CQZVeiculos *operator->() { return &m_veiculos; }

private:
  static const std::string &Empresa(const CArgumentos &argumentos) {
    const std::string &sCodigo = *argumentos.Opcao("empresa");
    ExigeEmpresa(sCodigo);
    return sCodigo;
  }

  CQZApartamento m_apartamento;
  CQZVeiculos m_veiculos;
};

// Hands the records of the positions to fVeiculo, in order, a block a call.
template <typename F>
void PercorreVeiculos(CServico &servico, const std::vector<LONG> &aPosicoes, F fVeiculo) {
  const CTrabalhoInterrompivel trabalho;
  for (auto it = aPosicoes.begin(); it != aPosicoes.end();) {
    if (CTrabalhoInterrompivel::Pedida()) {
      throw CInterrompido();
    }
    const std::size_t uiBloco = std::min(kBlocoLeitura, static_cast<std::size_t>(aPosicoes.end() - it));
    const std::vector<LONG> aBloco(it, it + static_cast<std::ptrdiff_t>(uiBloco));
    const std::vector<tagREG_VEICULOPS> aVeiculos = servico->LePonteiros(aBloco);
    for (std::size_t i = 0; i < uiBloco; ++i) {
      fVeiculo(aBloco[i], aVeiculos[i]);
    }
    it += static_cast<std::ptrdiff_t>(uiBloco);
  }
}

// The positions of the base from uiDe to uiAte, as far as there are any.
std::vector<LONG> Posicoes(CServico &servico, std::uint64_t uiDe, std::uint64_t uiAte) {
  const std::uint64_t uiUltima = std::min<std::uint64_t>(uiAte, servico->GetQuantidadeRegistros());
  std::vector<LONG> aPosicoes;
  for (std::uint64_t uiPosicao = uiDe; uiPosicao <= uiUltima; ++uiPosicao) {
    aPosicoes.push_back(static_cast<LONG>(uiPosicao));
  }
  return aPosicoes;
}

eSaida Grava(const CArgumentos &argumentos) {
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

// As a row of its format; in a table with all its fields, a line each.
void MostraVeiculo(CRelacao &relacao, LONG lPosicao, const tagREG_VEICULOPS &veiculo) {
  if (relacao.Formato() == eFormato::tabela) {
    relacao.Linha(FichaVeiculo(lPosicao, veiculo));
  } else {
    relacao.Veiculo(lPosicao, veiculo);
  }
}

eSaida Le(const CArgumentos &argumentos) {
  std::vector<LONG> aPosicoes;
  for (const std::string &sValor : argumentos.Valores()) {
    aPosicoes.push_back(PosicaoDeTexto(sValor));
  }
  CRelacao relacao(argumentos);
  CServico servico(argumentos);
  relacao.Comeca("", TituloCsv());
  // One by one, so that the records before one that cannot be read are shown.
  for (const LONG lPosicao : aPosicoes) {
    MostraVeiculo(relacao, lPosicao, servico->Le(lPosicao));
  }
  relacao.Acaba();
  return kSucesso;
}

eSaida Existe(const CArgumentos &argumentos) {
  const std::string &sTexto = argumentos.Valores().front();
  constexpr std::size_t kMaximo = sizeof(tagREG_VEICULOPS::szCodigo);
  if (sTexto.empty() || sTexto.size() > kMaximo) {
    throw CErroUso("existe: o texto deve ter de 1 a " + std::to_string(kMaximo) + " caracteres");
  }
  CRelacao relacao(argumentos);
  CServico servico(argumentos);
  tagREG_VEICULOPS veiculo;
  const LONG lPosicao = servico->Existe(sTexto, veiculo);
  if (lPosicao == 0) {
    EscreveErro("não encontrado: "_pt + sTexto + "\n");
    return kNaoEncontrado;
  }
  relacao.Comeca("", TituloCsv());
  MostraVeiculo(relacao, lPosicao, veiculo);
  relacao.Acaba();
  return kSucesso;
}

void ListaVeiculos(CServico &servico, const std::vector<LONG> &aPosicoes, CRelacao &relacao) {
  relacao.Comeca(TituloLista(), TituloCsv());
  PercorreVeiculos(servico, aPosicoes, [&](LONG lPosicao, const auto &veiculo) { relacao.Veiculo(lPosicao, veiculo); });
}

eSaida Busca(const CArgumentos &argumentos) {
  const tagREG_FILTRO_VEICULOSPS filtro = FiltroDeArgumentos(argumentos);
  const std::uint64_t uiLimite = argumentos.Numero("limite", 0, kSemLimite, kSemLimite);
  CRelacao relacao(argumentos);
  CServico servico(argumentos);
  std::vector<LONG> aPosicoes = servico->BuscaPonteiros(filtro);
  const std::size_t uiEncontrados = aPosicoes.size();
  aPosicoes.resize(std::min<std::uint64_t>(uiEncontrados, uiLimite));
  if (argumentos.Tem("so-posicoes")) {
    relacao.Comeca("", "posicao");
    for (const LONG lPosicao : aPosicoes) {
      relacao.Linha(std::to_string(lPosicao));
    }
  } else {
    ListaVeiculos(servico, aPosicoes, relacao);
    if (relacao.Formato() == eFormato::tabela) {
      relacao.Linha("Encontrados: " + std::to_string(uiEncontrados) +
                    "  Mostrados: " + std::to_string(aPosicoes.size()));
    }
  }
  relacao.Acaba();
  return kSucesso;
}

eSaida Lista(const CArgumentos &argumentos) {
  const std::uint64_t uiDe = argumentos.Numero("de", 1, kMaiorPosicao, 1);
  const std::uint64_t uiAte = argumentos.Numero("ate", 1, kMaiorPosicao, kMaiorPosicao);
  if (uiAte < uiDe) {
    throw CErroUso("--ate: vem antes de --de");
  }
  CRelacao relacao(argumentos);
  CServico servico(argumentos);
  ListaVeiculos(servico, Posicoes(servico, uiDe, uiAte), relacao);
  relacao.Acaba();
  return kSucesso;
}

eSaida Conta(const CArgumentos &argumentos) {
  CRelacao relacao(argumentos);
  CServico servico(argumentos);
  const std::string sQuantidade = std::to_string(servico->GetQuantidadeRegistros());
  relacao.Comeca("", "registros");
  relacao.Linha(relacao.Formato() == eFormato::json ? "{\"registros\":" + sQuantidade + "}" : sQuantidade);
  relacao.Acaba();
  return kSucesso;
}

eSaida Exporta(const CArgumentos &argumentos) {
  CRelacao relacao(argumentos, argumentos.Valores().front());
  CServico servico(argumentos);
  const std::vector<LONG> aPosicoes = Posicoes(servico, 1, kMaiorPosicao);
  relacao.Comeca("", TituloCsv());
  CBarraProgresso barra;
  std::size_t uiFeitos = 0;
  PercorreVeiculos(servico, aPosicoes, [&](LONG lPosicao, const auto &veiculo) {
    relacao.Veiculo(lPosicao, veiculo);
    barra.Mostra(++uiFeitos, aPosicoes.size());
  });
  relacao.Acaba();
  barra.Limpa();
  EscreveErro("Exportados: " + std::to_string(aPosicoes.size()) + "\n");
  return kSucesso;
}

CCodigosConhecidos CodigosDaBase(CServico &servico) {
  CCodigosConhecidos codigos;
  PercorreVeiculos(servico, Posicoes(servico, 1, kMaiorPosicao),
                   [&](LONG, const auto &veiculo) { codigos.Acrescenta(veiculo); });
  return codigos;
}

// Whether a write that failed may have happened nevertheless: the call was lost on its way, or broke off.
bool PodeTerGravado(HRESULT hr) {
  const auto uiOrigem = static_cast<std::uint32_t>(hr) >> 16;
  constexpr std::uint32_t kDoServidor = 0x8108;
  constexpr std::uint32_t kDeArquivo = 0x8004;
  return (uiOrigem != kDoServidor && uiOrigem != kDeArquivo) || EhFalhaDeMaquina(hr);
}

// One import of one file.
class CImportador {
public:
  explicit CImportador(const CArgumentos &argumentos)
      : m_argumentos(argumentos),
        m_uiDesdeLinha(argumentos.Numero("desde-linha", 1, kSemLimite, 1)),
        m_conteudo(Decodifica(LeBytes(argumentos.Valores().front()), CodificacaoDeArgumentos(argumentos))),
        m_leitor(m_conteudo) {
    if (!m_conteudo.sAviso.empty()) {
      EscreveErro(m_conteudo.sAviso + "\n");
    }
  }

  eSaida Executa() {
    if (m_argumentos.Tem("ensaio")) {
      return Ensaia();
    }
    if (m_argumentos.Tem("tudo-ou-nada")) {
      Percorre(nullptr, [](const tagREG_VEICULOPS &) {});
      if (m_resultado.bParada || m_resultado.uiRecusados != 0) {
        Escreve("Gravados: 0  Recusados: " + std::to_string(m_resultado.uiRecusados) + "\n");
        return m_resultado.bParada ? kInterrompida : kLinhasRecusadas;
      }
      m_resultado = {};
    }
    return Importa();
  }

private:
  eSaida Ensaia() {
    CCodigosConhecidos conhecidos;
    if (SemRepetir()) {
      CServico servico(m_argumentos);
      conhecidos = CodigosDaBase(servico);
    }
    Percorre(SemRepetir() ? &conhecidos : nullptr, [](const tagREG_VEICULOPS &) {});
    Escreve("Ensaio, nada foi gravado. Bons: " + std::to_string(m_resultado.uiGravados) + Contagens() + "\n");
    return Saida();
  }

  eSaida Importa() {
    CServico servico(m_argumentos);
    CCodigosConhecidos conhecidos;
    if (SemRepetir()) {
      conhecidos = CodigosDaBase(servico);
    }
    const auto tInicio = std::chrono::steady_clock::now();
    std::string sFalha;
    try {
      Percorre(SemRepetir() ? &conhecidos : nullptr,
               [&](const tagREG_VEICULOPS &veiculo) { servico->Inclui(veiculo); });
    } catch (const CQZErroVeiculos &erro) {
      sFalha = TextoDaFalha(erro);
      sFalha += PodeTerGravado(erro.GetHR())
                    ? "O veículo da linha "_pt + std::to_string(m_resultado.uiProximaLinha) +
                          " pode já estar na base: confira, ou continue com --sem-repetir.\n"_pt
                    : std::string();
    }
    const std::chrono::duration<double> tempo = std::chrono::steady_clock::now() - tInicio;
    Escreve("Gravados: " + std::to_string(m_resultado.uiGravados) + Contagens() + Ritmo(tempo.count()) + "\n");
    EscreveErro(sFalha);
    if (!sFalha.empty() || m_resultado.bParada) {
      EscreveErro(OndeParou());
      return kInterrompida;
    }
    return Saida();
  }

  void Percorre(CCodigosConhecidos *pConhecidos, const std::function<void(const tagREG_VEICULOPS &)> &Grava) {
    CBarraProgresso barra;
    const CPassosImportacao passos{Grava,
                                   [&](const CLinhaCsv &linha) {
                                     barra.Limpa();
                                     EscreveErro("linha " + std::to_string(linha.uiLinha) + ": " + linha.sErro + "\n");
                                   },
                                   [&](std::size_t uiFeito, std::size_t uiTotal) { barra.Mostra(uiFeito, uiTotal); },
                                   CTrabalhoInterrompivel::Pedida};
    ImportaCsv(m_leitor, m_uiDesdeLinha, pConhecidos, passos, m_resultado);
  }

  bool SemRepetir() const { return m_argumentos.Tem("sem-repetir"); }

  eSaida Saida() const {
    return m_resultado.bParada ? kInterrompida : m_resultado.uiRecusados != 0 ? kLinhasRecusadas : kSucesso;
  }

  std::string Contagens() const {
    return "  Recusados: " + std::to_string(m_resultado.uiRecusados) +
           (SemRepetir() ? "  Repetidos: " + std::to_string(m_resultado.uiRepetidos) : "");
  }

  std::string Ritmo(double dSegundos) const {
    std::array<char, 120> aTempo;
    std::snprintf(aTempo.data(), aTempo.size(), "  Tempo: %.2f s  (%.0f registros/s)", dSegundos,
                  dSegundos > 0 ? static_cast<double>(m_resultado.uiGravados) / dSegundos : 0.0);
    std::string sTempo = aTempo.data();
    std::replace(sTempo.begin(), sTempo.end(), '.', ',');
    return sTempo;
  }

  std::string OndeParou() const {
    const std::string sUltima = m_resultado.uiUltimaGravada == 0
                                    ? "Nenhuma linha foi gravada."
                                    : "Última linha gravada: "_pt + std::to_string(m_resultado.uiUltimaGravada) + ".";
    return "A importação parou. "_pt + sUltima + " Para continuar: --desde-linha " +
           std::to_string(m_resultado.uiProximaLinha) + "\n";
  }

  const CTrabalhoInterrompivel m_trabalho;
  const CArgumentos &m_argumentos;
  std::size_t m_uiDesdeLinha;
  CConteudoTexto m_conteudo;
  CLeitorCsv m_leitor;
  CResultadoImportacao m_resultado;
};

eSaida Importa(const CArgumentos &argumentos) {
  ExigeEmpresa(*argumentos.Opcao("empresa"));
  return CImportador(argumentos).Executa();
}

eSaida Diagnostico(const CArgumentos &argumentos) {
  const std::string *const pEmpresa = argumentos.Opcao("empresa");
  const bool bAbre = argumentos.Tem("abre");
  if (bAbre && (pEmpresa == nullptr || pEmpresa->empty())) {
    throw CErroUso("--abre: diga a empresa com --empresa");
  }
  const CAbertura abertura{pEmpresa != nullptr ? *pEmpresa : "", UsuarioDeArgumentos(argumentos),
                           SessaoDeArgumentos(argumentos)};
  return Diagnostica(abertura, bAbre) ? kSucesso : kOperacaoFalhou;
}

struct CFuncaoComando {
  std::string_view sNome;  // of ProgramaVeiculos
  eSaida (*Executa)(const CArgumentos &);
};
constexpr std::array kFuncoes{
    CFuncaoComando{"grava", Grava},     CFuncaoComando{"le", Le},           CFuncaoComando{"existe", Existe},
    CFuncaoComando{"busca", Busca},     CFuncaoComando{"lista", Lista},     CFuncaoComando{"conta", Conta},
    CFuncaoComando{"exporta", Exporta}, CFuncaoComando{"importa", Importa}, CFuncaoComando{"diagnostico", Diagnostico},
};

}  // namespace

std::string TextoDaFalha(const CQZErroVeiculos &erro) {
  const std::string sRemedio = RemedioDoErro(static_cast<std::uint32_t>(erro.GetHR()));
  return std::string(erro.what()) + "\n" + (sRemedio.empty() ? "" : "O que fazer: " + sRemedio + ".\n");
}

eSaida ExecutaComando(const CArgumentos &argumentos) {
  const auto it = std::find_if(kFuncoes.begin(), kFuncoes.end(), [&](const CFuncaoComando &funcao) {
    return funcao.sNome == argumentos.Comando().sNome;
  });
  return it->Executa(argumentos);
}
