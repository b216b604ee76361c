#ifndef KALVO_CORE_PLATFORM_POSIX_TIPOSPLATAFORMA_H
#define KALVO_CORE_PLATFORM_POSIX_TIPOSPLATAFORMA_H

#include <cstdint>

// The Windows integer names at their Windows widths; `long` would be 64 bits here.

using LONG = std::int32_t;
using HRESULT = std::int32_t;
using DWORD = std::uint32_t;

#endif
