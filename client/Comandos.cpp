#include "client/Comandos.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "client/BarraProgresso.h"
#include "client/Codificacao.h"
#include "client/ComandoImporta.h"
#include "client/Console.h"
#include "client/Diagnostico.h"
#include "client/Relacao.h"
#include "client/Saida.h"
#include "client/Servico.h"

namespace {

ESaida Grava(const CArgumentos &argumentos) {
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

/// As a row of its format; in a table with all its fields, a line each.
void MostraVeiculo(CRelacao &relacao, LONG lPosicao, const tagREG_VEICULOPS &veiculo) {
  if (relacao.Formato() == EFormatoRelacao::Tabela) {
    relacao.Linha(FichaVeiculo(lPosicao, veiculo));
  } else {
    relacao.Veiculo(lPosicao, veiculo);
  }
}

ESaida Le(const CArgumentos &argumentos) {
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

ESaida Existe(const CArgumentos &argumentos) {
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

ESaida Busca(const CArgumentos &argumentos) {
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
    if (relacao.Formato() == EFormatoRelacao::Tabela) {
      relacao.Linha("Encontrados: " + std::to_string(uiEncontrados) +
                    "  Mostrados: " + std::to_string(aPosicoes.size()));
    }
  }
  relacao.Acaba();
  return kSucesso;
}

ESaida Lista(const CArgumentos &argumentos) {
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

ESaida Conta(const CArgumentos &argumentos) {
  CRelacao relacao(argumentos);
  CServico servico(argumentos);
  const std::string sQuantidade = std::to_string(servico->GetQuantidadeRegistros());
  relacao.Comeca("", "registros");
  relacao.Linha(relacao.Formato() == EFormatoRelacao::Json ? "{\"registros\":" + sQuantidade + "}" : sQuantidade);
  relacao.Acaba();
  return kSucesso;
}

ESaida Exporta(const CArgumentos &argumentos) {
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

ESaida Diagnostico(const CArgumentos &argumentos) {
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
  std::string_view sNome;  ///< of ProgramaVeiculos
  ESaida (*Executa)(const CArgumentos &);
};
constexpr std::array kFuncoes{
    CFuncaoComando{"grava", Grava},     CFuncaoComando{"le", Le},           CFuncaoComando{"existe", Existe},
    CFuncaoComando{"busca", Busca},     CFuncaoComando{"lista", Lista},     CFuncaoComando{"conta", Conta},
    CFuncaoComando{"exporta", Exporta}, CFuncaoComando{"importa", Importa}, CFuncaoComando{"diagnostico", Diagnostico},
};

}  // namespace

ESaida ExecutaComando(const CArgumentos &argumentos) {
  const auto it = std::find_if(kFuncoes.begin(), kFuncoes.end(), [&](const CFuncaoComando &funcao) {
    return funcao.sNome == argumentos.Comando().sNome;
  });
  return it->Executa(argumentos);
}
