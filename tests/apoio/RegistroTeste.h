#ifndef KALVO_TESTS_APOIO_REGISTROTESTE_H
#define KALVO_TESTS_APOIO_REGISTROTESTE_H

#include <vector>

#include "core/platform/Tipos.h"

namespace apoio {

/// REG_SZ, REG_EXPAND_SZ, REG_BINARY, REG_DWORD.
enum class TipoValor { Texto = 1, TextoExpansivel = 2, Binario = 3, Numero = 4 };

/// Writes to the registry that the system's IRegistro reads. Destruction removes every key written to with all below
/// it, so only keys below `SOFTWARE\Wow6432Node\Tarvel\` are taken; others, and failures, throw std::runtime_error.
class RegistroTeste {
public:
  RegistroTeste() = default;
  ~RegistroTeste();
  RegistroTeste(const RegistroTeste &) = delete;
  RegistroTeste &operator=(const RegistroTeste &) = delete;

  void CriaChave(const CString &sChave);
  /// A value of exactly these bytes, in a key that is created when it is missing.
  void Define(const CString &sChave, const CString &sNome, TipoValor eTipo, const CString &sBytes);
  void DefineTexto(const CString &sChave, const CString &sNome, const CString &sTexto) {
    Define(sChave, sNome, TipoValor::Texto, sTexto + CString(1, '\0'));
  }

private:
  std::vector<CString> m_chaves;
};

}  // namespace apoio

#endif
