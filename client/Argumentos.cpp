#include "client/Argumentos.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

#include "client/Campos.h"
#include "client/Codificacao.h"
#include "client/Sugestao.h"

namespace {

constexpr std::uint64_t kMaiorPosicao = std::numeric_limits<std::int32_t>::max();
constexpr std::string_view kTracos = "--";

const COpcaoConhecida *ProcuraOpcao(std::span<const COpcaoConhecida> aOpcoes, std::string_view sNome) {
  const auto it = std::find_if(aOpcoes.begin(), aOpcoes.end(), [&](const auto &opcao) { return opcao.sNome == sNome; });
  return it == aOpcoes.end() ? nullptr : &*it;
}

/// The option as any command knows it: whether it takes a value is the same for all that do.
const COpcaoConhecida *ProcuraOpcao(const CProgramaConhecido &programa, std::string_view sNome) {
  for (const CComandoConhecido &comando : programa.aComandos) {
    if (const COpcaoConhecida *const pOpcao = ProcuraOpcao(comando.aOpcoes, sNome)) {
      return pOpcao;
    }
  }
  return nullptr;
}

template <typename C>
std::string SugestaoDeNome(std::string_view sPalavra, const C &aConhecidos) {
  std::vector<std::string_view> aNomes;
  std::transform(aConhecidos.begin(), aConhecidos.end(), std::back_inserter(aNomes),
                 [](const auto &conhecido) { return conhecido.sNome; });
  return Sugestao(sPalavra, aNomes);
}

bool PedeAjuda(std::string_view sTexto) {
  return sTexto == "-h" || sTexto == "/?";
}

std::uint64_t NumeroDaOpcao(std::string_view sNome, std::string_view sValor, std::uint64_t uiMinimo,
                            std::uint64_t uiMaximo) {
  try {
    const std::uint64_t uiValor = NumeroDeTexto(sValor, uiMaximo);
    if (uiValor < uiMinimo) {
      throw CErroCampo("o menor valor aceito é "_pt + std::to_string(uiMinimo));
    }
    return uiValor;
  } catch (const CErroCampo &erro) {
    throw CErroUso("--" + std::string(sNome) + ": " + erro.what());
  }
}

}  // namespace

std::vector<CParteLinha> SeparaLinha(std::span<const std::string> aTextos, const CProgramaConhecido &programa) {
  std::vector<CParteLinha> aPartes;
  bool bSoPalavras = false;
  for (std::size_t i = 0; i < aTextos.size(); ++i) {
    const std::string &sTexto = aTextos[i];
    if (!bSoPalavras && sTexto == kTracos) {
      bSoPalavras = true;
    } else if (!bSoPalavras && PedeAjuda(sTexto)) {
      aPartes.push_back({true, "ajuda", std::nullopt});
    } else if (bSoPalavras || !sTexto.starts_with(kTracos)) {
      aPartes.push_back({false, sTexto, std::nullopt});
    } else {
      const std::size_t uiIgual = sTexto.find('=');
      CParteLinha parte{true, sTexto.substr(2, uiIgual == std::string::npos ? uiIgual : uiIgual - 2), std::nullopt};
      const COpcaoConhecida *const pOpcao = ProcuraOpcao(programa, parte.sTexto);
      const bool bComValor = pOpcao != nullptr && !pOpcao->sValor.empty();
      if (uiIgual != std::string::npos) {
        parte.sValor = sTexto.substr(uiIgual + 1);
      } else if (bComValor && i + 1 < aTextos.size() && !aTextos[i + 1].starts_with(kTracos)) {
        parte.sValor = aTextos[++i];
      }
      aPartes.push_back(std::move(parte));
    }
  }
  return aPartes;
}

const CComandoConhecido *ProcuraComando(const CProgramaConhecido &programa, std::string_view sNome) {
  const auto it = std::find_if(programa.aComandos.begin(), programa.aComandos.end(),
                               [&](const CComandoConhecido &comando) { return comando.sNome == sNome; });
  return it == programa.aComandos.end() ? nullptr : &*it;
}

CArgumentos::CArgumentos(std::span<const std::string> aTextos, const CProgramaConhecido &programa) {
  std::vector<CParteLinha> aPartes = SeparaLinha(aTextos, programa);
  // The command decides which options exist, wherever it stands.
  const auto comando = std::find_if(aPartes.begin(), aPartes.end(), [](const auto &parte) { return !parte.bOpcao; });
  if (comando != aPartes.end()) {
    m_pComando = ProcuraComando(programa, comando->sTexto);
    if (m_pComando == nullptr) {
      throw CErroUso("comando desconhecido: " + comando->sTexto + SugestaoDeNome(comando->sTexto, programa.aComandos));
    }
    aPartes.erase(comando);
  }
  for (CParteLinha &parte : aPartes) {
    if (parte.bOpcao) {
      GuardaOpcao(std::move(parte), programa);
    } else {
      m_aValores.push_back(std::move(parte.sTexto));
    }
  }
  if (m_pComando == nullptr) {
    throw CErroUso("falta o comando");
  }
  Confere();
}

