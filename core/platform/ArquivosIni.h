#ifndef KALVO_CORE_PLATFORM_ARQUIVOSINI_H
#define KALVO_CORE_PLATFORM_ARQUIVOSINI_H

#include <cstddef>
#include <cstdint>

#include "core/platform/Tipos.h"

namespace plataforma {

/// Reading ini files by the rules of the Windows profile functions: a leading number counts, the rest is ignored;
/// quotes around a text are taken off; the first of several equal keys counts. Paths are absolute. A missing file,
/// section or key gives the default. Nothing is cached. Any thread may call, several at once.
class IArquivosIni {
public:
  virtual ~IArquivosIni() = default;

  /// Value of a key in a section, as a number.
  virtual std::uint32_t LeInteiro(const CString &sArquivo, const char *lpSecao, const char *lpChave,
                                  std::uint32_t padrao) = 0;
  /// The same as a text, at most `maximo` characters of it.
  virtual CString LeTexto(const CString &sArquivo, const char *lpSecao, const char *lpChave, const char *padrao,
                          std::size_t maximo) = 0;

protected:
  IArquivosIni() = default;
  IArquivosIni(const IArquivosIni &) = default;
  IArquivosIni &operator=(const IArquivosIni &) = default;
};

}  // namespace plataforma

#endif
