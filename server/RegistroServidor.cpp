#include "server/RegistroServidor.h"

#include <windows.h>
//
#include <QZDF_Veiculos.h>
#include <oleauto.h>

#include <memory>
#include <string>
#include <vector>

#include "core/errors/guard/TraducaoExcecoes.h"
#include "core/platform/win32/Posses.h"
#include "server/RetratoChaves.h"
#include "server/SaidaErro.h"
#include "server/ValoresRegistro.h"

// Exported by the system's library, missing in the compiler's headers.
extern "C" {
HRESULT STDAPICALLTYPE RegisterTypeLibForUser(ITypeLib *pBiblioteca, OLECHAR *lpCaminho, OLECHAR *lpAjuda);
HRESULT STDAPICALLTYPE UnRegisterTypeLibForUser(REFGUID libid, WORD wMaior, WORD wMenor, LCID lcid, SYSKIND eSistema);
}

namespace {

constexpr wchar_t kClasses[] = L"Software\\Classes\\";
constexpr wchar_t kProxy[] = L"QZDF_VeiculosPS.dll";
constexpr wchar_t kProxy32[] = L"x86\\QZDF_VeiculosPS.dll";

std::wstring CaminhoDoExecutavel() {
  std::vector<wchar_t> caminho(MAX_PATH);
  while (GetModuleFileNameW(nullptr, caminho.data(), static_cast<DWORD>(caminho.size())) == caminho.size()) {
    caminho.resize(caminho.size() * 2);
  }
  return caminho.data();
}

HRESULT Primeira(HRESULT hrAntes, HRESULT hr) {
  return FAILED(hrAntes) ? hrAntes : hr;
}

struct SoltaBiblioteca {
  void operator()(ITypeLib *p) const { p->Release(); }
};
using Biblioteca = std::unique_ptr<ITypeLib, SoltaBiblioteca>;

class CRegistroServidor {
public:
  explicit CRegistroServidor(bool bPorUsuario)
      : m_bPorUsuario(bPorUsuario),
        m_hRaiz(bPorUsuario ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE),
        m_sExecutavel(CaminhoDoExecutavel()),
        m_sPasta(m_sExecutavel.substr(0, m_sExecutavel.find_last_of(L'\\') + 1)),
        m_sProxy(m_sPasta + kProxy),
        m_sProxy32(m_sPasta + kProxy32) {}

  HRESULT Registra() {
    HRESULT hr = Carrega();
    if (FAILED(hr)) {
      return hr;
    }
    std::vector<std::wstring> chaves;
    for (const std::wstring &sChave : ChavesTocadas()) {
      chaves.push_back(kClasses + sChave);
    }
    const CRetratoChaves antes(m_hRaiz, chaves);
    hr = GravaTudo();
    if (FAILED(hr) && !antes.Restaura()) {
      DizErro(
          "Kalvo: nem tudo o que j\xE1 havia sido gravado p\xF4"
          "de ser desfeito");
    }
    return hr;
  }

