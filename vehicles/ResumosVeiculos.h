#ifndef KALVO_VEHICLES_RESUMOSVEICULOS_H
#define KALVO_VEHICLES_RESUMOSVEICULOS_H

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

#include "core/qzdatabase/arquivo/QZResumos.h"

struct RegVeiculo;

/// What the digest of a vehicle tells of the criteria of a filter. All of it has to hold; by default everything does.
struct CriterioResumo {
  std::uint32_t iAnoInicial = 0;
  std::uint32_t iAnoFinal = std::numeric_limits<std::uint32_t>::max();
  std::uint32_t uiUF = 0;
  bool bUF = false;                       ///< `uiUF` is in force
  std::uint64_t uiMascaraAssinatura = 0;  ///< the bits of the signature that must be as in `uiAssinatura`
  std::uint64_t uiAssinatura = 0;

  bool EmVigor() const {
    return iAnoInicial != 0 || iAnoFinal != std::numeric_limits<std::uint32_t>::max() || bUF ||
           uiMascaraAssinatura != 0;
  }
};

/// The digests of a block of vehicles, 16 bytes for each: year, state and signature of the description
/// (CAssinaturaTexto), in columns, of which a search reads only those that its criteria name; and the smallest and the
/// largest year that the block has had. Not synchronised: see ResumosDeRegistros, whose members these are.
///
/// Signatures of records that were loaded are made by the first search that asks for them: they would be a quarter of
/// the load. Searches beside that one look at the block's records meanwhile.
class CResumosVeiculos {
public:
  static void Prepara();
  void Carrega(const RegVeiculo *pRegistros, std::size_t qtd) noexcept;
  void Define(std::size_t uiLugar, const RegVeiculo *pRegistros, std::size_t qtd) noexcept;
  void Abrange(std::size_t uiLugar, std::size_t qtd) noexcept;

  /// A state of at most three bytes, up to its first zero byte, as a number.
  static std::uint32_t ResumoDaUF(std::string_view sUF);

  /// The records of a run that may meet a criterion, ascending, counted from the first of the run.
  struct Candidatos {
    std::array<std::uint16_t, kRegistrosPorBloco> lugares;
    std::size_t qtd;
  };

  /// Finds the candidates among `qtd` records from `uiLugar` on, the first of which is `*pRegistros`. False when they
  /// are more than a quarter, or signatures are just being made: to look at all records then costs less. Beside
  /// readers.
  bool Acha(const CriterioResumo &criterio, std::size_t uiLugar, const RegVeiculo *pRegistros, std::size_t qtd,
            Candidatos *pCandidatos) const;

private:
  static constexpr std::size_t kMetades = 2;
  static constexpr std::size_t kPorGrupo = 16;
  /// Bit i of word j: record 16 j + i of a run.
  using Mascaras = std::array<std::uint16_t, kRegistrosPorBloco / kPorGrupo>;
  using Coluna = std::array<std::uint32_t, kRegistrosPorBloco>;

  template <typename F>
  static void Restringe(const Coluna &coluna, std::size_t uiLugar, std::size_t qtd, F &&passam, Mascaras *pMascaras);

  static constexpr std::uint32_t kFazendo = std::numeric_limits<std::uint32_t>::max();

  void DefineAnoEUF(std::size_t uiLugar, const RegVeiculo &reg);
  void DefineAssinatura(std::size_t uiLugar, const RegVeiculo &reg) const;
  bool AsseguraAssinaturas(const RegVeiculo *pBloco) const;

  Coluna m_anos;
  Coluna m_ufs;
  mutable std::array<Coluna, kMetades> m_assinaturas;  ///< lower and upper half
  /// So many of the block's first records have no signature yet; or kFazendo, while a search makes them.
  mutable std::atomic<std::uint32_t> m_uiSemAssinatura{0};
  std::uint32_t m_iMenorAno = std::numeric_limits<std::uint32_t>::max();
  std::uint32_t m_iMaiorAno = 0;
};

#endif
