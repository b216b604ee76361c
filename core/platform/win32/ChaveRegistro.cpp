#include "core/platform/ChaveRegistro.h"

#include <windows.h>

#include <cstring>
#include <utility>
#include <vector>

#include "core/platform/win32/Posses.h"

namespace plataforma {
namespace {

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

class ChaveSistema final : public IChaveRegistro {
public:
  ChaveSistema(PosseChave chave, AcessoChave eAcesso)
      : m_chave(std::move(chave)), m_bEscrita(eAcesso == AcessoChave::LeituraEscrita) {}

  std::optional<CString> LeTexto(const CString &nome, bool expande) override {
    DWORD tipo = REG_NONE;
    std::vector<char> dados;
    if (!Le(nome, &tipo, &dados) || (tipo != REG_SZ && tipo != REG_EXPAND_SZ)) {
      return std::nullopt;
    }
    // Whoever wrote the value may have left out the final zero.
    const CString texto(dados.data(), ::strnlen(dados.data(), dados.size()));
    return expande && tipo == REG_EXPAND_SZ ? Expandido(texto) : texto;
  }

  std::optional<std::uint32_t> LeNumero(const CString &nome) override {
    DWORD tipo = REG_NONE;
    std::vector<char> dados;
    std::uint32_t numero = 0;
    if (!Le(nome, &tipo, &dados) || tipo != REG_DWORD || dados.size() != sizeof(numero)) {
      return std::nullopt;
    }
    std::memcpy(&numero, dados.data(), sizeof(numero));
    return numero;
  }

  bool GravaTexto(const CString &nome, const CString &texto) override {
    return ::RegSetValueExA(m_chave.get(), nome.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE *>(texto.c_str()),
                            static_cast<DWORD>(texto.size() + 1)) == ERROR_SUCCESS;
  }

  bool CriaSubchave(const CString &nome) override {
    // The system asks what the account may do, not what the key was opened for.
    if (!m_bEscrita) {
      return false;
    }
    HKEY hChave = nullptr;
    const LSTATUS estado =
        ::RegCreateKeyExA(m_chave.get(), nome.c_str(), 0, nullptr, 0, KEY_READ, nullptr, &hChave, nullptr);
    const PosseChave fecha(hChave);
    return estado == ERROR_SUCCESS;
  }

private:
  /// Type and bytes of a value; false when it is missing.
  bool Le(const CString &nome, DWORD *tipo, std::vector<char> *dados) const {
    dados->resize(512);
    // The value may grow between two calls, hence a loop instead of one call for the size.
    for (;;) {
      auto qtd = static_cast<DWORD>(dados->size());
      const LSTATUS estado =
          ::RegQueryValueExA(m_chave.get(), nome.c_str(), nullptr, tipo, reinterpret_cast<BYTE *>(dados->data()), &qtd);
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

  PosseChave m_chave;
  bool m_bEscrita;
};

}  // namespace

std::unique_ptr<IChaveRegistro> AbreChaveRegistro(const CString &chave, AcessoChave eAcesso, const CString &maquina) {
  PosseChave raiz;
  if (!maquina.empty()) {
    HKEY hRaiz = nullptr;
    if (::RegConnectRegistryA(maquina.c_str(), HKEY_LOCAL_MACHINE, &hRaiz) != ERROR_SUCCESS) {
      return nullptr;
    }
    raiz.reset(hRaiz);
  }
  const CString semBarra = chave.substr(0, chave.find_last_not_of('\\') + 1);
  const REGSAM escrita = eAcesso == AcessoChave::LeituraEscrita ? KEY_SET_VALUE | KEY_CREATE_SUB_KEY : 0;
  HKEY hChave = nullptr;
  if (::RegOpenKeyExA(raiz ? raiz.get() : HKEY_LOCAL_MACHINE, semBarra.c_str(), 0, KEY_READ | escrita, &hChave) !=
      ERROR_SUCCESS) {
    return nullptr;
  }
  return std::make_unique<ChaveSistema>(PosseChave(hChave), eAcesso);
}

}  // namespace plataforma
