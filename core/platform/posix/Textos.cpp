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

std::string_view SemBrancosIniciais(std::string_view texto) {
  const std::size_t inicio = texto.find_first_not_of(' ');
  return inicio == std::string_view::npos ? std::string_view() : texto.substr(inicio);
}

/// Whole-text match of one pattern, byte by byte: '*' any run, also an empty one, '?' exactly one character. Time is
/// bounded by the product of the two lengths.
bool CasaMascara(std::string_view texto, std::string_view mascara) {
  // Only the newest '*' ever needs a second try: whatever an earlier one could take, the newest one can take too.
  std::size_t t = 0;
  std::size_t m = 0;
  std::size_t estrela = std::string_view::npos;
  std::size_t retomada = 0;
  while (t < texto.size()) {
    if (m < mascara.size() && mascara[m] == '*') {
      estrela = m++;
      retomada = t;
    } else if (m < mascara.size() && (mascara[m] == '?' || mascara[m] == texto[t])) {
      ++m;
      ++t;
    } else if (estrela != std::string_view::npos) {
      m = estrela + 1;
      t = ++retomada;
    } else {
      return false;
    }
  }
  while (m < mascara.size() && mascara[m] == '*') {
    ++m;
  }
  return m == mascara.size();
}

}  // namespace

CString Maiusculas(const CString &texto) {
  CString maiusculas(texto);
  std::transform(maiusculas.begin(), maiusculas.end(), maiusculas.begin(), Maiuscula);
  return maiusculas;
}

bool CasaCuringa(const char *texto, const char *padrao) {
  const CString alvo = Maiusculas(texto);
  const CString lista = Maiusculas(padrao);
  if (lista == "*.*") {
    return true;
  }
  std::string_view resto = lista;
  while (!resto.empty()) {
    const std::size_t fim = std::min(resto.find(';'), resto.size());
    if (CasaMascara(alvo, SemBrancosIniciais(resto.substr(0, fim)))) {
      return true;
    }
    resto.remove_prefix(std::min(fim + 1, resto.size()));
    resto = SemBrancosIniciais(resto);
  }
  return false;
}

bool PaginaDeUmByte() {
  return true;
}

}  // namespace plataforma
