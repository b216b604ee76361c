#include "vehicles/PadraoSimples.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr char Maiuscula(char c) {
  return static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
}

bool EhLetraOuDigito(char c) {
  const char m = Maiuscula(c);
  return (m >= 'A' && m <= 'Z') || (m >= '0' && m <= '9');
}

}  // namespace

bool CPadraoSimples::Define(std::string_view sPadrao) {
  const bool bConhecido = !sPadrao.empty() && sPadrao.size() <= kMaiorTexto && sPadrao.front() != ' ' &&
                          std::all_of(sPadrao.begin(), sPadrao.end(),
                                      [](char c) { return EhLetraOuDigito(c) || c == ' ' || c == '*' || c == '?'; });
  if (!bConhecido) {
    return false;
  }
  std::transform(sPadrao.begin(), sPadrao.end(), m_padrao.begin(), Maiuscula);
  m_uiTamanho = sPadrao.size();
  m_bTemInterrogacao = sPadrao.find('?') != std::string_view::npos;
  return true;
}

CPadraoSimples::Resposta CPadraoSimples::Casa(std::string_view sTexto) const {
  // Whole blocks of fixed length, so that the compiler folds many characters at a time.
  std::array<char, kMaiorTexto> dobrado{};
  std::memcpy(dobrado.data(), sTexto.data(), sTexto.size());
  unsigned char uniao = 0;
  for (char &c : dobrado) {
    uniao = static_cast<unsigned char>(uniao | static_cast<unsigned char>(c));
    c = Maiuscula(c);
  }
  if (uniao >= 0x80) {
    return Resposta::TextoAlheio;
  }
  const std::string_view sDobrado(dobrado.data(), sTexto.size());
  return (m_bTemInterrogacao ? CasaComInterrogacao(sDobrado) : CasaTrechos(sDobrado)) ? Resposta::Casa
                                                                                      : Resposta::NaoCasa;
}

/// A pattern without '?': each literal between two '*' is looked for behind the one before; the first and the last one
/// are bound to the ends unless a '*' stands there.
bool CPadraoSimples::CasaTrechos(std::string_view sTexto) const {
  std::string_view sPadrao(m_padrao.data(), m_uiTamanho);
  const std::size_t uiPrimeira = sPadrao.find('*');
  if (uiPrimeira == std::string_view::npos) {
    return sTexto == sPadrao;
  }
  if (sTexto.substr(0, uiPrimeira) != sPadrao.substr(0, uiPrimeira)) {
    return false;
  }
  sTexto.remove_prefix(uiPrimeira);
  sPadrao.remove_prefix(uiPrimeira + 1);
  for (std::size_t uiEstrela = 0; (uiEstrela = sPadrao.find('*')) != std::string_view::npos;) {
    const std::size_t uiAchado = sTexto.find(sPadrao.substr(0, uiEstrela));
    if (uiAchado == std::string_view::npos) {
      return false;
    }
    sTexto.remove_prefix(uiAchado + uiEstrela);
    sPadrao.remove_prefix(uiEstrela + 1);
  }
  return sTexto.size() >= sPadrao.size() && sTexto.substr(sTexto.size() - sPadrao.size()) == sPadrao;
}

bool CPadraoSimples::CasaComInterrogacao(std::string_view sTexto) const {
  const std::string_view sPadrao(m_padrao.data(), m_uiTamanho);
  std::size_t t = 0;
  std::size_t p = 0;
  std::size_t pEstrela = std::string_view::npos;  // behind the last '*' met
  std::size_t tEstrela = 0;                       // where the text that this '*' stands for ends
  while (t < sTexto.size()) {
    if (p < sPadrao.size() && sPadrao[p] == '*') {
      pEstrela = ++p;
      tEstrela = t;
    } else if (p < sPadrao.size() && (sPadrao[p] == '?' || sPadrao[p] == sTexto[t])) {
      ++p;
      ++t;
    } else if (pEstrela != std::string_view::npos) {
      p = pEstrela;
      t = ++tEstrela;
    } else {
      return false;
    }
  }
  return sPadrao.find_first_not_of('*', p) == std::string_view::npos;
}
