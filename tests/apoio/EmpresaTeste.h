#ifndef KALVO_TESTS_APOIO_EMPRESATESTE_H
#define KALVO_TESTS_APOIO_EMPRESATESTE_H

#include <functional>
#include <string>

#include "core/env/QZPath.h"
#include "core/log/QZProfilerEmpresa.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/RegistroTeste.h"

namespace apoio {

/// A company of its own for one test: a temporary data directory that the registry names for module "DF". The code is
/// the same for no two tests that run at once.
class EmpresaTeste {
public:
  EmpresaTeste() { m_registro.DefineTexto(ChaveDaEmpresa(), "DF", m_pasta.Caminho()); }

  const CString &Codigo() const { return m_codigo; }
  CString ChaveDaEmpresa() const { return CString(kChaveSuite) + "Empresas\\" + m_codigo; }
  CQZProfilerEmpresa Dono() const { return CQZProfilerEmpresa(m_codigo, 7, 42); }

  CString Caminho(const CString &sNome) const { return m_pasta / sNome; }
  std::string Le(const CString &sNome) const { return LeArquivo(Caminho(sNome)); }
  void Escreve(const CString &sNome, const std::string &sConteudo) const { EscreveArquivo(Caminho(sNome), sConteudo); }
  void CriaSubpasta(const CString &sNome) const { m_pasta.CriaSubpasta(sNome); }
  bool Existe(const CString &sNome) const { return ExisteNoDisco(Caminho(sNome)); }

private:
  PastaTemporaria m_pasta;
  RegistroTeste m_registro;
  const CString m_codigo = "T" + std::to_string(std::hash<std::string>()(m_pasta.Caminho()) % 10000000000U);
};

}  // namespace apoio

#endif
