#include "core/conx/QZUltimoErro.h"

#include <cstdarg>
#include <cstdio>
#include <utility>

void CQZUltimoErro::SetErro(HRESULT hr, std::int32_t iNumeroServidor, std::int32_t lComplemento) {
  m_erro = {hr, iNumeroServidor, lComplemento, {}};
}

void CQZUltimoErro::SetErro(HRESULT hr, std::int32_t iNumeroServidor, std::int32_t lComplemento, const char *lpFormato,
                            ...) {
  // Once for the length of the text, which has no limit, and once for the text. The analyser loses sight of va_start
  // when it is given several files at once. NOLINTBEGIN(clang-analyzer-valist.Uninitialized)
  va_list argumentos;
  va_start(argumentos, lpFormato);
  const int iTamanho = std::vsnprintf(nullptr, 0, lpFormato, argumentos);
  va_end(argumentos);
  CString sMensagem(iTamanho > 0 ? static_cast<std::size_t>(iTamanho) : 0, '\0');
  va_start(argumentos, lpFormato);
  std::vsnprintf(sMensagem.data(), sMensagem.size() + 1, lpFormato, argumentos);
  va_end(argumentos);
  // NOLINTEND(clang-analyzer-valist.Uninitialized)
  m_erro = {hr, iNumeroServidor, lComplemento, std::move(sMensagem)};
}
