#ifndef KALVO_TESTS_CAMPANHA_VEICULONUMERADO_H
#define KALVO_TESTS_CAMPANHA_VEICULONUMERADO_H

#include <cstdlib>
#include <cstring>
#include <string>

#include "tests/com/ApoioCom.h"

namespace campanha {

/// The vehicle of a number from 1 on. It fills every byte of the record that is stored, and its code is the number, so
/// that a vehicle that was read tells which write it must equal.
inline tagREG_VEICULOPS VeiculoNumerado(std::uint32_t uiNumero) {
  tagREG_VEICULOPS veiculo{};
  const auto letra = static_cast<char>('A' + uiNumero % 26);
  const auto octeto = static_cast<std::uint8_t>(1 + uiNumero % 255);
  veiculo.vTara = uiNumero * std::int64_t{0x0101010101};
  veiculo.vCapacidadeKg = ~veiculo.vTara;
  veiculo.vCapacidadeM3 = -veiculo.vTara;
  veiculo.iAno = uiNumero;
  veiculo.iPonteiroCliente = static_cast<std::uint16_t>(uiNumero);
  apoiocom::Preenche(veiculo.szDescricao, std::string(sizeof(veiculo.szDescricao), letra));
  apoiocom::Preenche(veiculo.szCodigoANTT, std::string(sizeof(veiculo.szCodigoANTT), letra));
  apoiocom::Preenche(veiculo.szCodigo, std::to_string(uiNumero));
  apoiocom::Preenche(veiculo.szRENAVAM, std::string(sizeof(veiculo.szRENAVAM), letra));
  apoiocom::Preenche(veiculo.szPlaca, std::string(sizeof(veiculo.szPlaca), letra));
  apoiocom::Preenche(veiculo.szUF, std::string(sizeof(veiculo.szUF), letra));
  veiculo.iTipoCarroceria = octeto;
  veiculo.iTipoRodado = octeto;
  veiculo.iTipoVeiculo = octeto;
  veiculo.iTipoTransporte = octeto;
  return veiculo;
}

/// The number of a vehicle; 0 when it is not byte for byte the one of its number.
inline std::uint32_t NumeroDe(const tagREG_VEICULOPS &veiculo) {
  const auto uiNumero = static_cast<std::uint32_t>(std::strtoul(apoiocom::CodigoDe(veiculo).c_str(), nullptr, 10));
  const tagREG_VEICULOPS inteiro = VeiculoNumerado(uiNumero);
  return std::memcmp(&veiculo, &inteiro, sizeof(inteiro)) == 0 ? uiNumero : 0;
}

}  // namespace campanha

#endif
