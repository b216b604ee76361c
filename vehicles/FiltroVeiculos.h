#ifndef KALVO_VEHICLES_FILTROVEICULOS_H
#define KALVO_VEHICLES_FILTROVEICULOS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "vehicles/PadraoCuringa.h"
#include "vehicles/RegVeiculo.h"

/// A filter prepared for many records. Only the criteria that are in force are kept, in the order in which they are
/// examined; the first that fails rejects the record.
///
/// A text criterion with '*' or '?' gives the verdict of the whole test: nothing after it is examined. Immutable once
/// built; any thread may use it.
class CFiltroVeiculos {
public:
  explicit CFiltroVeiculos(const tagREG_FILTRO_VEICULOSPS &Filtro);

  /// True when the record passes. Looks only at the fields that criteria in force name.
  bool Atende(const RegVeiculo &reg) const {
    return (!m_bFaixas || AtendeFaixas(reg)) && (!m_bTextosOuMascaras || AtendeTextosEMascaras(reg));
  }

  /// True when no criterion is in force: every record passes.
  bool PassaTudo() const { return !m_bFaixas && !m_bTextosOuMascaras; }

  /// A criterion that only records with exactly this text in this field (of CamposIndexados) can meet.
  struct Chave {
    std::size_t uiCampo;
    std::string_view sTexto;  ///< lives as long as the filter
  };
  std::optional<Chave> ChaveExata() const;

private:
  static constexpr std::size_t kMaiorTexto = sizeof(RegVeiculo::szDescricao);

  /// A text of the filter against a field of the record, up to the field's first zero byte.
  struct CriterioTexto {
    std::size_t uiDeslocamento;               ///< of the field in the record
    std::size_t uiLargura;                    ///< of the field
    std::size_t uiTamanho;                    ///< of the text
    std::array<char, kMaiorTexto + 1> texto;  ///< ends with a zero byte
  };

  /// Bounds of a currency field, both inclusive.
  struct FaixaMoeda {
    std::int64_t vInicial;
    std::int64_t vFinal;
    bool Contem(std::int64_t v) const { return v >= vInicial && v <= vFinal; }
  };

  static FaixaMoeda Faixa(std::int64_t vInicial, std::int64_t vFinal);

  bool AtendeFaixas(const RegVeiculo &reg) const {
    return reg.iAno >= m_iAnoInicial && reg.iAno <= m_iAnoFinal && (!m_bMoedas || AtendeMoedas(reg)) &&
           (m_Filtro.iPonteiroCliente == 0 || reg.iPonteiroCliente == m_Filtro.iPonteiroCliente);
  }
  bool AtendeMoedas(const RegVeiculo &reg) const {
    return m_tara.Contem(reg.vTara) && m_kg.Contem(reg.vCapacidadeKg) && m_m3.Contem(reg.vCapacidadeM3);
  }
  bool AtendeTextosEMascaras(const RegVeiculo &reg) const;
  bool AtendeMascaras(const RegVeiculo &reg) const;
  void CompilaTextos();
  bool AcrescentaTexto(const char *lpTexto, std::size_t uiDeslocamento, std::size_t uiLargura);
  static bool Igual(const CriterioTexto &criterio, const char *lpCampo);
  bool Casa(const CriterioTexto &criterio, const char *lpCampo) const;

  tagREG_FILTRO_VEICULOSPS m_Filtro;
  FaixaMoeda m_tara;
  FaixaMoeda m_kg;
  FaixaMoeda m_m3;
  std::uint32_t m_iAnoInicial;
  std::uint32_t m_iAnoFinal;
  bool m_bMoedas;
  bool m_bFaixas;            ///< a currency, year or customer criterion is in force
  bool m_bTextosOuMascaras;  ///< a text or mask criterion is in force
  std::array<CriterioTexto, 6> m_textos;
  std::size_t m_uiTextos = 0;
  bool m_bCuringa = false;  ///< the last text criterion is a pattern
  bool m_bPadrao = false;   ///< `m_padrao` holds it; else the system matches
  CPadraoCuringa m_padrao;
};

#endif
