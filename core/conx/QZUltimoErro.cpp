#include "core/conx/QZUltimoErro.h"

#include <cstdarg>
#include <cstdio>
#include <utility>

namespace {

/// The formatted text, whatever its length; empty for a format that cannot be followed.
[[gnu::format(printf, 1, 0)]] CString Formata(const char *lpFormato, va_list argumentos) {
  va_list copia;
  va_copy(copia, argumentos);
  const int iTamanho = std::vsnprintf(nullptr, 0, lpFormato, copia);
  va_end(copia);
  CString texto(iTamanho > 0 ? static_cast<std::size_t>(iTamanho) : 0, '\0');
  std::vsnprintf(texto.data(), texto.size() + 1, lpFormato, argumentos);
  return texto;
}

}  // namespace

void CQZUltimoErro::SetErro(HRESULT hr, std::int32_t iNumeroServidor, std::int32_t lComplemento) {
  m_erro = {hr, iNumeroServidor, lComplemento, {}};
}

void CQZUltimoErro::SetErro(HRESULT hr, std::int32_t iNumeroServidor, std::int32_t lComplemento, const char *lpFormato,
                            ...) {
  va_list argumentos;
  va_start(argumentos, lpFormato);
  CString sMensagem = Formata(lpFormato, argumentos);
  va_end(argumentos);
  m_erro = {hr, iNumeroServidor, lComplemento, std::move(sMensagem)};
}
