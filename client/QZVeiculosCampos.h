#ifndef KALVO_CLIENT_QZVEICULOSCAMPOS_H
#define KALVO_CLIENT_QZVEICULOSCAMPOS_H

// The fixed text fields of the vehicle records: 8-bit (Windows-1252), ended by a zero byte or by the field's end.

#include "QZVeiculosPadrao.h"

inline bool TextoSemZero(std::string_view sTexto) {
  return sTexto.find('\0') == std::string_view::npos;
}

/// Copies a text into a fixed field and zeroes the rest; a text that fills the field gets no terminator. A longer text,
/// or one with a zero byte inside, gives false and leaves the field alone: it is never cut.
[[nodiscard]] inline bool CopiaCampo(char *pCampo, std::size_t uiLargura, std::string_view sTexto) {
  if (sTexto.size() > uiLargura || !TextoSemZero(sTexto)) {
    return false;
  }
  std::memset(pCampo, 0, uiLargura);
  if (!sTexto.empty()) {
    std::memcpy(pCampo, sTexto.data(), sTexto.size());
  }
  return true;
}

/// The text of a fixed field, whether terminated or filling it.
inline std::string LeCampo(const char *pCampo, std::size_t uiLargura) {
  const void *pFim = std::memchr(pCampo, 0, uiLargura);
  return std::string(pCampo,
                     pFim == nullptr ? uiLargura : static_cast<std::size_t>(static_cast<const char *>(pFim) - pCampo));
}

template <std::size_t N>
std::string LeCampo(const char (&aCampo)[N]) {
  return LeCampo(aCampo, N);
}

#endif
