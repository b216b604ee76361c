#ifndef KALVO_TESTS_APOIO_REGISTROFALSO_H
#define KALVO_TESTS_APOIO_REGISTROFALSO_H

#include <map>
#include <utility>

#include "core/platform/Registro.h"

namespace apoio {

/// A registry that holds a few texts, for values that all test processes of the machine would share in the real one.
/// Names are compared as written. To be filled while no other thread uses it.
class RegistroFalso final : public plataforma::IRegistro {
public:
  /// Texts by key (without a final `\`) and value name.
  std::map<std::pair<CString, CString>, CString> m_textos;

  bool ExisteChave(const CString &sChave) override {
    const auto primeiro = m_textos.lower_bound({sChave, CString()});
    return primeiro != m_textos.end() && primeiro->first.first == sChave;
  }
  std::optional<CString> LeTexto(const CString &sChave, const CString &sNome, bool) override {
    const auto achado = m_textos.find({sChave, sNome});
    return achado != m_textos.end() ? std::optional<CString>(achado->second) : std::nullopt;
  }
  std::optional<std::uint32_t> LeNumero(const CString &, const CString &) override { return std::nullopt; }
};

}  // namespace apoio

#endif
