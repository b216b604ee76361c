#ifndef KALVO_CORE_LOG_QZPROFILEREMPRESA_H
#define KALVO_CORE_LOG_QZPROFILEREMPRESA_H

#include <cstdint>
#include <utility>

#include "core/platform/Tipos.h"

/// On whose behalf a record of the log files is written.
class IQZDF_Profiler {
public:
  /// Company code; empty when the work belongs to no company.
  virtual CString GetEmpresa() const = 0;
  /// User number; 0xFFFF for one-shot internal work.
  virtual std::uint16_t GetUsuario() const = 0;
  /// Session number, printed signed.
  virtual std::uint32_t GetSessao() const = 0;

protected:
  ~IQZDF_Profiler() = default;
};

/// User number of work that the system does on its own account.
inline constexpr std::uint16_t kUsuarioInterno = 0xFFFF;

/// Company, user and session held by value.
class CQZProfilerEmpresa : public IQZDF_Profiler {
public:
  CQZProfilerEmpresa() = default;
  CQZProfilerEmpresa(CString sEmpresa, std::uint16_t iUsuario, std::uint32_t uiSessao)
      : m_sEmpresa(std::move(sEmpresa)), m_iUsuario(iUsuario), m_uiSessao(uiSessao) {}
  virtual ~CQZProfilerEmpresa() = default;

  CString GetEmpresa() const override { return m_sEmpresa; }
  std::uint16_t GetUsuario() const override { return m_iUsuario; }
  std::uint32_t GetSessao() const override { return m_uiSessao; }

protected:
  CQZProfilerEmpresa(const CQZProfilerEmpresa &) = default;
  CQZProfilerEmpresa &operator=(const CQZProfilerEmpresa &) = default;

  /// Takes over the identity under which the next operations work.
  void DefineIdentidade(const CString &sEmpresa, std::uint16_t iUsuario, std::uint32_t uiSessao) {
    m_sEmpresa = sEmpresa;
    m_iUsuario = iUsuario;
    m_uiSessao = uiSessao;
  }

private:
  CString m_sEmpresa;
  std::uint16_t m_iUsuario = 0;
  std::uint32_t m_uiSessao = 0;
};

#endif
