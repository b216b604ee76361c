#include "core/platform/posix/ArquivoIni.h"

#include <algorithm>
#include <fstream>
#include <string_view>

#include "core/platform/Textos.h"

namespace plataforma {
namespace {

constexpr std::string_view kBrancos = " \t\r\n\v\f";

CString Aparado(std::string_view texto) {
  const std::size_t inicio = texto.find_first_not_of(kBrancos);
  if (inicio == std::string_view::npos) {
    return {};
  }
  return CString(texto.substr(inicio, texto.find_last_not_of(kBrancos) - inicio + 1));
}

CString SemAspas(const CString &valor) {
  const bool bAspas = valor.size() >= 2 && valor.front() == valor.back() && (valor[0] == '"' || valor[0] == '\'');
  return bAspas ? valor.substr(1, valor.size() - 2) : valor;
}

/// Value of a digit of any base, 99 for anything else.
std::uint32_t Digito(char letra) {
  if (letra >= '0' && letra <= '9') {
    return static_cast<std::uint32_t>(letra - '0');
  }
  const char minuscula = static_cast<char>(letra | 0x20);
  return minuscula >= 'a' && minuscula <= 'f' ? static_cast<std::uint32_t>(minuscula - 'a') + 10 : 99;
}

/// The base that a prefix names, 10 without one.
std::uint32_t BaseDe(std::string_view digitos) {
  if (digitos.starts_with("0x")) {
    return 16;
  }
  return digitos.starts_with("0o") ? 8 : digitos.starts_with("0b") ? 2 : 10;
}

}  // namespace

std::optional<CString> ValorIni(const std::string &caminho, const CString &secao, const CString &chave) {
  std::ifstream arquivo(caminho, std::ios::binary);
  const CString secaoProcurada = Maiusculas(secao);
  const CString chaveProcurada = Maiusculas(chave);
  bool bNaSecao = false;
  for (std::string bruta; std::getline(arquivo, bruta);) {
    const CString linha = Aparado(bruta);
    if (linha.starts_with('[')) {
      if (bNaSecao) {
        return std::nullopt;
      }
      bNaSecao = Maiusculas(Aparado(linha.substr(1, linha.find_last_of(']') - 1))) == secaoProcurada;
      continue;
    }
    const std::size_t igual = linha.find('=');
    if (bNaSecao && igual != CString::npos && Maiusculas(Aparado(linha.substr(0, igual))) == chaveProcurada) {
      return SemAspas(Aparado(linha.substr(igual + 1)));
    }
  }
  return std::nullopt;
}

std::uint32_t NumeroIni(const CString &valor) {
  std::string_view resto = valor;
  resto.remove_prefix(std::min(resto.find_first_not_of(kBrancos), resto.size()));
  const bool bNegativo = resto.starts_with('-');
  resto.remove_prefix(bNegativo || resto.starts_with('+') ? 1 : 0);
  const std::uint32_t base = BaseDe(resto);
  resto.remove_prefix(base == 10 ? 0 : 2);
  std::uint32_t numero = 0;
  for (; !resto.empty() && Digito(resto.front()) < base; resto.remove_prefix(1)) {
    numero = numero * base + Digito(resto.front());
  }
  return bNegativo ? 0 - numero : numero;
}

}  // namespace plataforma