  /// Goes on after a failure: what can be removed is. The first failure is the result.
  HRESULT Desregistra() const {
    HRESULT hr = DesregistraBiblioteca();
    for (const std::wstring &sChave : ChavesRemovidas()) {
      hr = Primeira(hr, ApagaChave(sChave));
    }
    return hr;
  }

private:
  /// What a registration needs, before anything is written.
  HRESULT Carrega() {
    m_hProxy.reset(LoadLibraryExW(m_sProxy.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!m_hProxy) {
      return Relata("carregar", m_sProxy, HRESULT_FROM_WIN32(GetLastError()));
    }
    // This process cannot load it.
    if (GetFileAttributesW(m_sProxy32.c_str()) == INVALID_FILE_ATTRIBUTES) {
      return Relata("encontrar", m_sProxy32, HRESULT_FROM_WIN32(GetLastError()));
    }
    ITypeLib *pBiblioteca = nullptr;
    const HRESULT hr = LoadTypeLibEx(m_sExecutavel.c_str(), REGKIND_NONE, &pBiblioteca);
    m_spBiblioteca.reset(pBiblioteca);
    return FAILED(hr) ? Relata("ler a biblioteca de tipos de", m_sExecutavel, hr) : S_OK;
  }

  HRESULT GravaTudo() const {
    HRESULT hr = GravaValores(ValoresDoServidor(m_sExecutavel));
    hr = FAILED(hr) ? hr : RegistraBiblioteca();
    if (!m_bPorUsuario) {
      hr = FAILED(hr) ? hr : RegistraProxy();
    }
    // Also after the DLL's own registration, which may leave out what it cannot write without saying so.
    hr = FAILED(hr) ? hr : GravaValores(ValoresDoProxy(EVisao::De64Bits, m_sProxy));
    return FAILED(hr) ? hr : GravaValores(ValoresDoProxy(EVisao::De32Bits, m_sProxy32));
  }

  HRESULT Relata(const CString &sOperacao, const std::wstring &sAlvo, HRESULT hr) const {
    DizErro("Kalvo: falha ao " + sOperacao + " " + Texto1252(sAlvo) + ": erro " +
            TextoCodigo(static_cast<unsigned long>(hr)));
    if (hr == E_ACCESSDENIED && !m_bPorUsuario) {
      DizErro("Kalvo: execute como administrador, ou use /RegServerPerUser para registrar s\xF3 para este usu\xE1rio");
    }
    return hr;
  }

  HRESULT RelataChave(const CString &sOperacao, const std::wstring &sChave, LSTATUS erro) const {
    return Relata(sOperacao + " a chave", (m_bPorUsuario ? L"HKCU\\" : L"HKLM\\") + (kClasses + sChave),
                  HRESULT_FROM_WIN32(static_cast<DWORD>(erro)));
  }

  HRESULT GravaValores(const std::vector<ValorRegistro> &valores) const {
    for (const ValorRegistro &valor : valores) {
      HKEY hChave = nullptr;
      LSTATUS erro = RegCreateKeyExW(m_hRaiz, (kClasses + valor.chave).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr,
                                     &hChave, nullptr);
      const plataforma::PosseChave posse(hChave);
      if (erro == ERROR_SUCCESS) {
        erro = RegSetValueExW(hChave, valor.nome.empty() ? nullptr : valor.nome.c_str(), 0, REG_SZ,
                              reinterpret_cast<const BYTE *>(valor.texto.c_str()),
                              static_cast<DWORD>((valor.texto.size() + 1) * sizeof(wchar_t)));
      }
      if (erro != ERROR_SUCCESS) {
        return RelataChave("gravar", valor.chave, erro);
      }
    }
    return S_OK;
  }

  HRESULT ApagaChave(const std::wstring &sChave) const {
    const LSTATUS erro = RegDeleteTreeW(m_hRaiz, (kClasses + sChave).c_str());
    return erro == ERROR_SUCCESS || erro == ERROR_FILE_NOT_FOUND ? S_OK : RelataChave("apagar", sChave, erro);
  }

  HRESULT RegistraBiblioteca() const {
    std::wstring sCaminho = m_sExecutavel;
    const auto registra = m_bPorUsuario ? RegisterTypeLibForUser : RegisterTypeLib;
    const HRESULT hr = registra(m_spBiblioteca.get(), sCaminho.data(), nullptr);
    return FAILED(hr) ? Relata("registrar a biblioteca de tipos de", m_sExecutavel, hr) : S_OK;
  }

  HRESULT DesregistraBiblioteca() const {
    HKEY hChave = nullptr;
    if (RegOpenKeyExW(m_hRaiz, (kClasses + ChaveDaBiblioteca()).c_str(), 0, KEY_READ, &hChave) != ERROR_SUCCESS) {
      return S_OK;
    }
    const plataforma::PosseChave posse(hChave);
    const auto remove = m_bPorUsuario ? UnRegisterTypeLibForUser : UnRegisterTypeLib;
    const HRESULT hr = remove(LIBID_Kalvo, 1, 0, LOCALE_NEUTRAL, SYS_WIN64);
    return FAILED(hr) ? Relata("remover a biblioteca de tipos", ChaveDaBiblioteca(), hr) : S_OK;
  }

  HRESULT RegistraProxy() const {
    using Rotina = HRESULT(STDAPICALLTYPE *)();
    const auto registra =
        reinterpret_cast<Rotina>(reinterpret_cast<void *>(GetProcAddress(m_hProxy.get(), "DllRegisterServer")));
    const HRESULT hr = registra != nullptr ? registra() : HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND);
    return FAILED(hr) ? Relata("registrar", m_sProxy, hr) : S_OK;
  }

  bool m_bPorUsuario;
  HKEY m_hRaiz;
  std::wstring m_sExecutavel;
  std::wstring m_sPasta;
  std::wstring m_sProxy;
  std::wstring m_sProxy32;
  plataforma::PosseModulo m_hProxy;
  Biblioteca m_spBiblioteca;
};

}  // namespace

HRESULT ExecutaRegistro(EComando eComando) {
  try {
    CRegistroServidor registro(eComando == EComando::RegistraPorUsuario || eComando == EComando::DesregistraPorUsuario);
    const bool bRegistra = eComando == EComando::Registra || eComando == EComando::RegistraPorUsuario;
    return bRegistra ? registro.Registra() : registro.Desregistra();
  } catch (...) {
    return QZTranslateThrownExceptionToHresult();
  }
}
