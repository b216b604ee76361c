#ifndef KALVO_CLIENT_QZVEICULOSTEXTOS_H
#define KALVO_CLIENT_QZVEICULOSTEXTOS_H

// Texts of the vehicle interface: 8-bit (Windows-1252) everywhere, in fixed fields of the records (QZVeiculosCampos.h)
// and in the two text parameters.

#include <windows.h>

#include "QZVeiculosCampos.h"
#include "QZVeiculosErros.h"
#include "QZVeiculosPadrao.h"

/// An 8-bit text as the interface's wide text parameters carry it. The marshaller copies up to the first wide zero,
/// that is two zero bytes at an even offset, so the buffer holds such a pair behind the text whether its length is even
/// or odd. A text with a zero byte inside would arrive cut: callers refuse it before (see TextoSemZero).
class CQZTextoParametro {
public:
  explicit CQZTextoParametro(std::string_view sTexto) : m_aBuffer((sTexto.size() + 1) / sizeof(wchar_t) + 1) {
    static_assert(sizeof(wchar_t) == 2, "wide characters of the platform's marshaller");
    if (!sTexto.empty()) {
      std::memcpy(m_aBuffer.data(), sTexto.data(), sTexto.size());
    }
  }

  LPWSTR Get() { return m_aBuffer.data(); }
  std::size_t TamanhoEmBytes() const { return m_aBuffer.size() * sizeof(wchar_t); }

private:
  std::vector<wchar_t> m_aBuffer;
};

/// The same for a field whose width the compiler knows; a text that does not fit raises E_INVALIDARG.
template <std::size_t N>
void PreencheCampo(char (&aCampo)[N], std::string_view sTexto) {
  if (!CopiaCampo(aCampo, N, sTexto)) {
    throw CQZErroVeiculos(E_INVALIDARG,
                          "texto com byte zero ou mais longo que o campo de " + std::to_string(N) + " bytes");
  }
}

#endif
