#include "core/platform/ChaveRegistro.h"

#include <windows.h>

#include <cstring>
#include <utility>
#include <vector>

#include "core/platform/win32/Posses.h"

namespace plataforma {
namespace {

/// The text with %NAME% replaced; the text itself when that fails.
CString Expandido(const CString &sTexto) {
  std::vector<char> saida(sTexto.size() + 256);
  for (;;) {
    const DWORD qtd = ::ExpandEnvironmentStringsA(sTexto.c_str(), saida.data(), static_cast<DWORD>(saida.size()));
    if (qtd == 0) {
      return sTexto;
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

  std::optional<CString> LeTexto(const CString &sNome, bool bExpande) override {
    DWORD tipo = REG_NONE;
    std::vector<char> dados;
    if (!Le(sNome, &tipo, &dados) || (tipo != REG_SZ && tipo != REG_EXPAND_SZ)) {
      return std::nullopt;
    }
    // Whoever wrote the value may have left out the final zero.
    const CString sTexto(dados.data(), ::strnlen(dados.data(), dados.size()));
    return bExpande && tipo == REG_EXPAND_SZ ? Expandido(sTexto) : sTexto;
  }

  std::optional<std::uint32_t> LeNumero(const CString &sNome) override {
    DWORD tipo = REG_NONE;
    std::vector<char> dados;
    std::uint32_t numero = 0;
    if (!Le(sNome, &tipo, &dados) || tipo != REG_DWORD || dados.size() != sizeof(numero)) {
      return std::nullopt;
    }
    std::memcpy(&numero, dados.data(), sizeof(numero));
    return numero;
  }

  bool GravaTexto(const CString &sNome, const CString &sTexto) override {
    return ::RegSetValueExA(m_chave.get(), sNome.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE *>(sTexto.c_str()),
                            static_cast<DWORD>(sTexto.size() + 1)) == ERROR_SUCCESS;
  }

  bool CriaSubchave(const CString &sNome) override {
    // The system asks what the account may do, not what the key was opened for.
    if (!m_bEscrita) {
      return false;
    }
    HKEY hChave = nullptr;
    const LSTATUS estado =
        ::RegCreateKeyExA(m_chave.get(), sNome.c_str(), 0, nullptr, 0, KEY_READ, nullptr, &hChave, nullptr);
    const PosseChave fecha(hChave);
    return estado == ERROR_SUCCESS;
  }

private:
  /// Type and bytes of a value; false when it is missing.
  bool Le(const CString &sNome, DWORD *tipo, std::vector<char> *pDados) const {
    pDados->resize(512);
    // The value may grow between two calls, hence a loop instead of one call for the size.
    for (;;) {
      auto qtd = static_cast<DWORD>(pDados->size());
      const LSTATUS estado = ::RegQueryValueExA(m_chave.get(), sNome.c_str(), nullptr, tipo,
                                                reinterpret_cast<BYTE *>(pDados->data()), &qtd);
      if (estado == ERROR_SUCCESS) {
        pDados->resize(qtd);
        return true;
      }
      if (estado != ERROR_MORE_DATA) {
        return false;
      }
      pDados->resize(pDados->size() * 2 > qtd ? pDados->size() * 2 : qtd);
    }
  }

  PosseChave m_chave;
  bool m_bEscrita;
};

}  // namespace

std::unique_ptr<IChaveRegistro> AbreChaveRegistro(const CString &sChave, AcessoChave eAcesso, const CString &sMaquina) {
  PosseChave raiz;
  if (!sMaquina.empty()) {
    HKEY hRaiz = nullptr;
    if (::RegConnectRegistryA(sMaquina.c_str(), HKEY_LOCAL_MACHINE, &hRaiz) != ERROR_SUCCESS) {
      return nullptr;
    }
    raiz.reset(hRaiz);
  }
  const CString sSemBarra = sChave.substr(0, sChave.find_last_not_of('\\') + 1);
  const REGSAM escrita = eAcesso == AcessoChave::LeituraEscrita ? KEY_SET_VALUE | KEY_CREATE_SUB_KEY : 0;
  HKEY hChave = nullptr;
  if (::RegOpenKeyExA(raiz ? raiz.get() : HKEY_LOCAL_MACHINE, sSemBarra.c_str(), 0, KEY_READ | escrita, &hChave) !=
      ERROR_SUCCESS) {
    return nullptr;
  }
  return std::make_unique<ChaveSistema>(PosseChave(hChave), eAcesso);
}

}  // namespace plataforma
