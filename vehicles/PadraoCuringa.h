#ifndef KALVO_VEHICLES_PADRAOCURINGA_H
#define KALVO_VEHICLES_PADRAOCURINGA_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/platform/DobraCuringa.h"

/// A wildcard pattern prepared for many texts. It answers as the system's own match (CasaCuringa) does, and accented
/// letters cost what others cost. Immutable once defined; any thread may use it.
///
/// What stands in front of the first '*' is compared letter by letter. Behind it the pattern is taken sign by sign, for
/// all places of the text at once: bit i of a word is set while the signs so far may stand for the first i letters.
class CPadraoCuringa {
public:
  /// Widest field.
  static constexpr std::size_t kMaiorCampo = 63;
  /// So many bytes are read from the first of a field on, whatever its width.
  static constexpr std::size_t kBytesLidos = 64;

  /// Takes the pattern over; false when only the system can match it: alternatives, leading blanks, what may be its
  /// "everything" pattern, more signs than a field has letters, letters that no table tells apart (DobraDoCuringa).
  bool Define(std::string_view sPadrao);

  /// Matches a field of at most kMaiorCampo bytes up to its first zero byte. Only after a Define that took the pattern.
  bool Casa(const char *lpCampo, std::size_t uiLargura) const;

private:
  static constexpr std::size_t kMaximoIguais = 4;

  /// A sign behind the first '*'.
  struct Sinal {
    bool bAsteriscoAntes;
    std::uint8_t uiLetras;                                               ///< how many bytes it stands for; 0: any
    alignas(16) std::array<std::array<char, 16>, kMaximoIguais> letras;  ///< each sixteen times
  };

  bool CasaPrefixo(const char *lpCampo, std::size_t uiLargura) const;
  bool DefineLetra(unsigned char letra, Sinal *pSinal) const;

  const plataforma::DobraLetras *m_pDobra = nullptr;
  std::array<unsigned char, kMaiorCampo> m_prefixo;  ///< folded; 0: any letter
  std::size_t m_uiPrefixo = 0;
  bool m_bTemAsterisco = false;
  std::array<Sinal, kMaiorCampo> m_sinais;
  std::size_t m_uiSinais = 0;
  bool m_bAsteriscoNoFim = false;
};

#endif
