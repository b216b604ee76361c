#ifndef KALVO_BENCH_AMOSTRA_H
#define KALVO_BENCH_AMOSTRA_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>

#include "vehicles/RegVeiculo.h"

/// Number of records that the benchmarks work on.
inline constexpr std::uint32_t kRegistrosAmostra = 1000000;

/// The n-th made-up vehicle, always the same. About 1 % are of year 2020, and about 1 % are described as "... SILO
/// ...".
inline RegVeiculo VeiculoDaAmostra(std::uint32_t n) {
  static constexpr const char *kUFs[] = {"SP", "RJ", "MG", "RS"};
  RegVeiculo reg{};
  const std::uint32_t h = n * 2654435761U;
  std::snprintf(reg.szCodigo, sizeof(reg.szCodigo), "V%07u", n);
  std::snprintf(reg.szPlaca, sizeof(reg.szPlaca), "ABC%04u", n % 10000);
  std::copy_n(kUFs[h % std::size(kUFs)], 2, reg.szUF);
  std::snprintf(reg.szDescricao, sizeof(reg.szDescricao), "CAMINHAO %s NUMERO %u", h % 100 == 7 ? "SILO" : "TRUCK", n);
  reg.iAno = 1920 + h / 64 % 101;
  reg.iTipoCarroceria = static_cast<std::uint8_t>(h % 6);
  reg.iTipoRodado = static_cast<std::uint8_t>(h % 7);
  reg.vTara = (5000 + h % 10000) * std::int64_t{10000};
  reg.vCapacidadeKg = (10000 + h % 20000) * std::int64_t{10000};
  reg.iPonteiroCliente = static_cast<std::uint16_t>(n);
  return reg;
}

#endif
