#ifndef KALVO_CORE_PLATFORM_WIN32_POSSES_H
#define KALVO_CORE_PLATFORM_WIN32_POSSES_H

#include <windows.h>

#include <memory>
#include <type_traits>

namespace plataforma {

// Owners of what the system hands out; destruction gives it back. Empty is null for all of them: INVALID_HANDLE_VALUE
// is to be taken for null before.

struct FechaHandle {
  void operator()(HANDLE h) const { ::CloseHandle(h); }
};
using PosseHandle = std::unique_ptr<std::remove_pointer_t<HANDLE>, FechaHandle>;

struct FechaBusca {
  void operator()(HANDLE h) const { ::FindClose(h); }
};
using PosseBusca = std::unique_ptr<std::remove_pointer_t<HANDLE>, FechaBusca>;

struct FechaChave {
  void operator()(HKEY h) const { ::RegCloseKey(h); }
};
using PosseChave = std::unique_ptr<std::remove_pointer_t<HKEY>, FechaChave>;

struct LiberaModulo {
  void operator()(HMODULE h) const { ::FreeLibrary(h); }
};
using PosseModulo = std::unique_ptr<std::remove_pointer_t<HMODULE>, LiberaModulo>;

struct LiberaMapa {
  void operator()(void *p) const { ::UnmapViewOfFile(p); }
};
using PosseMapa = std::unique_ptr<void, LiberaMapa>;

struct LiberaLocal {
  void operator()(void *p) const { ::LocalFree(p); }
};
using PosseLocal = std::unique_ptr<void, LiberaLocal>;

/// A handle of which the system says with INVALID_HANDLE_VALUE that there is none.
inline HANDLE NuloSeInvalido(HANDLE h) {
  return h != INVALID_HANDLE_VALUE ? h : nullptr;
}

}  // namespace plataforma

#endif
