#include "vehicles/ResumosVeiculos.h"

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cstring>

#include "vehicles/AssinaturaTexto.h"
#include "vehicles/RegVeiculo.h"

namespace {

constexpr std::size_t kPorPasso = 4;  ///< numbers of 32 bits in a step

__m128i Quatro(std::uint32_t n) {
  return _mm_set1_epi32(static_cast<int>(n));
}

/// Instructions compare signed numbers only; with the upper bit turned over those have the order of unsigned ones.
__m128i ComSinal(__m128i numeros) {
  return _mm_xor_si128(numeros, Quatro(0x80000000));
}

/// One bit for each of sixteen numbers: `passam` says of four whether they pass, with all bits of each.
template <typename F>
std::uint16_t QuaisPassam(const std::uint32_t *pNumeros, F &&passam) {
  __m128i passos[4];
  for (std::size_t i = 0; i < std::size(passos); ++i) {
    passos[i] = passam(_mm_loadu_si128(reinterpret_cast<const __m128i *>(pNumeros + i * kPorPasso)));
  }
  const __m128i bytes = _mm_packs_epi16(_mm_packs_epi32(passos[0], passos[1]), _mm_packs_epi32(passos[2], passos[3]));
  return static_cast<std::uint16_t>(_mm_movemask_epi8(bytes));
}

}  // namespace

void CResumosVeiculos::Prepara() {
  CAssinaturaTexto::Prepara();
}

void CResumosVeiculos::Carrega(const RegVeiculo *pRegistros, std::size_t qtd) noexcept {
  for (std::size_t i = 0; i < qtd; ++i) {
    DefineAnoEUF(i, pRegistros[i]);
  }
  m_uiSemAssinatura.store(static_cast<std::uint32_t>(qtd), std::memory_order_relaxed);
  Abrange(0, qtd);
}

void CResumosVeiculos::Define(std::size_t uiLugar, const RegVeiculo *pRegistros, std::size_t qtd) noexcept {
  for (std::size_t i = 0; i < qtd; ++i) {
    DefineAnoEUF(uiLugar + i, pRegistros[i]);
    DefineAssinatura(uiLugar + i, pRegistros[i]);
  }
}

void CResumosVeiculos::DefineAnoEUF(std::size_t uiLugar, const RegVeiculo &reg) {
  m_anos[uiLugar] = reg.iAno;
  m_ufs[uiLugar] = ResumoDaUF({reg.szUF, sizeof(reg.szUF)});
}

void CResumosVeiculos::DefineAssinatura(std::size_t uiLugar, const RegVeiculo &reg) const {
  const std::uint64_t uiAssinatura = CAssinaturaTexto::DoCampo(reg.szDescricao, sizeof(reg.szDescricao));
  m_assinaturas[0][uiLugar] = static_cast<std::uint32_t>(uiAssinatura);
  m_assinaturas[1][uiLugar] = static_cast<std::uint32_t>(uiAssinatura >> 32);
}

/// False while another search makes them. No writer is at the records that lack them: it would keep readers out.
bool CResumosVeiculos::AsseguraAssinaturas(const RegVeiculo *pBloco) const {
  std::uint32_t qtd = m_uiSemAssinatura.load(std::memory_order_acquire);
  if (qtd == 0) {
    return true;
  }
  if (qtd == kFazendo || !m_uiSemAssinatura.compare_exchange_strong(qtd, kFazendo, std::memory_order_relaxed)) {
    return false;
  }
  for (std::size_t i = 0; i < qtd; ++i) {
    DefineAssinatura(i, pBloco[i]);
  }
  m_uiSemAssinatura.store(0, std::memory_order_release);
  return true;
}

void CResumosVeiculos::Abrange(std::size_t uiLugar, std::size_t qtd) noexcept {
  for (std::size_t i = uiLugar; i < uiLugar + qtd; ++i) {
    m_iMenorAno = std::min(m_iMenorAno, m_anos[i]);
    m_iMaiorAno = std::max(m_iMaiorAno, m_anos[i]);
  }
}

std::uint32_t CResumosVeiculos::ResumoDaUF(std::string_view sUF) {
  std::uint32_t uiUF = 0;
  for (std::size_t i = 0; i < sUF.size() && sUF[i] != '\0'; ++i) {
    uiUF = uiUF << 8 | static_cast<unsigned char>(sUF[i]);
  }
  return uiUF;
}

