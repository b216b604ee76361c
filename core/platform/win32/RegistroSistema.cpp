#include <windows.h>

#include <cstring>
#include <vector>

#include "core/platform/Permanente.h"
#include "core/platform/ServicosSistema.h"

namespace plataforma {
namespace {

/// A key of the local machine's hive, open for reading.
class Chave {
public:
  explicit Chave(const CString &caminho) {
    const std::size_t ultimo = caminho.find_last_not_of('\\');
    const CString semBarra = caminho.substr(0, ultimo == CString::npos ? 0 : ultimo + 1);
    if (::RegOpenKeyExA(HKEY_LOCAL_MACHINE, semBarra.c_str(), 0, KEY_READ, &m_hChave) != ERROR_SUCCESS) {
      m_hChave = nullptr;
    }
  }
  ~Chave() {
    if (m_hChave != nullptr) {
      ::RegCloseKey(m_hChave);
    }
  }
  Chave(const Chave &) = delete;
  Chave &operator=(const Chave &) = delete;

  bool Aberta() const { return m_hChave != nullptr; }

  /// Type and bytes of a value; false when it is missing.
  bool Le(const CString &nome, DWORD *tipo, std::vector<char> *dados) const {
    if (!Aberta()) {
      return false;
    }
    dados->resize(512);
    // The value may grow between two calls, hence a loop instead of one call for the size.
    for (;;) {
      auto qtd = static_cast<DWORD>(dados->size());
      const LSTATUS estado =
          ::RegQueryValueExA(m_hChave, nome.c_str(), nullptr, tipo, reinterpret_cast<BYTE *>(dados->data()), &qtd);
      if (estado == ERROR_SUCCESS) {
        dados->resize(qtd);
        return true;
      }
      if (estado != ERROR_MORE_DATA) {
        return false;
      }
      dados->resize(dados->size() * 2 > qtd ? dados->size() * 2 : qtd);
    }
  }

private:
  HKEY m_hChave = nullptr;
};

/// The text with %NAME% replaced; the text itself when that fails.
CString Expandido(const CString &texto) {
  std::vector<char> saida(texto.size() + 256);
  for (;;) {
    const DWORD qtd = ::ExpandEnvironmentStringsA(texto.c_str(), saida.data(), static_cast<DWORD>(saida.size()));
    if (qtd == 0) {
      return texto;
    }
    if (qtd <= saida.size()) {
      return CString(saida.data());
    }
    saida.resize(qtd);
  }
}

class RegistroSistema final : public IRegistro {
public:
  bool ExisteChave(const CString &chave) override { return Chave(chave).Aberta(); }

  std::optional<CString> LeTexto(const CString &chave, const CString &nome, bool expande) override {
    DWORD tipo = REG_NONE;
    std::vector<char> dados;
    if (!Chave(chave).Le(nome, &tipo, &dados) || (tipo != REG_SZ && tipo != REG_EXPAND_SZ)) {
      return std::nullopt;
    }
    // Whoever wrote the value may have left out the final zero.
    const CString texto(dados.data(), ::strnlen(dados.data(), dados.size()));
    return expande && tipo == REG_EXPAND_SZ ? Expandido(texto) : texto;
  }

  std::optional<std::uint32_t> LeNumero(const CString &chave, const CString &nome) override {
    DWORD tipo = REG_NONE;
    std::vector<char> dados;
    std::uint32_t numero = 0;
    if (!Chave(chave).Le(nome, &tipo, &dados) || tipo != REG_DWORD || dados.size() != sizeof(numero)) {
      return std::nullopt;
    }
    std::memcpy(&numero, dados.data(), sizeof(numero));
    return numero;
  }
};

}  // namespace

IRegistro &RegistroDoSistema() {
  return Permanente<RegistroSistema>();
}

}  // namespace plataforma
