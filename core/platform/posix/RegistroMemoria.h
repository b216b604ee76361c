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

  bool ExisteChave(const CString &sChave) override;
  std::optional<CString> LeTexto(const CString &sChave, const CString &sNome, bool bExpande) override;
  std::optional<std::uint32_t> LeNumero(const CString &sChave, const CString &sNome) override;

  /// Creates a key and the keys above it; nothing happens when it exists.
  void CriaChave(const CString &sChave);

  // Each replaces a value of any type, and creates the key when needed.
  void DefineTexto(const CString &sChave, const CString &sNome, const CString &sTexto);
  void DefineTextoExpansivel(const CString &sChave, const CString &sNome, const CString &sTexto);
  void DefineNumero(const CString &sChave, const CString &sNome, std::uint32_t numero);
  void DefineBinario(const CString &sChave, const CString &sNome, const CString &sBytes);

  /// Removes a key with everything below it.
  void RemoveChave(const CString &sChave);

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

  void Define(const CString &sChave, const CString &sNome, const Valor &valor);
  std::optional<Valor> Acha(const CString &sChave, const CString &sNome);

  std::mutex m_mutex;
  std::map<CString, Valores> m_chaves;  ///< by folded path without final separator
};

}  // namespace plataforma

#endif
