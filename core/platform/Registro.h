#ifndef KALVO_CORE_PLATFORM_REGISTRO_H
#define KALVO_CORE_PLATFORM_REGISTRO_H

#include <cstdint>
#include <optional>

#include "core/platform/Tipos.h"

namespace plataforma {

/// Reading values of the local machine's registry hive. Key paths are relative to the hive, `\`-separated, with or
/// without a final `\`; keys and value names are compared without regard to letter case. Nothing is cached: each call
/// sees the present state. Any thread may call, several at once.
class IRegistro {
public:
  virtual ~IRegistro() = default;

  /// True when the key exists and can be opened for reading.
  virtual bool ExisteChave(const CString &sChave) = 0;

  /// A text value (REG_SZ or REG_EXPAND_SZ) up to its first zero byte; `bExpande` replaces %NAME% in a REG_EXPAND_SZ by
  /// the process environment. Empty optional when the key or value is missing or of another type.
  virtual std::optional<CString> LeTexto(const CString &sChave, const CString &sNome, bool bExpande) = 0;

  /// A REG_DWORD value. Empty optional when the key or value is missing or of another type.
  virtual std::optional<std::uint32_t> LeNumero(const CString &sChave, const CString &sNome) = 0;

protected:
  IRegistro() = default;
  IRegistro(const IRegistro &) = default;
  IRegistro &operator=(const IRegistro &) = default;
};

}  // namespace plataforma

#endif
