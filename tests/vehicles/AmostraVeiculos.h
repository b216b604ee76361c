#ifndef KALVO_TESTS_VEHICLES_AMOSTRAVEICULOS_H
#define KALVO_TESTS_VEHICLES_AMOSTRAVEICULOS_H

#include <algorithm>
#include <cstring>
#include <string>

#include "tests/apoio/EmpresaComBase.h"
#include "vehicles/BaseVeiculos.h"
#include "vehicles/RegVeiculoPS.h"

using apoio::Bytes;

/// Fills a text field, cut to its width.
template <std::size_t N>
void Preenche(char (&campo)[N], const std::string &texto) {
  std::fill(campo, campo + N, '\0');
  std::copy_n(texto.begin(), std::min(texto.size(), N), campo);
}

/// A complete vehicle. No two of its numbers are equal, and the wide ones use all their bytes.
inline tagREG_VEICULOPS VeiculoCompleto() {
  tagREG_VEICULOPS v{};
  Preenche(v.szCodigo, "V001");
  Preenche(v.szPlaca, "ABC1D23");
  Preenche(v.szUF, "SP");
  Preenche(v.szDescricao, "CAMINHAO TOCO");
  v.iAno = 2020;
  Preenche(v.szCodigoANTT, "12345678");
  v.iTipoCarroceria = 2;
  v.iTipoRodado = 1;
  v.iTipoVeiculo = 3;
  v.vTara = 0x4142434445464748;
  v.vCapacidadeKg = 0x6162636465666768;
  v.vCapacidadeM3 = 0x3132333435363738;
  Preenche(v.szRENAVAM, "00123456789");
  v.iPonteiroCliente = 0x797A;
  v.iTipoTransporte = 4;
  return v;
}

/// Another one with this code, without a plate.
inline tagREG_VEICULOPS Veiculo(const std::string &codigo) {
  tagREG_VEICULOPS v = VeiculoCompleto();
  Preenche(v.szCodigo, codigo);
  Preenche(v.szPlaca, "");
  return v;
}

/// The version file of a base of version 1.
inline const std::string kVersao1 = std::string("\x01", 1) + std::string(15, '\0');

/// The bytes of a vehicle file whose records are filled with the given letters.
inline std::string Base(const std::string &letras) {
  std::string bytes;
  for (const char letra : letras) {
    bytes += std::string(256, letra);
  }
  return bytes;
}

/// Opens a company's register and lets it go.
inline HRESULT AbreUmaVez(const CString &sEmpresa) {
  return CBaseVeiculos().Inicializa(sEmpresa, 7, 42);
}

#endif
