#ifndef KALVO_TESTS_ERRORS_INSTALACAOFALSA_H
#define KALVO_TESTS_ERRORS_INSTALACAOFALSA_H

#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ValoresProprios.h"

namespace apoio {

/// A new installation directory in force, with an empty "x64" folder.
class InstalacaoFalsa {
public:
  const CString &Diretorio() const { return m_pasta.Caminho(); }
  void DefineDiretorio(const CString &diretorio) { m_instalacao.Define(diretorio); }

  /// Puts one of the tests' message libraries in place, over the one before.
  void InstalaBiblioteca(const CString &variante) const {
    EscreveArquivo(m_x64 + "QZLMensagem.dll", LeArquivo(KALVO_PASTA_MENSAGENS "mensagens_" + variante + ".dll"));
  }

private:
  PastaTemporaria m_pasta;
  CString m_x64 = m_pasta.CriaSubpasta("x64");
  InstalacaoPropria m_instalacao{m_pasta.Caminho()};
};

}  // namespace apoio

#endif
