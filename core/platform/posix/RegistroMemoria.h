#ifndef KALVO_CORE_PLATFORM_POSIX_REGISTROMEMORIA_H
#define KALVO_CORE_PLATFORM_POSIX_REGISTROMEMORIA_H

#include <map>
#include <mutex>
#include <variant>

#include "core/platform/Registro.h"

namespace plataforma {

/// The registry of a system that has none: held in memory, empty at first. Any thread may call, several at once.
class RegistroMemoria final : public IRegistro {
public:
  RegistroMemoria() = default;
  RegistroMemoria(const RegistroMemoria &) = delete;
  RegistroMemoria &operator=(const RegistroMemoria &) = delete;

  /// The registry of this process, which RegistroDoSistema hands out; never destroyed.
  static RegistroMemoria &DoProcesso();

  bool ExisteChave(const CString &chave) override;
  std::optional<CString> LeTexto(const CString &chave, const CString &nome, bool expande) override;
  std::optional<std::uint32_t> LeNumero(const CString &chave, const CString &nome) override;

  /// Creates a key and the keys above it; nothing happens when it exists.
  void CriaChave(const CString &chave);

  // Each replaces a value of any type, and creates the key when needed.
  void DefineTexto(const CString &chave, const CString &nome, const CString &texto);
  void DefineTextoExpansivel(const CString &chave, const CString &nome, const CString &texto);
  void DefineNumero(const CString &chave, const CString &nome, std::uint32_t numero);
  void DefineBinario(const CString &chave, const CString &nome, const CString &bytes);

  void RemoveValor(const CString &chave, const CString &nome);

  /// Removes a key with everything below it.
  void RemoveChave(const CString &chave);

private:
  struct Texto {
    CString texto;
    bool bExpansivel;
  };
  struct Binario {
    CString bytes;
  };
  using Valor = std::variant<Texto, std::uint32_t, Binario>;
  using Valores = std::map<CString, Valor>;  ///< by folded name

  void Define(const CString &chave, const CString &nome, const Valor &valor);
  std::optional<Valor> Acha(const CString &chave, const CString &nome);

  std::mutex m_mutex;
  std::map<CString, Valores> m_chaves;  ///< by folded path without final separator
};

}  // namespace plataforma

#endif
