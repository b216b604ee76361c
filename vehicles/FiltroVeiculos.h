#ifndef KALVO_VEHICLES_FILTROVEICULOS_H
#define KALVO_VEHICLES_FILTROVEICULOS_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "vehicles/RegVeiculo.h"

/// A filter prepared for many records. Only the criteria that are in force are kept, in the order in which they are
/// examined; the first that fails rejects the record.
///
/// A text criterion with '*' or '?' gives the verdict of the whole test: nothing after it is examined. Immutable once
/// built; any thread may use it.
class CFiltroVeiculos {
public:
  explicit CFiltroVeiculos(const tagREG_FILTRO_VEICULOSPS &Filtro);

  /// True when the record passes.
  bool Atende(const RegVeiculo &reg) const;

private:
  static constexpr std::size_t kMaiorTexto = sizeof(RegVeiculo::szDescricao);

  /// A text of the filter against a field of the record, up to the field's first zero byte.
  struct CriterioTexto {
    std::size_t uiDeslocamento;  ///< of the field in the record
    std::size_t uiLargura;       ///< of the field
    std::size_t uiTamanho;       ///< of the text
    std::array<char, kMaiorTexto + 1> texto;
    bool bPadraoSimples;  ///< a pattern that CasaPadraoSimples understands
  };

  bool AtendeFaixas(const RegVeiculo &reg) const;
  bool AtendeMascaras(const RegVeiculo &reg) const;
  bool AcrescentaTexto(const char *lpTexto, std::size_t uiDeslocamento, std::size_t uiLargura);
  static bool Igual(const CriterioTexto &criterio, const char *lpCampo);
  static bool Casa(const CriterioTexto &criterio, const char *lpCampo);

  tagREG_FILTRO_VEICULOSPS m_Filtro;
  std::array<CriterioTexto, 6> m_textos{};
  std::size_t m_uiTextos = 0;
  bool m_bCuringa = false;  ///< the last text criterion is a pattern
};

/// Wildcard match for patterns whose meaning is the same everywhere: 7-bit letters, digits and inner blanks with '*'
/// and '?', on a text without bytes from 0x80 up. Letter case is ignored.
bool CasaPadraoSimples(const char *lpTexto, std::size_t uiTexto, const char *lpPadrao, std::size_t uiPadrao);

/// True when CasaPadraoSimples understands the pattern.
bool EhPadraoSimples(const char *lpPadrao, std::size_t uiPadrao);

#endif
