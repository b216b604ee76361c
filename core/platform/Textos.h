#ifndef KALVO_CORE_PLATFORM_TEXTOS_H
#define KALVO_CORE_PLATFORM_TEXTOS_H

#include "core/platform/Tipos.h"

namespace plataforma {

/// Upper case by the rules of the Windows ANSI code page, accented letters included: the folding that file and
/// registry names undergo.
CString Maiusculas(const CString &sTexto);

/// The Windows shell's wildcard match (`PathMatchSpecA`): '*' any run, '?' one character, letter case ignored, ';'
/// separates alternative patterns, blanks before a pattern are skipped, "*.*" matches everything. Both texts are
/// zero-terminated. Any thread may call; never fails.
bool CasaCuringa(const char *lpTexto, const char *lpPadrao);

/// True when every letter of the Windows ANSI code page takes one byte.
bool PaginaDeUmByte();

}  // namespace plataforma

#endif
