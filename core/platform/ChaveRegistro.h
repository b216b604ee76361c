#ifndef KALVO_CORE_PLATFORM_CHAVEREGISTRO_H
#define KALVO_CORE_PLATFORM_CHAVEREGISTRO_H

#include <cstdint>
#include <memory>
#include <optional>

#include "core/platform/Tipos.h"

namespace plataforma {

/// What an open key may be used for.
enum class AcessoChave {
  Leitura,
  LeituraEscrita,  ///< also setting values and creating keys below it
};

/// One open key of a registry; destruction closes it. Value names are compared without regard to letter case. Any
/// thread may use it.
class IChaveRegistro {
public:
  virtual ~IChaveRegistro() = default;

  /// A text value (REG_SZ or REG_EXPAND_SZ) up to its first zero byte; `bExpande` replaces %NAME% in a REG_EXPAND_SZ by
  /// the process environment. Empty optional when the value is missing or of another type.
  virtual std::optional<CString> LeTexto(const CString &sNome, bool bExpande) = 0;

  /// A REG_DWORD value. Empty optional when it is missing or of another type.
  virtual std::optional<std::uint32_t> LeNumero(const CString &sNome) = 0;

  /// Sets a REG_SZ value, replacing one of any type. False when that fails, as it does on a key open for reading only.
  virtual bool GravaTexto(const CString &sNome, const CString &sTexto) = 0;

  /// Creates a key below this one; one that is there stays as it is. False when that fails, as it does on a key open
  /// for reading only.
  virtual bool CriaSubchave(const CString &sNome) = 0;

protected:
  IChaveRegistro() = default;
  IChaveRegistro(const IChaveRegistro &) = default;
  IChaveRegistro &operator=(const IChaveRegistro &) = default;
};

/// Opens a key of the local machine's hive, here or on another machine (`sMaquina` as "\\server"; empty for this one;
/// asking another one may take seconds). The path is relative to the hive, `\`-separated, with or without a final `\`.
/// Null when the key does not exist or cannot be opened. Any thread may call.
std::unique_ptr<IChaveRegistro> AbreChaveRegistro(const CString &sChave, AcessoChave eAcesso = AcessoChave::Leitura,
                                                  const CString &sMaquina = {});

}  // namespace plataforma

#endif
