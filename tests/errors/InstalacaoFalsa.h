#ifndef KALVO_TESTS_ERRORS_INSTALACAOFALSA_H
#define KALVO_TESTS_ERRORS_INSTALACAOFALSA_H

#include "core/env/QZPath.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/RegistroFalso.h"
#include "tests/apoio/ServicosTrocados.h"

namespace apoio {

/// A new installation directory in force, with an empty "x64" folder.
class InstalacaoFalsa {
public:
  InstalacaoFalsa() { DefineDiretorio(m_pasta.Caminho()); }

  const CString &Diretorio() const { return m_pasta.Caminho(); }
  void DefineDiretorio(const CString &diretorio) {
    m_registro.m_textos[{CString(kChaveSuite) + "Miran Empresarial", "Path"}] = diretorio;
  }

  /// Puts one of the tests' message libraries in place, over the one before.
  void InstalaBiblioteca(const CString &variante) const {
    EscreveArquivo(m_x64 + "QZLMensagem.dll", LeArquivo(KALVO_PASTA_MENSAGENS "mensagens_" + variante + ".dll"));
  }

private:
  PastaTemporaria m_pasta;
  CString m_x64 = m_pasta.CriaSubpasta("x64");
  RegistroFalso m_registro;
  ServicosTrocados m_servicos{nullptr, &m_registro};
};

}  // namespace apoio

#endif
