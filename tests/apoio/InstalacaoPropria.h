#ifndef KALVO_TESTS_APOIO_INSTALACAOPROPRIA_H
#define KALVO_TESTS_APOIO_INSTALACAOPROPRIA_H

#include "core/env/QZPath.h"
#include "tests/apoio/ServicosTrocados.h"

namespace apoio {

/// The installation directory, for a scope and this process alone; none when empty. The one in the machine's registry
/// belongs to the tests of the registered server, whose log.ini would have every process write entry and exit records.
class InstalacaoPropria {
public:
  explicit InstalacaoPropria(const CString &sDiretorio = CString()) : m_registro(plataforma::Registro(), sDiretorio) {}

private:
  class RegistroComInstalacao final : public plataforma::IRegistro {
  public:
    RegistroComInstalacao(plataforma::IRegistro &base, const CString &sDiretorio)
        : m_base(base), m_sDiretorio(sDiretorio) {}

    bool ExisteChave(const CString &chave) override { return m_base.ExisteChave(chave); }
    std::optional<CString> LeTexto(const CString &chave, const CString &nome, bool bExpande) override {
      if (nome == "Path" && chave == CString(kChaveSuite) + "Miran Empresarial") {
        return m_sDiretorio.empty() ? std::nullopt : std::optional<CString>(m_sDiretorio);
      }
      return m_base.LeTexto(chave, nome, bExpande);
    }
    std::optional<std::uint32_t> LeNumero(const CString &chave, const CString &nome) override {
      return m_base.LeNumero(chave, nome);
    }

  private:
    plataforma::IRegistro &m_base;
    CString m_sDiretorio;
  };

  RegistroComInstalacao m_registro;
  ServicosTrocados m_servicos{nullptr, &m_registro};
};

}  // namespace apoio

#endif
