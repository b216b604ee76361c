#ifndef KALVO_CORE_PLATFORM_WIN32_TIPOSPLATAFORMA_H
#define KALVO_CORE_PLATFORM_WIN32_TIPOSPLATAFORMA_H

// The platform's own integer names, spelled as the Windows headers spell them so that both may be included, without
// bringing those headers (and their macros) into every file.

typedef long LONG;            // NOLINT(modernize-use-using)
typedef long HRESULT;         // NOLINT(modernize-use-using)
typedef unsigned long DWORD;  // NOLINT(modernize-use-using)

#endif
