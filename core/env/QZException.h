#ifndef KALVO_CORE_ENV_QZEXCEPTION_H
#define KALVO_CORE_ENV_QZEXCEPTION_H

#include <cstdint>
#include <utility>

#include "core/platform/CException.h"
#include "core/platform/Tipos.h"

/// Gives the text of a message number of a product, empty when it has none.
using FonteMensagens = CString (*)(std::uint32_t uiMensagem, std::uint32_t uiSistema);

/// Puts the source of the texts of CQZException in place, null for none; returns the one before. Any thread.
///
/// The clock of this layer throws CQZException, while the catalogue that knows the texts stands above it: so the
/// catalogue is handed in instead of being called by name. Without a source a message number has no text.
FonteMensagens DefineFonteMensagens(FonteMensagens fonte);

/// Thrown by pointer by the low-level utilities when a platform call fails. Whoever handles one for good calls Delete.
class CQZException : public CException {
public:
  /// The suite's main product, whose titles and texts apply.
  static constexpr std::uint32_t kProdutoPrincipal = 1;

  /// With the number of a catalogue message. `uiErroSO` is the platform's error code, 0 when none.
  CQZException(std::uint32_t uiMensagem, std::uint32_t uiSistema, std::uint32_t uiErroSO)
      : m_uiMensagem(uiMensagem), m_uiSistema(uiSistema), m_uiErroSO(uiErroSO) {}

  /// With a text; the message number is 0.
  CQZException(CString sMensagem, std::uint32_t uiSistema, std::uint32_t uiErroSO)
      : m_uiSistema(uiSistema), m_uiErroSO(uiErroSO), m_sMensagem(std::move(sMensagem)) {}

  const CRuntimeClass *GetRuntimeClass() const override {
    static constexpr CRuntimeClass classe{"CQZException"};
    return &classe;
  }

  bool GetErrorMessage(char *lpBuffer, std::uint32_t uiTamanho, std::uint32_t *puiAjuda) override;

  /// The box is titled with the product's name, owned by the thread's main window and has an exclamation mark unless
  /// `uiTipo` names an icon. An error of the operating system is shown below the text.
  int ReportError(std::uint32_t uiTipo, std::uint32_t uiAjuda) override;

  /// The text. A message number is looked up at the first call that finds a text; an unknown one gives an empty text.
  /// The lookup reads a file and may show a box: never to be called while locks are held.
  virtual CString GetTexto();

  std::uint32_t GetNumeroMensagem() const { return m_uiMensagem; }
  std::uint32_t GetSistema() const { return m_uiSistema; }
  std::uint32_t GetErroSO() const { return m_uiErroSO; }
  /// The text as far as it is known without a lookup.
  const CString &GetMensagem() const { return m_sMensagem; }

private:
  std::uint32_t m_uiMensagem = 0;
  std::uint32_t m_uiSistema;
  std::uint32_t m_uiErroSO;
  CString m_sMensagem;
};

#endif
