#ifndef KALVO_CORE_PLATFORM_TIPOS_H
#define KALVO_CORE_PLATFORM_TIPOS_H

#include <cstdint>
#include <string>

#include "TiposPlataforma.h"

static_assert(sizeof(LONG) == 4 && sizeof(HRESULT) == 4 && sizeof(DWORD) == 4, "fixed 32-bit types");

/// 8-bit text in the Windows ANSI code page (Windows-1252).
using CString = std::string;

/// Builds a result code from its 32 bits.
constexpr HRESULT CodigoResultado(std::uint32_t bits) {
  return static_cast<HRESULT>(bits);
}

/// The result code of a Win32 error number, of which the low 16 bits count.
constexpr HRESULT CodigoWin32(std::uint32_t erro) {
  return CodigoResultado(0x80070000U | (erro & 0xFFFFU));
}

/// The 32 bits of a result code, for comparison with codes written in hexadecimal.
constexpr std::uint32_t BitsResultado(HRESULT hr) {
  return static_cast<std::uint32_t>(hr);
}

/// Negative results are failures; zero and positive ones are successes.
constexpr bool Falhou(HRESULT hr) {
  return hr < 0;
}

#endif
