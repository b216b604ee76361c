#ifndef KALVO_CORE_QZDATABASE_DISCO_QZCRC64_H
#define KALVO_CORE_QZDATABASE_DISCO_QZCRC64_H

#include <cstddef>
#include <cstdint>

// The system's 64-bit CRC: the reflected ECMA-182 polynomial, initial value 0, no final inversion. With these it is
// linear: the CRC of a file that changed in one place follows from the old CRC and the changed bytes alone.

/// CRC of a range. `uiInicial` is the CRC of the bytes before, so that a range may be processed in pieces.
std::uint64_t CalculaCrc64(const void *pDados, std::size_t cb, std::uint64_t uiInicial = 0);

/// CRC of a range followed by `cbZeros` zero bytes, given the CRC of the range. Takes the same time for any length.
std::uint64_t Crc64ComZeros(std::uint64_t crc, std::uint64_t cbZeros);

namespace crc64 {

/// The two ways in which CalculaCrc64 and Crc64ComZeros work, for the tests that compare them: by tables, on any
/// processor, and by carry-less multiplication.
std::uint64_t CalculaPorTabela(const void *pDados, std::size_t cb, std::uint64_t uiInicial);
std::uint64_t CalculaPorMultiplicacao(const void *pDados, std::size_t cb, std::uint64_t uiInicial);
std::uint64_t ComZerosPorTabela(std::uint64_t crc, std::uint64_t cbZeros);
std::uint64_t ComZerosPorMultiplicacao(std::uint64_t crc, std::uint64_t cbZeros);

/// True when this processor has the carry-less multiplication.
bool TemMultiplicacao();

}  // namespace crc64

#endif
