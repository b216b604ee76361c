#ifndef KALVO_CORE_PLATFORM_POSIX_ARQUIVOINI_H
#define KALVO_CORE_PLATFORM_POSIX_ARQUIVOINI_H

#include <optional>
#include <string>

#include "core/platform/Tipos.h"

namespace plataforma {

/// Value of a key of an ini file (path in this system's form), by the rules of the Windows profile functions: names
/// without regard to letter case, the first section and the first key of a name count, blanks around names and values
/// and one pair of quotes around a value are taken off. Empty optional when there is none.
std::optional<CString> ValorIni(const std::string &sCaminho, const CString &sSecao, const CString &sChave);

/// The number at the start of a value, 0 when it starts with none: a sign and digits, or digits of another base behind
/// "0x", "0o" or "0b". It wraps at 32 bits.
std::uint32_t NumeroIni(const CString &sValor);

}  // namespace plataforma

#endif
