#ifndef KALVO_BENCH_BASEAMOSTRA_H
#define KALVO_BENCH_BASEAMOSTRA_H

#include <cstdint>

#include "bench/Amostra.h"
#include "bench/EmpresaBench.h"
#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "vehicles/BaseVeiculos.h"
#include "vehicles/VersaoBaseVeiculos.h"

/// A register over a temporary directory, filled with a sample.
class Base {
public:
  Base(const char *lpEmpresa, std::uint32_t iRegistros, RegVeiculo (*veiculo)(std::uint32_t) = VeiculoDaAmostra)
      : m_empresa(lpEmpresa), m_iRegistros(iRegistros) {
    CQZProfilerEmpresa dono(lpEmpresa, 1, 1);
    CQZDataBase_Veiculos banco;
    Exige(banco.Inicializa(dono), "Inicializa");
    CArray<RegVeiculo> aRegistros;
    aRegistros.SetSize(iRegistros);
    for (std::uint32_t n = 1; n <= iRegistros; ++n) {
      aRegistros[n - 1] = veiculo(n);
    }
    std::uint64_t uiPosicao = 0;
    Exige(banco.m_Veiculos.GravaColecao(uiPosicao, aRegistros), "GravaColecao");
    Exige(banco.Finaliza(), "Finaliza");
    Exige(CQZDataBaseUtil::GravaSingleReg(&dono, QZ_DF, REG_DF_VEICULO_VERSAO{kVersaoBaseVeiculos, {}}, "DFVEIVS.DAT"),
          "GravaSingleReg");
    Abre();
  }
  ~Base() { static_cast<void>(m_registro.Finaliza()); }
  Base(const Base &) = delete;
  Base &operator=(const Base &) = delete;

  void Abre() { Exige(m_registro.Inicializa(m_empresa.Codigo(), 1, 1), "register"); }
  void Fecha() { Exige(m_registro.Finaliza(), "Finaliza"); }
  CBaseVeiculos &Registro() { return m_registro; }
  std::uint32_t Registros() const { return m_iRegistros; }
  CString Caminho(const char *lpArquivo) const { return m_empresa.Caminho(lpArquivo); }

private:
  EmpresaBench m_empresa;
  std::uint32_t m_iRegistros;
  CBaseVeiculos m_registro;
};

/// Made-up numbers, always the same.
class Sorteio {
public:
  /// From 1 to `uiMaximo`.
  std::uint32_t Ate(std::uint32_t uiMaximo) {
    m_n = m_n * 1664525U + 1013904223U;
    return static_cast<std::uint32_t>((std::uint64_t{m_n} * uiMaximo) >> 32) + 1;
  }

private:
  std::uint32_t m_n = 1;
};

#endif
