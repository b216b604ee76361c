#ifndef KALVO_TESTS_APOIO_PASTATEMPORARIA_H
#define KALVO_TESTS_APOIO_PASTATEMPORARIA_H

#include <string>

#include "core/platform/Tipos.h"

namespace apoio {

/// A new directory that is removed at the end, with its sub-directories.
class PastaTemporaria {
public:
  PastaTemporaria();
  ~PastaTemporaria();
  PastaTemporaria(const PastaTemporaria &) = delete;
  PastaTemporaria &operator=(const PastaTemporaria &) = delete;

  /// From now on directories stay after their end, for somebody to look at.
  static void GuardaTodas() { s_bGuarda = true; }

  /// Absolute path, `\`-separated and ending with `\`.
  const CString &Caminho() const { return m_caminho; }
  /// Path of a file in the directory; `sNome` may name sub-directories with `\`.
  CString operator/(const CString &sNome) const { return m_caminho + sNome; }
  /// Creates a sub-directory (its parent must exist) and returns its path, ending with `\`.
  CString CriaSubpasta(const CString &sNome) const;

private:
  inline static bool s_bGuarda = false;

  CString m_caminho;
};

// Whole files, past the services under test. Failures throw std::runtime_error, so that no test goes on with a file it
// does not have.

void EscreveArquivo(const CString &sCaminho, const std::string &sConteudo);
std::string LeArquivo(const CString &sCaminho);

/// A path with `\` as the C library of this platform takes it.
std::string CaminhoDoSistema(const CString &sCaminho);

/// True when a file or directory is there.
bool ExisteNoDisco(const CString &sCaminho);
void MarcaSomenteLeitura(const CString &sCaminho, bool bSomenteLeitura);

/// True when the read-only attribute keeps no one from opening for writing or replacing a file. Wine behaves so for
/// the superuser; Windows never does.
bool SomenteLeituraSemEfeito();

}  // namespace apoio

#endif