void CArgumentos::GuardaOpcao(CParteLinha parte, const CProgramaConhecido &programa) {
  const std::string sNome = std::string(kTracos) + parte.sTexto;
  const COpcaoConhecida *const pOpcao = ProcuraOpcao(programa, parte.sTexto);
  if (pOpcao == nullptr) {
    throw CErroUso("opção desconhecida: "_pt + sNome +
                   (m_pComando != nullptr ? SugestaoDeNome(parte.sTexto, m_pComando->aOpcoes) : std::string()));
  }
  if (m_pComando != nullptr && ProcuraOpcao(m_pComando->aOpcoes, parte.sTexto) == nullptr) {
    throw CErroUso(sNome + ": o comando "_pt + std::string(m_pComando->sNome) + " não tem esta opção"_pt);
  }
  if (!pOpcao->sValor.empty() && !parte.sValor) {
    throw CErroUso(sNome + ": falta o valor (um que comece com -- escreve-se "_pt + sNome + "=VALOR)");
  }
  if (pOpcao->sValor.empty() && parte.sValor) {
    throw CErroUso(sNome + ": esta opção não aceita valor"_pt);
  }
  if (!m_mapOpcoes.emplace(parte.sTexto, parte.sValor.value_or("")).second) {
    throw CErroUso(sNome + ": opção repetida"_pt);
  }
}

void CArgumentos::Confere() const {
  const std::string sComando(m_pComando->sNome);
  if (m_aValores.size() < m_pComando->uiMinimoValores) {
    throw CErroUso("faltam valores para o comando " + sComando + ": " + Pt(m_pComando->sValores));
  }
  if (m_aValores.size() > m_pComando->uiMaximoValores) {
    throw CErroUso("valor a mais para o comando " + sComando + ": " + m_aValores[m_pComando->uiMaximoValores]);
  }
  for (const COpcaoConhecida &opcao : m_pComando->aOpcoes) {
    const std::string *const pValor = Opcao(opcao.sNome);
    if (opcao.bObrigatoria && (pValor == nullptr || pValor->empty())) {
      throw CErroUso("--" + std::string(opcao.sNome) + ": o comando "_pt + sComando + " exige esta opção"_pt);
    }
  }
}

void CArgumentos::SoUma(std::string_view sUma, std::string_view sOutra) const {
  if (Tem(sUma) && Tem(sOutra)) {
    throw CErroUso("--" + std::string(sUma) + " e --" + std::string(sOutra) + ": só um dos dois"_pt);
  }
}

const std::string *CArgumentos::Opcao(std::string_view sNome) const {
  const auto it = m_mapOpcoes.find(sNome);
  return it == m_mapOpcoes.end() ? nullptr : &it->second;
}

std::uint64_t CArgumentos::Numero(std::string_view sNome, std::uint64_t uiMinimo, std::uint64_t uiMaximo,
                                  std::uint64_t uiPadrao) const {
  const std::string *const pValor = Opcao(sNome);
  return pValor == nullptr ? uiPadrao : NumeroDaOpcao(sNome, *pValor, uiMinimo, uiMaximo);
}

std::int32_t PosicaoDeTexto(const std::string &sTexto) {
  try {
    return static_cast<std::int32_t>(NumeroDeTexto(sTexto, kMaiorPosicao));
  } catch (const CErroCampo &erro) {
    throw CErroUso("posição: "_pt + erro.what());
  }
}

std::vector<std::string> TextosDaLinhaDeComando(std::span<const std::wstring> aPalavras) {
  std::vector<std::string> aTextos;
  for (const std::wstring &sPalavra : aPalavras) {
    std::optional<std::string> sTexto = De16Para1252(sPalavra);
    if (!sTexto) {
      // The option is the part before '=' or the word before this one.
      const std::optional<std::string> sParte = De16Para1252(sPalavra.substr(0, sPalavra.find(L'=')));
      const std::string sOnde = sParte && sParte->substr(0, 2) == "--" ? *sParte
                                : !aTextos.empty() && aTextos.back().substr(0, 2) == "--"
                                    ? aTextos.back()
                                    : "argumento " + std::to_string(aTextos.size() + 1);
      throw CErroUso(sOnde + ": há um caractere que não existe em Windows-1252"_pt);
    }
    aTextos.push_back(std::move(*sTexto));
  }
  return aTextos;
}
