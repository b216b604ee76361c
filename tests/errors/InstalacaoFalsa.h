#ifndef KALVO_TESTS_ERRORS_INSTALACAOFALSA_H
#define KALVO_TESTS_ERRORS_INSTALACAOFALSA_H

#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ServicosTrocados.h"

namespace apoio {

/// A registry in which the installation directory is the only value, whatever the key. The machine's own would be
/// shared with the tests that run at the same time.
class RegistroInstalacao final : public plataforma::IRegistro {
public:
  explicit RegistroInstalacao(CString diretorio) : m_diretorio(std::move(diretorio)) {}

  void DefineDiretorio(const CString &diretorio) { m_diretorio = diretorio; }

  bool ExisteChave(const CString &) override { return true; }
  std::optional<CString> LeTexto(const CString &, const CString &nome, bool) override {
    return nome == "Path" ? std::optional(m_diretorio) : std::nullopt;
  }
  std::optional<std::uint32_t> LeNumero(const CString &, const CString &) override { return std::nullopt; }

private:
  CString m_diretorio;
};

/// A new installation directory in force, with an empty "x64" folder.
class InstalacaoFalsa {
public:
  InstalacaoFalsa()
      : m_x64(m_pasta.CriaSubpasta("x64")), m_registro(m_pasta.Caminho()), m_servicos(nullptr, &m_registro) {}

  const CString &Diretorio() const { return m_pasta.Caminho(); }
  void DefineDiretorio(const CString &diretorio) { m_registro.DefineDiretorio(diretorio); }

  /// Puts one of the tests' message libraries in place, over the one before.
  void InstalaBiblioteca(const CString &variante) const {
    EscreveArquivo(m_x64 + "QZLMensagem.dll", LeArquivo(KALVO_PASTA_MENSAGENS "mensagens_" + variante + ".dll"));
  }

private:
  PastaTemporaria m_pasta;
  CString m_x64;
  RegistroInstalacao m_registro;
  ServicosTrocados m_servicos;
};

}  // namespace apoio

#endif
