#include "vehicles/PadraoCuringa.h"

#include <emmintrin.h>

#include <algorithm>
#include <bit>

namespace {

/// Nothing of it weighs when texts are sorted, by which the system may know its "everything" pattern, "*.*".
bool SoSinaisLeves(std::string_view sPadrao) {
  return std::none_of(sPadrao.begin(), sPadrao.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  });
}

bool SoDoSistema(std::string_view sPadrao) {
  return sPadrao.empty() || sPadrao.front() == ' ' || sPadrao.find(';') != std::string_view::npos ||
         (sPadrao.find('.') != std::string_view::npos && SoSinaisLeves(sPadrao));
}

/// Sixty-four letters of a text, for questions that are put to all of them.
class Letras {
public:
  explicit Letras(const char *lpTexto) {
    for (std::size_t i = 0; i < kPartes; ++i) {
      m_partes[i] = _mm_loadu_si128(reinterpret_cast<const __m128i *>(lpTexto) + i);
    }
  }

  /// Bit i: letter i is the one that `letra` holds sixteen times.
  std::uint64_t OndeEsta(__m128i letra) const {
    std::uint64_t uiOnde = 0;
    for (std::size_t i = 0; i < kPartes; ++i) {
      const auto uiParte = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(m_partes[i], letra)));
      uiOnde |= std::uint64_t{uiParte} << (16 * i);
    }
    return uiOnde;
  }

private:
  static constexpr std::size_t kPartes = 4;
  __m128i m_partes[kPartes];
};

}  // namespace

bool CPadraoCuringa::Define(std::string_view sPadrao) {
  m_pDobra = plataforma::DobraDoCuringa();
  if (m_pDobra == nullptr || SoDoSistema(sPadrao)) {
    return false;
  }
  // Letters at the beginning tell most texts from the pattern without any bits.
  m_uiPrefixo = std::min(sPadrao.find('*'), sPadrao.size());
  if (sPadrao.size() > kMaiorCampo) {
    return false;
  }
  std::transform(sPadrao.begin(), sPadrao.begin() + static_cast<std::ptrdiff_t>(m_uiPrefixo), m_prefixo.begin(),
                 [&](char c) { return c == '?' ? '\0' : (*m_pDobra)[static_cast<unsigned char>(c)]; });
  m_bTemAsterisco = m_uiPrefixo < sPadrao.size();
  m_uiSinais = 0;
  bool bAsterisco = false;
  for (const char c : sPadrao.substr(m_uiPrefixo)) {
    if (c != '*') {
      Sinal &sinal = m_sinais[m_uiSinais++];
      sinal.bAsteriscoAntes = bAsterisco;
      sinal.uiLetras = 0;
      if (c != '?' && !DefineLetra(static_cast<unsigned char>(c), &sinal)) {
        return false;
      }
    }
    bAsterisco = c == '*';
  }
  m_bAsteriscoNoFim = bAsterisco;
  return true;
}

/// False for a letter of more bytes than there is room for.
bool CPadraoCuringa::DefineLetra(unsigned char letra, Sinal *pSinal) const {
  const plataforma::DobraLetras &dobra = *m_pDobra;
  for (unsigned igual = 1; igual < dobra.size(); ++igual) {
    if (dobra[igual] == dobra[letra]) {
      if (pSinal->uiLetras == kMaximoIguais) {
        return false;
      }
      pSinal->letras[pSinal->uiLetras++].fill(static_cast<char>(igual));
    }
  }
  return true;
}

bool CPadraoCuringa::CasaPrefixo(const char *lpCampo, std::size_t uiLargura) const {
  if (m_uiPrefixo > uiLargura) {
    return false;
  }
  for (std::size_t i = 0; i < m_uiPrefixo; ++i) {
    const auto letra = static_cast<unsigned char>(lpCampo[i]);
    if (letra == 0 || (m_prefixo[i] != 0 && (*m_pDobra)[letra] != m_prefixo[i])) {
      return false;
    }
  }
  return true;
}

bool CPadraoCuringa::Casa(const char *lpCampo, std::size_t uiLargura) const {
  if (!CasaPrefixo(lpCampo, uiLargura)) {
    return false;
  }
  if (!m_bTemAsterisco) {
    return m_uiPrefixo == uiLargura || lpCampo[m_uiPrefixo] == '\0';
  }
  if (m_uiSinais == 0) {
    return true;
  }
  // 64 bytes from the field's first are read whatever its width; what lies behind the text does not count.
  const Letras letras(lpCampo);
  const std::uint64_t uiFim =
      std::uint64_t{1} << std::countr_zero(letras.OndeEsta(_mm_setzero_si128()) | (std::uint64_t{1} << uiLargura));
  const std::uint64_t uiAteOFim = uiFim | (uiFim - 1);
  std::uint64_t uiLugares = std::uint64_t{1} << m_uiPrefixo;
  for (std::size_t s = 0; s < m_uiSinais; ++s) {
    const Sinal &sinal = m_sinais[s];
    if (sinal.bAsteriscoAntes) {
      uiLugares |= 0 - uiLugares;  // and all places behind
    }
    std::uint64_t uiAceitam = sinal.uiLetras == 0 ? ~std::uint64_t{0} : 0;
    for (std::size_t i = 0; i < sinal.uiLetras; ++i) {
      uiAceitam |= letras.OndeEsta(_mm_load_si128(reinterpret_cast<const __m128i *>(sinal.letras[i].data())));
    }
    // Places whose next letter the sign accepts move one on.
    uiLugares = ((uiLugares & uiAceitam) << 1) & uiAteOFim;
    if (uiLugares == 0) {
      return false;
    }
  }
  return m_bAsteriscoNoFim || (uiLugares & uiFim) != 0;
}
