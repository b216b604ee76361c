#include "client/Ajuda.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "client/Codificacao.h"
#include "client/Saida.h"

namespace {

constexpr std::size_t kLarguraTela = 79;
constexpr std::size_t kColunaTexto = 26;

/// "  title   text": the text in a column of its own, broken between words; under a title that does not leave room for
/// it from the next line on.
std::string Verbete(const std::string &sTitulo, std::string_view sTextoUtf8) {
  const std::string sTexto = Pt(sTextoUtf8);
  std::string sLinha = "  " + sTitulo;
  std::string sVerbete;
  if (sLinha.size() + 2 > kColunaTexto) {
    sVerbete = sLinha + "\n";
    sLinha.clear();
  }
  sLinha.resize(kColunaTexto, ' ');
  for (std::size_t uiInicio = 0; uiInicio < sTexto.size();) {
    const std::size_t uiFim = std::min(sTexto.find(' ', uiInicio), sTexto.size());
    const std::string sPalavra = sTexto.substr(uiInicio, uiFim - uiInicio);
    if (sLinha.size() > kColunaTexto && sLinha.size() + 1 + sPalavra.size() > kLarguraTela) {
      sVerbete += sLinha + "\n";
      sLinha.assign(kColunaTexto, ' ');
    }
    sLinha += (sLinha.size() > kColunaTexto ? " " : "") + sPalavra;
    uiInicio = uiFim + 1;
  }
  return sVerbete + sLinha + "\n";
}

std::string ComValor(const COpcaoConhecida &opcao) {
  return "--" + std::string(opcao.sNome) + (opcao.sValor.empty() ? "" : " " + Pt(opcao.sValor));
}

std::string Trecho(std::string_view sUtf8) {
  return sUtf8.empty() ? std::string() : "\n" + Pt(sUtf8);
}

}  // namespace

std::string TextoAjuda(const CProgramaConhecido &programa) {
  const std::string sNome(programa.sNome);
  std::string sAjuda = "Uso: " + sNome + " " + Pt(programa.sUso) + "\n\nComandos:\n";
  for (const CComandoConhecido &comando : programa.aComandos) {
    sAjuda += Verbete(std::string(comando.sNome) + " " + Pt(comando.sValores), comando.sResumo);
  }
  sAjuda += "\n" + sNome + " COMANDO --ajuda mostra as opções de um comando, com exemplos;\n"_pt + sNome +
            " --versao, a versão do programa.\n"_pt;
  return sAjuda + Trecho(programa.sNotas);
}

std::string TextoAjuda(const CProgramaConhecido &programa, const CComandoConhecido &comando) {
  const std::string sNome(programa.sNome);
  std::string sUso = "Uso: " + sNome + " " + std::string(comando.sNome);
  sUso += comando.sValores.empty() ? "" : " " + Pt(comando.sValores);
  std::string sOpcoes;
  for (const COpcaoConhecida &opcao : comando.aOpcoes) {
    sUso += opcao.bObrigatoria ? " " + ComValor(opcao) : "";
    sOpcoes += Verbete(ComValor(opcao), opcao.sTexto);
  }
  std::string sAjuda = sUso + " [opções]\n\n"_pt + Pt(comando.sResumo) + "\n\nOpções:\n"_pt + sOpcoes;
  sAjuda += Trecho(comando.sNotas) + "\nExemplos:\n";
  for (const std::string_view sExemplo : comando.aExemplos) {
    sAjuda += "  " + sNome + " " + Pt(sExemplo) + "\n";
  }
  return sAjuda;
}

std::optional<std::string> TextoPedido(std::span<const std::string> aTextos, const CProgramaConhecido &programa) {
  const std::vector<CParteLinha> aPartes = SeparaLinha(aTextos, programa);
  const auto tem = [&](std::string_view sNome) {
    return std::any_of(aPartes.begin(), aPartes.end(),
                       [&](const CParteLinha &parte) { return parte.bOpcao && parte.sTexto == sNome; });
  };
  if (tem("ajuda")) {
    const auto comando = std::find_if(aPartes.begin(), aPartes.end(), [](const auto &parte) { return !parte.bOpcao; });
    const CComandoConhecido *const pComando =
        comando == aPartes.end() ? nullptr : ProcuraComando(programa, comando->sTexto);
    return pComando != nullptr ? TextoAjuda(programa, *pComando) : TextoAjuda(programa);
  }
  if (tem("versao")) {
    return std::string(programa.sNome) + " " + std::string(programa.sVersao) + "\n";
  }
  return std::nullopt;
}
