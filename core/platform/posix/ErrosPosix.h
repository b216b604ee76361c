#ifndef KALVO_CORE_PLATFORM_POSIX_ERROSPOSIX_H
#define KALVO_CORE_PLATFORM_POSIX_ERROSPOSIX_H

#include <cstdint>
#include <string>

#include "core/platform/Tipos.h"

namespace plataforma {

constexpr std::uint32_t kErroAcesso = 5;  ///< ERROR_ACCESS_DENIED

/// The Win32 number of an errno value; ENOENT is taken as "file not found". Never 0 for a value other than 0.
std::uint32_t ErroWin32DeErrno(int erro);

/// Like ErroWin32DeErrno for an operation on `sCaminho` (in this system's form): tells a missing file (2) from a
/// missing directory (3).
std::uint32_t ErroWin32DeCaminho(int erro, const std::string &sCaminho);

/// A path with `\` in this system's form.
std::string CaminhoNativo(const CString &sCaminho);

/// The directory part of a path in this system's form, "." when it has none.
std::string DiretorioDe(const std::string &sCaminho);

}  // namespace plataforma

#endif
