#include "core/platform/Textos.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace plataforma {
namespace {

char Maiuscula(char letra) {
  const auto codigo = static_cast<unsigned char>(letra);
  const bool bAscii = codigo >= 'a' && codigo <= 'z';
  const bool bAcentuada = codigo >= 0xE0 && codigo <= 0xFE && codigo != 0xF7;  // 0xF7 is the division sign
  if (bAscii || bAcentuada) {
    return static_cast<char>(codigo - 0x20);
  }
  switch (codigo) {
    case 0x9A:
    case 0x9C:
    case 0x9E:  // s caron, oe ligature, z caron
      return static_cast<char>(codigo - 0x10);
    case 0xFF:  // y diaeresis
      return static_cast<char>(0x9F);
    default:
      return letra;
  }
}

std::string_view SemBrancosIniciais(std::string_view sTexto) {
  const std::size_t inicio = sTexto.find_first_not_of(' ');
  return inicio == std::string_view::npos ? std::string_view() : sTexto.substr(inicio);
}

/// Whole-text match of one pattern, byte by byte: '*' any run, also an empty one, '?' exactly one character. Time is
/// bounded by the product of the two lengths.
bool CasaMascara(std::string_view sTexto, std::string_view sMascara) {
  // Only the newest '*' ever needs a second try: whatever an earlier one could take, the newest one can take too.
  std::size_t t = 0;
  std::size_t m = 0;
  std::size_t estrela = std::string_view::npos;
  std::size_t retomada = 0;
  while (t < sTexto.size()) {
    if (m < sMascara.size() && sMascara[m] == '*') {
      estrela = m++;
      retomada = t;
    } else if (m < sMascara.size() && (sMascara[m] == '?' || sMascara[m] == sTexto[t])) {
      ++m;
      ++t;
    } else if (estrela != std::string_view::npos) {
      m = estrela + 1;
      t = ++retomada;
    } else {
      return false;
    }
  }
  while (m < sMascara.size() && sMascara[m] == '*') {
    ++m;
  }
  return m == sMascara.size();
}

}  // namespace

CString Maiusculas(const CString &sTexto) {
  CString sMaiusculas(sTexto);
  std::transform(sMaiusculas.begin(), sMaiusculas.end(), sMaiusculas.begin(), Maiuscula);
  return sMaiusculas;
}

bool CasaCuringa(const char *lpTexto, const char *lpPadrao) {
  const CString sAlvo = Maiusculas(lpTexto);
  const CString sLista = Maiusculas(lpPadrao);
  if (sLista == "*.*") {
    return true;
  }
  std::string_view sResto = sLista;
  while (!sResto.empty()) {
    const std::size_t fim = std::min(sResto.find(';'), sResto.size());
    if (CasaMascara(sAlvo, SemBrancosIniciais(sResto.substr(0, fim)))) {
      return true;
    }
    sResto.remove_prefix(std::min(fim + 1, sResto.size()));
    sResto = SemBrancosIniciais(sResto);
  }
  return false;
}

bool PaginaDeUmByte() {
  return true;
}

}  // namespace plataforma
