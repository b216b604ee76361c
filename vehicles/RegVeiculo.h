#ifndef KALVO_VEHICLES_REGVEICULO_H
#define KALVO_VEHICLES_REGVEICULO_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/qzdatabase/arquivo/NomeTipoRegistro.h"
#include "core/qzdatabase/arquivo/QZIndices.h"
#include "vehicles/RegVeiculoPS.h"
#include "vehicles/ResumosVeiculos.h"

/// One vehicle as stored in "DFVEIC.DAT". Texts are zero-terminated when shorter than their field and not terminated
/// when they fill it; currency fields are counts of ten-thousandths.
struct RegVeiculo {
  char szCodigo[13];
  char szPlaca[9];
  char szUF[3];
  char szDescricao[51];
  std::uint32_t iAno;
  char szCodigoANTT[21];
  std::uint8_t iTipoCarroceria;
  std::uint8_t iTipoRodado;
  std::uint8_t iTipoVeiculo;
  std::int64_t vTara;
  std::int64_t vCapacidadeKg;
  std::int64_t vCapacidadeM3;
  char szRENAVAM[12];
  std::uint16_t iPonteiroCliente;
  std::uint8_t iTipoTransporte;
  std::uint8_t cReservado[113];  ///< always zero when written
};
static_assert(sizeof(RegVeiculo) == 256 && offsetof(RegVeiculo, szPlaca) == 13 && offsetof(RegVeiculo, szUF) == 22);
static_assert(offsetof(RegVeiculo, szDescricao) == 25 && offsetof(RegVeiculo, iAno) == 76);
static_assert(offsetof(RegVeiculo, szCodigoANTT) == 80 && offsetof(RegVeiculo, iTipoCarroceria) == 101);
static_assert(offsetof(RegVeiculo, iTipoRodado) == 102 && offsetof(RegVeiculo, iTipoVeiculo) == 103);
static_assert(offsetof(RegVeiculo, vTara) == 104 && offsetof(RegVeiculo, vCapacidadeKg) == 112);
static_assert(offsetof(RegVeiculo, vCapacidadeM3) == 120 && offsetof(RegVeiculo, szRENAVAM) == 128);
static_assert(offsetof(RegVeiculo, iPonteiroCliente) == 140 && offsetof(RegVeiculo, iTipoTransporte) == 142);
static_assert(offsetof(RegVeiculo, cReservado) == 143);

template <>
struct NomeTipoRegistro<RegVeiculo> {
  static constexpr char kNome[] = "struct RegVeiculo";
};

/// Vehicles are looked for by their codes and plates.
template <>
struct CamposIndexados<RegVeiculo> {
  static constexpr std::array<CampoIndexado, 2> kCampos = {
      {{offsetof(RegVeiculo, szCodigo), sizeof(RegVeiculo::szCodigo)},
       {offsetof(RegVeiculo, szPlaca), sizeof(RegVeiculo::szPlaca)}}};
};

/// Most searches look at a vehicle's digest first.
template <>
struct ResumosDeRegistros<RegVeiculo> {
  using Bloco = CResumosVeiculos;
};

/// Builds the stored record from the interface record: all texts cut at their terminator, everything else of the record
/// zero. iFiller, lPosicao and cFiller are not looked at.
void CopiaParaRegistro(const tagREG_VEICULOPS &origem, RegVeiculo *pDestino);

/// Builds the interface record from the stored one. iFiller, lPosicao and cFiller are zero.
void CopiaParaInterface(const RegVeiculo &origem, tagREG_VEICULOPS *pDestino);

#endif
