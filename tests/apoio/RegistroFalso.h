#ifndef KALVO_TESTS_APOIO_REGISTROFALSO_H
#define KALVO_TESTS_APOIO_REGISTROFALSO_H

#include <map>
#include <utility>

#include "core/platform/Registro.h"

namespace apoio {

/// A registry that holds a few values which all test processes of the machine would share in the real one. Names are
/// compared as written. To be filled while no other thread uses it.
class RegistroFalso final : public plataforma::IRegistro {
public:
  RegistroFalso() = default;
  /// What it does not hold is that of another registry, which must outlive it.
  explicit RegistroFalso(plataforma::IRegistro &base) : m_pBase(&base) {}

  using Nome = std::pair<CString, CString>;  ///< key, without a final `\` unless it is asked for with one, and value
  std::map<Nome, CString> m_textos;
  std::map<Nome, std::uint32_t> m_numeros;

  bool ExisteChave(const CString &sChave) override {
    const auto primeiro = m_textos.lower_bound({sChave, CString()});
    return (primeiro != m_textos.end() && primeiro->first.first == sChave) ||
           (m_pBase != nullptr && m_pBase->ExisteChave(sChave));
  }
  std::optional<CString> LeTexto(const CString &sChave, const CString &sNome, bool bExpande) override {
    if (const auto achado = m_textos.find({sChave, sNome}); achado != m_textos.end()) {
      return achado->second;
    }
    return m_pBase != nullptr ? m_pBase->LeTexto(sChave, sNome, bExpande) : std::nullopt;
  }
  std::optional<std::uint32_t> LeNumero(const CString &sChave, const CString &sNome) override {
    if (const auto achado = m_numeros.find({sChave, sNome}); achado != m_numeros.end()) {
      return achado->second;
    }
    return m_pBase != nullptr ? m_pBase->LeNumero(sChave, sNome) : std::nullopt;
  }

private:
  plataforma::IRegistro *m_pBase = nullptr;
};

}  // namespace apoio

#endif
