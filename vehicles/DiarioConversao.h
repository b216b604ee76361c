#ifndef KALVO_VEHICLES_DIARIOCONVERSAO_H
#define KALVO_VEHICLES_DIARIOCONVERSAO_H

#include <cstddef>
#include <cstdint>

// The journal of a base's conversion, "DFVEIVSD.TRA": what the record file is without its first record.

inline constexpr char kArquivoDiario[] = "DFVEIVSD.TRA";

/// What identifies the records of a file: its bytes behind the header, if it has one.
struct IdentidadeRegistros {
  std::uint64_t uiTamanho = 0;
  std::uint64_t uiCrc = 0;
  bool operator==(const IdentidadeRegistros &) const = default;
};

/// The journal's only record.
struct RegDiario {
  std::uint16_t iVersao;
  std::uint8_t cReservado[6];
  IdentidadeRegistros convertida;
  std::uint64_t uiCrcDiario;  ///< of the bytes before: one that was not written whole counts as none
};
static_assert(sizeof(RegDiario) == 32 && offsetof(RegDiario, uiCrcDiario) == 24);

#endif
