#include "core/platform/posix/ArquivoIni.h"

#include <algorithm>
#include <fstream>
#include <string_view>

#include "core/platform/Textos.h"

namespace plataforma {
namespace {

constexpr std::string_view kBrancos = " \t\r\n\v\f";

CString Aparado(std::string_view sTexto) {
  const std::size_t inicio = sTexto.find_first_not_of(kBrancos);
  if (inicio == std::string_view::npos) {
    return {};
  }
  return CString(sTexto.substr(inicio, sTexto.find_last_not_of(kBrancos) - inicio + 1));
}

CString SemAspas(const CString &sValor) {
  const bool bAspas = sValor.size() >= 2 && sValor.front() == sValor.back() && (sValor[0] == '"' || sValor[0] == '\'');
  return bAspas ? sValor.substr(1, sValor.size() - 2) : sValor;
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
std::uint32_t BaseDe(std::string_view sDigitos) {
  if (sDigitos.starts_with("0x")) {
    return 16;
  }
  return sDigitos.starts_with("0o") ? 8 : sDigitos.starts_with("0b") ? 2 : 10;
}

}  // namespace

std::optional<CString> ValorIni(const std::string &sCaminho, const CString &sSecao, const CString &sChave) {
  std::ifstream arquivo(sCaminho, std::ios::binary);
  const CString sSecaoProcurada = Maiusculas(sSecao);
  const CString sChaveProcurada = Maiusculas(sChave);
  bool bNaSecao = false;
  for (std::string sBruta; std::getline(arquivo, sBruta);) {
    const CString sLinha = Aparado(sBruta);
    if (sLinha.starts_with('[')) {
      if (bNaSecao) {
        return std::nullopt;
      }
      bNaSecao = Maiusculas(Aparado(sLinha.substr(1, sLinha.find_last_of(']') - 1))) == sSecaoProcurada;
      continue;
    }
    const std::size_t igual = sLinha.find('=');
    if (bNaSecao && igual != CString::npos && Maiusculas(Aparado(sLinha.substr(0, igual))) == sChaveProcurada) {
      return SemAspas(Aparado(sLinha.substr(igual + 1)));
    }
  }
  return std::nullopt;
}

std::uint32_t NumeroIni(const CString &sValor) {
  std::string_view sResto = sValor;
  sResto.remove_prefix(std::min(sResto.find_first_not_of(kBrancos), sResto.size()));
  const bool bNegativo = sResto.starts_with('-');
  sResto.remove_prefix(bNegativo || sResto.starts_with('+') ? 1 : 0);
  const std::uint32_t base = BaseDe(sResto);
  sResto.remove_prefix(base == 10 ? 0 : 2);
  std::uint32_t numero = 0;
  for (; !sResto.empty() && Digito(sResto.front()) < base; sResto.remove_prefix(1)) {
    numero = numero * base + Digito(sResto.front());
  }
  return bNegativo ? 0 - numero : numero;
}

}  // namespace plataforma
