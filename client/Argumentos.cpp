#include "client/Argumentos.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "client/Campos.h"
#include "client/Codificacao.h"

namespace {

constexpr std::uint64_t kMaiorPosicao = std::numeric_limits<std::int32_t>::max();

const COpcaoConhecida *ProcuraOpcao(std::span<const COpcaoConhecida> aOpcoes, std::string_view sNome) {
  const auto it = std::find_if(aOpcoes.begin(), aOpcoes.end(), [&](const auto &opcao) { return opcao.sNome == sNome; });
  return it == aOpcoes.end() ? nullptr : &*it;
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

CArgumentos::CArgumentos(std::span<const std::string> aTextos, std::span<const CComandoConhecido> aComandos) {
  // The command decides which options exist, so the options are checked after the whole line was taken apart; whether
  // an option takes a value is the same for every command that knows it.
  const auto procura = [&](std::string_view sNome) {
    const COpcaoConhecida *pOpcao = nullptr;
    for (auto it = aComandos.begin(); pOpcao == nullptr && it != aComandos.end(); ++it) {
      pOpcao = ProcuraOpcao(it->aOpcoes, sNome);
    }
    return pOpcao;
  };

  bool bSoValores = false;
  std::vector<std::string> aPalavras;
  for (std::size_t i = 0; i < aTextos.size(); ++i) {
    const std::string &sTexto = aTextos[i];
    if (bSoValores || sTexto.substr(0, 2) != "--") {
      aPalavras.push_back(sTexto);
      continue;
    }
    if (sTexto == "--") {
      bSoValores = true;
      continue;
    }
    const std::size_t uiIgual = sTexto.find('=');
    const bool bValorJunto = uiIgual != std::string::npos;
    const std::string sNome = sTexto.substr(2, bValorJunto ? uiIgual - 2 : std::string::npos);
    const COpcaoConhecida *const pOpcao = procura(sNome);
    if (pOpcao == nullptr) {
      throw CErroUso("opção desconhecida: --"_pt + sNome);
    }
    std::string sValor;
    if (pOpcao->bComValor) {
      if (!bValorJunto && i + 1 == aTextos.size()) {
        throw CErroUso("--" + sNome + ": falta o valor");
      }
      sValor = bValorJunto ? sTexto.substr(uiIgual + 1) : aTextos[++i];
    } else if (bValorJunto) {
      throw CErroUso("--" + sNome + ": esta opção não aceita valor"_pt);
    }
    if (!m_mapOpcoes.emplace(sNome, std::move(sValor)).second) {
      throw CErroUso("--" + sNome + ": opção repetida"_pt);
    }
  }

  if (aPalavras.empty()) {
    throw CErroUso("falta o comando");
  }
  const auto it = std::find_if(aComandos.begin(), aComandos.end(),
                               [&](const CComandoConhecido &comando) { return comando.sNome == aPalavras.front(); });
  if (it == aComandos.end()) {
    throw CErroUso("comando desconhecido: " + aPalavras.front());
  }
  m_pComando = &*it;
  m_aValores.assign(std::make_move_iterator(aPalavras.begin() + 1), std::make_move_iterator(aPalavras.end()));

  for (const auto &[sNome, sValor] : m_mapOpcoes) {
    if (ProcuraOpcao(it->aOpcoes, sNome) == nullptr) {
      throw CErroUso("--" + sNome + ": o comando "_pt + std::string(it->sNome) + " não tem esta opção"_pt);
    }
  }
  if (m_aValores.size() < it->uiMinimoValores) {
    throw CErroUso("faltam valores para o comando " + std::string(it->sNome));
  }
  if (m_aValores.size() > it->uiMaximoValores) {
    throw CErroUso("valor a mais para o comando " + std::string(it->sNome) + ": " + m_aValores[it->uiMaximoValores]);
  }
  for (const COpcaoConhecida &opcao : it->aOpcoes) {
    const std::string *const pValor = Opcao(opcao.sNome);
    if (opcao.bObrigatoria && (pValor == nullptr || pValor->empty())) {
      throw CErroUso("--" + std::string(opcao.sNome) + ": o comando "_pt + std::string(it->sNome) +
                     " exige esta opção"_pt);
    }
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
