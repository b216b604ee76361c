#ifndef KALVO_VEHICLES_VERSAOBASEVEICULOS_H
#define KALVO_VEHICLES_VERSAOBASEVEICULOS_H

#include <cstdint>

#include "core/qzdatabase/arquivo/NomeTipoRegistro.h"

inline constexpr char kArquivoVersao[] = "DFVEIVS.DAT";

/// The single record of "DFVEIVS.DAT": the version of a company's vehicle base. A missing file is version 0.
struct REG_DF_VEICULO_VERSAO {
  std::uint16_t iVersao;
  std::uint8_t cReservado[14];  ///< zero
};
static_assert(sizeof(REG_DF_VEICULO_VERSAO) == 16);

template <>
struct NomeTipoRegistro<REG_DF_VEICULO_VERSAO> {
  static constexpr char kNome[] = "struct REG_DF_VEICULO_VERSAO";
};

/// The version that this program writes.
inline constexpr std::uint16_t kVersaoBaseVeiculos = 1;

/// A stored record of a version-0 base: the layout of RegVeiculo, whose content the conversion does not look at. The
/// first one was not a vehicle.
struct RegVeiculo_V01 {
  std::uint8_t cConteudo[256];
};

template <>
struct NomeTipoRegistro<RegVeiculo_V01> {
  static constexpr char kNome[] = "struct RegVeiculo_V01";
};

#endif
