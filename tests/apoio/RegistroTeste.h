#ifndef KALVO_TESTS_APOIO_REGISTROTESTE_H
#define KALVO_TESTS_APOIO_REGISTROTESTE_H

#include <vector>

#include "core/platform/Tipos.h"

namespace apoio {

/// Writes to the registry that the system's IRegistro reads. Destruction removes every key written to with all below
/// it, so only keys below `SOFTWARE\Wow6432Node\Tarvel\` are taken; others, and failures, throw std::runtime_error.
class RegistroTeste {
public:
  RegistroTeste() = default;
  ~RegistroTeste();
  RegistroTeste(const RegistroTeste &) = delete;
  RegistroTeste &operator=(const RegistroTeste &) = delete;

  void CriaChave(const CString &sChave);
  /// A REG_SZ; without `bTerminador` its stored bytes lack the final zero.
  void DefineTexto(const CString &sChave, const CString &sNome, const CString &sTexto, bool bTerminador = true);
  /// A REG_EXPAND_SZ.
  void DefineTextoExpansivel(const CString &sChave, const CString &sNome, const CString &sTexto);
  /// A REG_DWORD.
  void DefineNumero(const CString &sChave, const CString &sNome, std::uint32_t numero);
  /// A REG_BINARY.
  void DefineBinario(const CString &sChave, const CString &sNome, const CString &sBytes);

private:
  std::vector<CString> m_chaves;
};

}  // namespace apoio

#endif