/// Takes out of the masks of a run the records whose numbers do not pass.
template <typename F>
void CResumosVeiculos::Restringe(const Coluna &coluna, std::size_t uiLugar, std::size_t qtd, F &&passam,
                                 Mascaras *pMascaras) {
  const std::uint32_t *const pNumeros = coluna.data() + uiLugar;
  const std::size_t inteiros = qtd / kPorGrupo;
  for (std::size_t i = 0; i < inteiros; ++i) {
    (*pMascaras)[i] &= QuaisPassam(pNumeros + i * kPorGrupo, passam);
  }
  // Behind the run there may be records that are just being made: nobody may look at them.
  if (const std::size_t resto = qtd % kPorGrupo; resto != 0) {
    std::array<std::uint32_t, kPorGrupo> ultimos{};
    std::copy_n(pNumeros + inteiros * kPorGrupo, resto, ultimos.begin());
    (*pMascaras)[inteiros] &= QuaisPassam(ultimos.data(), passam);
  }
}

bool CResumosVeiculos::Acha(const CriterioResumo &criterio, std::size_t uiLugar, const RegVeiculo *pRegistros,
                            std::size_t qtd, Candidatos *pCandidatos) const {
  pCandidatos->qtd = 0;
  // The block's bounds only ever grow, so they may keep a block in, never wrongly leave it out.
  if (m_iMaiorAno < criterio.iAnoInicial || m_iMenorAno > criterio.iAnoFinal) {
    return true;
  }
  if (criterio.uiMascaraAssinatura != 0 && !AsseguraAssinaturas(pRegistros - uiLugar)) {
    return false;
  }
  // All records of the run are candidates at first; each column in force takes some out.
  Mascaras mascaras;
  mascaras.fill(0xFFFF);
  if (qtd % kPorGrupo != 0) {
    mascaras[qtd / kPorGrupo] = static_cast<std::uint16_t>((1U << qtd % kPorGrupo) - 1);
  }
  // A block that lies within the bounds as a whole needs no look at its years.
  if (m_iMenorAno < criterio.iAnoInicial || m_iMaiorAno > criterio.iAnoFinal) {
    const __m128i menor = ComSinal(Quatro(criterio.iAnoInicial));
    const __m128i maior = ComSinal(Quatro(criterio.iAnoFinal));
    const auto passam = [=](__m128i anos) {
      const __m128i fora = _mm_or_si128(_mm_cmplt_epi32(ComSinal(anos), menor), _mm_cmpgt_epi32(ComSinal(anos), maior));
      return _mm_andnot_si128(fora, Quatro(0xFFFFFFFF));
    };
    Restringe(m_anos, uiLugar, qtd, passam, &mascaras);
  }
  if (criterio.bUF) {
    const auto passam = [uf = Quatro(criterio.uiUF)](__m128i ufs) { return _mm_cmpeq_epi32(ufs, uf); };
    Restringe(m_ufs, uiLugar, qtd, passam, &mascaras);
  }
  for (std::size_t i = 0; i < kMetades; ++i) {
    // Half a signature without a bit in force would let all pass: its column is not read.
    const auto uiMascara = static_cast<std::uint32_t>(criterio.uiMascaraAssinatura >> (32 * i));
    if (uiMascara != 0) {
      const __m128i mascara = Quatro(uiMascara);
      const __m128i assinatura = Quatro(static_cast<std::uint32_t>(criterio.uiAssinatura >> (32 * i)));
      const auto passam = [=](__m128i partes) { return _mm_cmpeq_epi32(_mm_and_si128(partes, mascara), assinatura); };
      Restringe(m_assinaturas[i], uiLugar, qtd, passam, &mascaras);
    }
  }
  for (std::size_t i = 0; i < (qtd + kPorGrupo - 1) / kPorGrupo; ++i) {
    for (unsigned uiRestam = mascaras[i]; uiRestam != 0; uiRestam &= uiRestam - 1) {
      pCandidatos->lugares[pCandidatos->qtd++] =
          static_cast<std::uint16_t>(i * kPorGrupo + static_cast<std::size_t>(std::countr_zero(uiRestam)));
    }
    // Told as soon as it is known: the rest of the run need not be counted.
    if (pCandidatos->qtd > qtd / 4) {
      return false;
    }
  }
  return true;
}
