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

  void CriaChave(const CString &chave);
  /// A REG_SZ; without `bTerminador` its stored bytes lack the final zero.
  void DefineTexto(const CString &chave, const CString &nome, const CString &texto, bool bTerminador = true);
  /// A REG_EXPAND_SZ.
  void DefineTextoExpansivel(const CString &chave, const CString &nome, const CString &texto);
  /// A REG_DWORD.
  void DefineNumero(const CString &chave, const CString &nome, std::uint32_t numero);
  /// A REG_BINARY.
  void DefineBinario(const CString &chave, const CString &nome, const CString &bytes);
  void RemoveValor(const CString &chave, const CString &nome);
  /// Removes a key with everything below it.
  void RemoveChave(const CString &chave);

private:
  std::vector<CString> m_chaves;
};

}  // namespace apoio

#endif
