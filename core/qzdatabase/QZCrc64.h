#ifndef KALVO_CORE_QZDATABASE_QZCRC64_H
#define KALVO_CORE_QZDATABASE_QZCRC64_H

#include <cstddef>
#include <cstdint>

/// The system's 64-bit CRC: the reflected ECMA-182 polynomial, initial value 0, no final inversion. `uiInicial` is the
/// CRC of the bytes before, so that a range may be processed in pieces.
std::uint64_t CalculaCrc64(const void *pDados, std::size_t cb, std::uint64_t uiInicial = 0);

#endif
