#ifndef KALVO_VEHICLES_FILTROVEICULOS_H
#define KALVO_VEHICLES_FILTROVEICULOS_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "core/qzdatabase/arquivo/QZFile.h"
#include "vehicles/PadraoCuringa.h"
#include "vehicles/RegVeiculo.h"
#include "vehicles/ResumosVeiculos.h"

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

  using Trecho = CQZFile<RegVeiculo>::TrechoLido;

  /// Calls `acha(i)` for the records of a run that pass, in order, i counting from the first of them, until it returns
  /// false, which it then returns. Where few records can pass by their digests it looks only at those.
  template <typename F>
  bool Procura(const Trecho &trecho, F &&acha) const {
    CResumosVeiculos::Candidatos candidatos;
    const bool bPoucos = m_resumo.EmVigor() &&
                         trecho.pResumos->Acha(m_resumo, trecho.uiLugar, trecho.pRegistros, trecho.qtd, &candidatos);
    return bPoucos ? ProcuraEntre(candidatos, trecho.pRegistros, acha) : ProcuraEmTodos(trecho, acha);
  }

  /// A criterion that only records with exactly this text in this field (of CamposIndexados) can meet.
  struct Chave {
    std::size_t uiCampo;
    std::string_view sTexto;  ///< lives as long as the filter
  };
  std::optional<Chave> ChaveExata() const;

private:
  static constexpr std::size_t kAdiante = 8;  ///< so many records before it is looked at, one is fetched
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
  template <typename F>
  bool ProcuraEmTodos(const Trecho &trecho, F &&acha) const {
    for (std::size_t i = 0; i < trecho.qtd; ++i) {
      if (m_bCuringa) {
        AntecipaTexto(trecho.pRegistros + i);
      }
      if (Atende(trecho.pRegistros[i]) && !acha(i)) {
        return false;
      }
    }
    return true;
  }
  template <typename F>
  bool ProcuraEntre(const CResumosVeiculos::Candidatos &candidatos, const RegVeiculo *pRegistros, F &&acha) const {
    for (std::size_t i = 0; i < std::min(candidatos.qtd, kAdiante); ++i) {
      Antecipa(pRegistros[candidatos.lugares[i]]);
    }
    for (std::size_t i = 0; i < candidatos.qtd; ++i) {
      if (i + kAdiante < candidatos.qtd) {
        Antecipa(pRegistros[candidatos.lugares[i + kAdiante]]);
      }
      if (Atende(pRegistros[candidatos.lugares[i]]) && !acha(candidatos.lugares[i])) {
        return false;
      }
    }
    return true;
  }
  static void Antecipa(const RegVeiculo &reg);
  /// Matching takes too many steps for the processor to see the next records coming, so it is told of the field some
  /// records ahead; past the end the hint is void.
  void AntecipaTexto(const RegVeiculo *pRegistro) const {
    const CriterioTexto &criterio = m_textos[m_uiTextos - 1];
    const auto uiEndereco =
        reinterpret_cast<std::uintptr_t>(pRegistro) + kAdiante * sizeof(RegVeiculo) + criterio.uiDeslocamento;
    // NOLINTBEGIN(performance-no-int-to-ptr): an address that is never read through
    __builtin_prefetch(reinterpret_cast<const void *>(uiEndereco));
    __builtin_prefetch(reinterpret_cast<const void *>(uiEndereco + criterio.uiLargura));
    // NOLINTEND(performance-no-int-to-ptr)
  }

  void CompilaTextos();
  void CompilaResumo();
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
  CriterioResumo m_resumo;  ///< holds for every record that passes
};

#endif
