#ifndef KALVO_BENCH_EMPRESABENCH_H
#define KALVO_BENCH_EMPRESABENCH_H

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/env/QZPath.h"
#include "core/platform/posix/RegistroMemoria.h"

/// Ends the process with a message when a step of the preparation or of the measured work has failed.
inline void Exige(HRESULT hr, const char *lpPasso) {
  if (Falhou(hr)) {
    std::fprintf(stderr, "%s: 0x%08X\n", lpPasso, BitsResultado(hr));
    std::exit(1);
  }
}

/// A company with an empty data directory of its own, which goes with the object.
class EmpresaBench {
public:
  explicit EmpresaBench(const CString &sEmpresa)
      : m_sEmpresa(sEmpresa),
        m_pasta(std::filesystem::temp_directory_path() / ("kalvo-bench-" + sEmpresa + "-" + std::to_string(getpid()))) {
    std::filesystem::create_directories(m_pasta);
    plataforma::RegistroMemoria::DoProcesso().DefineTexto(CString(kChaveSuite) + "Empresas\\" + sEmpresa, "DF",
                                                          m_pasta.string());
  }
  ~EmpresaBench() { std::filesystem::remove_all(m_pasta); }
  EmpresaBench(const EmpresaBench &) = delete;
  EmpresaBench &operator=(const EmpresaBench &) = delete;

  const CString &Codigo() const { return m_sEmpresa; }
  CString Caminho(const char *lpArquivo) const { return (m_pasta / lpArquivo).string(); }

private:
  CString m_sEmpresa;
  std::filesystem::path m_pasta;
};

#endif
