#ifndef KALVO_CORE_ERRORS_QZEXCEPTIONEX_H
#define KALVO_CORE_ERRORS_QZEXCEPTIONEX_H

#include <utility>

#include "core/platform/Tipos.h"

/// Thrown by value by the suite's shared libraries. This system acts on the code alone; the rest says who failed where.
class CQZExceptionEx {
public:
  CQZExceptionEx(HRESULT hr, std::uint32_t uiServidor, std::uint32_t uiErroSO, CString sMensagem, CString sFuncao,
                 CString sArquivo, std::uint32_t uiLinha)
      : m_hr(hr),
        m_uiServidor(uiServidor),
        m_uiErroSO(uiErroSO),
        m_sMensagem(std::move(sMensagem)),
        m_sFuncao(std::move(sFuncao)),
        m_sArquivo(std::move(sArquivo)),
        m_uiLinha(uiLinha) {}

  HRESULT GetHR() const { return m_hr; }
  /// Number of the server that raised it.
  std::uint32_t GetServidor() const { return m_uiServidor; }
  /// The platform's error code, 0 when none.
  std::uint32_t GetErroSO() const { return m_uiErroSO; }
  const CString &GetMensagem() const { return m_sMensagem; }
  const CString &GetFuncao() const { return m_sFuncao; }
  const CString &GetArquivo() const { return m_sArquivo; }
  /// Source line.
  std::uint32_t GetLinha() const { return m_uiLinha; }

private:
  HRESULT m_hr;
  std::uint32_t m_uiServidor;
  std::uint32_t m_uiErroSO;
  CString m_sMensagem;
  CString m_sFuncao;
  CString m_sArquivo;
  std::uint32_t m_uiLinha;
};

#endif
