// The wildcard matchers.
//
// Property: the mask matcher, the system's match and the search's own matcher give the answers of a definition by
// recursion, each for the patterns that it takes; and a text that a pattern matches has its signature's bits.

#include <algorithm>
#include <string>
#include <string_view>

#include "core/platform/Textos.h"
#include "fuzz/Entrada.h"
#include "vehicles/AssinaturaTexto.h"
#include "vehicles/PadraoCuringa.h"

namespace {

using fuzz::Exige;

/// Longer texts would take the recursion for ever.
constexpr std::size_t kMaiorTexto = 10;
constexpr std::size_t kMaiorPadrao = 10;

bool Casa(std::string_view sTexto, std::string_view sPadrao) {
  if (sPadrao.empty()) {
    return sTexto.empty();
  }
  if (sPadrao[0] == '*') {
    return Casa(sTexto, sPadrao.substr(1)) || (!sTexto.empty() && Casa(sTexto.substr(1), sPadrao));
  }
  return !sTexto.empty() && (sPadrao[0] == '?' || sPadrao[0] == sTexto[0]) && Casa(sTexto.substr(1), sPadrao.substr(1));
}

/// The system's match of folded texts: alternatives, of which nothing but blanks behind the last ';' is none.
bool CasaAlternativas(std::string_view sTexto, std::string_view sLista) {
  const std::size_t uiInicio = sLista.find_first_not_of(' ');
  const std::size_t uiFim = sLista.find(';');
  if (uiFim == std::string_view::npos) {
    return uiInicio != std::string_view::npos && Casa(sTexto, sLista.substr(uiInicio));
  }
  return Casa(sTexto, sLista.substr(uiInicio, uiFim - uiInicio)) || CasaAlternativas(sTexto, sLista.substr(uiFim + 1));
}

bool CasaCuringa(std::string_view sTexto, const std::string &sPadrao) {
  const bool bSoBrancos = !sPadrao.empty() && sPadrao.find_first_not_of(' ') == std::string::npos;
  return sPadrao == "*.*" || (bSoBrancos ? sTexto.empty() : CasaAlternativas(sTexto, sPadrao));
}

/// Bytes as they are, or drawn from a few letters, which match more often.
std::string Texto(fuzz::CEntrada *pEntrada, std::size_t uiMaximo, bool bLetras) {
  constexpr std::string_view kLetras = "aAbB *?*?;.1\xE3\xC3";
  const std::size_t uiTamanho = pEntrada->Ate(uiMaximo);
  std::string sTexto = pEntrada->Bytes(uiTamanho);
  for (char &c : sTexto) {
    c = bLetras ? kLetras[static_cast<unsigned char>(c) % kLetras.size()] : c;
  }
  return sTexto;
}

/// In a field that it may fill, with anything behind its terminator.
void ConferePadrao(const std::string &sTexto, const std::string &sPadrao, bool bEsperado) {
  CPadraoCuringa padrao;
  if (!padrao.Define(sPadrao)) {
    return;
  }
  for (const std::size_t uiLargura : {sTexto.size(), sTexto.size() + 1, kMaiorTexto + 5}) {
    std::string sCampo = sTexto;
    sCampo.resize(std::max(sCampo.size(), uiLargura));
    sCampo.resize(CPadraoCuringa::kBytesLidos, sTexto.empty() ? 'a' : sTexto.back());
    Exige(padrao.Casa(sCampo.data(), uiLargura) == bEsperado, "the search's own match");
    const std::uint64_t uiDoPadrao = CAssinaturaTexto::DoPadrao(sPadrao);
    Exige(!bEsperado || (CAssinaturaTexto::DoCampo(sCampo.data(), uiLargura) & uiDoPadrao) == uiDoPadrao,
          "the signature of a text that matches");
  }
}

}  // namespace

void fuzz::Executa(CEntrada *pEntrada) {
  const bool bLetras = pEntrada->Ate(3) != 0;
  const std::string sTexto = AteOZero(Texto(pEntrada, kMaiorTexto, bLetras));
  const std::string sPadrao = AteOZero(Texto(pEntrada, kMaiorPadrao, bLetras));
  const bool bEsperado = CasaCuringa(plataforma::Maiusculas(sTexto), plataforma::Maiusculas(sPadrao));
  Exige(plataforma::CasaCuringa(sTexto.c_str(), sPadrao.c_str()) == bEsperado, "the system's match");
  ConferePadrao(sTexto, sPadrao, bEsperado);
}
