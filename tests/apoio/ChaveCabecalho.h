#ifndef KALVO_TESTS_APOIO_CHAVECABECALHO_H
#define KALVO_TESTS_APOIO_CHAVECABECALHO_H

#include "core/env/QZPath.h"
#include "tests/apoio/ServicosTrocados.h"

namespace apoio {

inline constexpr char kValorCabecalho[] = "QZDataBase_HabilitarCabecalho";

/// Whether new files get headers.
inline bool CabecalhosLigados() {
  return plataforma::Registro().LeNumero(kChaveSuite, kValorCabecalho).value_or(0) != 0;
}

/// The switch for file headers, for a scope and this process alone: the registry that all test processes of the machine
/// share stays as it is. To be changed while no other thread uses it.
class ChaveCabecalho {
public:
  explicit ChaveCabecalho(bool bLigada) : m_registro(plataforma::Registro(), bLigada) {}

  void Define(bool bLigada) { m_registro.m_bLigada = bLigada; }

private:
  class RegistroComChave final : public plataforma::IRegistro {
  public:
    RegistroComChave(plataforma::IRegistro &base, bool bLigada) : m_bLigada(bLigada), m_base(base) {}

    bool ExisteChave(const CString &sChave) override { return m_base.ExisteChave(sChave); }
    std::optional<CString> LeTexto(const CString &sChave, const CString &sNome, bool bExpande) override {
      return m_base.LeTexto(sChave, sNome, bExpande);
    }
    std::optional<std::uint32_t> LeNumero(const CString &sChave, const CString &sNome) override {
      return sNome == kValorCabecalho ? std::optional<std::uint32_t>(m_bLigada) : m_base.LeNumero(sChave, sNome);
    }

    bool m_bLigada;

  private:
    plataforma::IRegistro &m_base;
  };

  RegistroComChave m_registro;
  ServicosTrocados m_servicos{nullptr, &m_registro};
};

}  // namespace apoio

#endif
