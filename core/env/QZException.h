#ifndef KALVO_CORE_ENV_QZEXCEPTION_H
#define KALVO_CORE_ENV_QZEXCEPTION_H

#include <cstdint>
#include <utility>

#include "core/platform/CException.h"
#include "core/platform/Tipos.h"

/// Thrown by pointer by the low-level utilities when a platform call fails. Whoever handles one for good calls Delete.
class CQZException : public CException {
public:
  /// The suite's main product, whose titles and texts apply.
  static constexpr std::uint32_t kProdutoPrincipal = 1;

  /// `uiErroSO` is the platform's error code, 0 when none.
  CQZException(CString sMensagem, std::uint32_t uiSistema, std::uint32_t uiErroSO)
      : m_uiSistema(uiSistema), m_uiErroSO(uiErroSO), m_sMensagem(std::move(sMensagem)) {}

  std::uint32_t GetSistema() const { return m_uiSistema; }
  std::uint32_t GetErroSO() const { return m_uiErroSO; }
  const CString &GetMensagem() const { return m_sMensagem; }

private:
  std::uint32_t m_uiSistema;
  std::uint32_t m_uiErroSO;
  CString m_sMensagem;
};

#endif
