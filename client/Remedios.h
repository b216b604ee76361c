#ifndef KALVO_CLIENT_REMEDIOS_H
#define KALVO_CLIENT_REMEDIOS_H

#include <cstdint>
#include <string>

/// What to do about a result code, in the words of docs/diagnosis.md and docs/installation.md; Windows-1252, without a
/// final period. Empty where there is nothing to advise.
std::string RemedioDoErro(std::uint32_t uiCodigo);

#endif
