#include "server/RegistroServidor.h"

#include <windows.h>
//
#include <QZDF_Veiculos.h>
#include <oleauto.h>

#include <array>
#include <string>
#include <vector>

#include "core/errors/guard/TraducaoExcecoes.h"
#include "server/SaidaErro.h"

// Exported by the system's library, missing in the compiler's headers.
extern "C" {
HRESULT STDAPICALLTYPE RegisterTypeLibForUser(ITypeLib *pBiblioteca, OLECHAR *lpCaminho, OLECHAR *lpAjuda);
HRESULT STDAPICALLTYPE UnRegisterTypeLibForUser(REFGUID libid, WORD wMaior, WORD wMenor, LCID lcid, SYSKIND eSistema);
}

namespace {

constexpr wchar_t kAppId[] = L"{f5b03bc1-ff38-45f0-a365-680a4ab6f515}";
constexpr wchar_t kProgId[] = L"Kalvo.QZDF_Veiculos.1";
constexpr wchar_t kProgIdSemVersao[] = L"Kalvo.QZDF_Veiculos";
constexpr wchar_t kNomeClasse[] = L"QZDF_Veiculos Class";
constexpr wchar_t kNomeInterface[] = L"IQZDF_Veiculos";
constexpr wchar_t kProxy[] = L"QZDF_VeiculosPS.dll";
constexpr GUID kClsidProxy = {0x84be9740, 0x8888, 0x4462, {0x88, 0x3d, 0xb2, 0x72, 0x5b, 0xba, 0x02, 0x96}};
constexpr int kMetodos = 10;  // of the interface, those of IUnknown included

/// One value of the registry; an empty name is the key's default value.
struct Valor {
  std::wstring chave;
  std::wstring nome;
  std::wstring texto;
};

CString Ascii(const std::wstring &texto) {
  CString saida;
  for (const wchar_t c : texto) {
    saida += c < 0x80 ? static_cast<char>(c) : '?';
  }
  return saida;
}

std::wstring TextoGuid(const GUID &guid) {
  std::array<wchar_t, 40> texto{};
  StringFromGUID2(guid, texto.data(), static_cast<int>(texto.size()));
  return texto.data();
}

std::wstring CaminhoDoExecutavel() {
  std::vector<wchar_t> caminho(MAX_PATH);
  while (GetModuleFileNameW(nullptr, caminho.data(), static_cast<DWORD>(caminho.size())) == caminho.size()) {
    caminho.resize(caminho.size() * 2);
  }
  return caminho.data();
}

class CRegistroServidor {
public:
  explicit CRegistroServidor(bool bPorUsuario)
      : m_bPorUsuario(bPorUsuario),
        m_hRaiz(bPorUsuario ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE),
        m_sExecutavel(CaminhoDoExecutavel()),
        m_sProxy(m_sExecutavel.substr(0, m_sExecutavel.find_last_of(L'\\') + 1) + kProxy) {}

  HRESULT Registra() const {
    HRESULT hr = GravaValores(ValoresDoServidor());
    hr = FAILED(hr) ? hr : RegistraBiblioteca();
    return FAILED(hr) ? hr : RegistraProxy();
  }

  /// The application identity stays, as do the keys that hold those of others.
  HRESULT Desregistra() const {
    HRESULT hr = DesregistraProxy();
    hr = FAILED(hr) ? hr : DesregistraBiblioteca();
    for (const std::wstring &chave : {L"CLSID\\" + TextoGuid(CLSID_CQZDF_Veiculos), std::wstring(kProgIdSemVersao),
                                      std::wstring(kProgId), std::wstring(L"AppID\\Kalvo.EXE")}) {
      hr = FAILED(hr) ? hr : ApagaChave(chave);
    }
    return hr;
  }

private:
  std::vector<Valor> ValoresDoServidor() const {
    const std::wstring clsid = TextoGuid(CLSID_CQZDF_Veiculos);
    const std::wstring classe = L"CLSID\\" + clsid;
    const std::wstring progId = kProgId;
    const std::wstring semVersao = kProgIdSemVersao;
    return {
        {std::wstring(L"AppID\\") + kAppId, L"", L"Kalvo"},
        {L"AppID\\Kalvo.EXE", L"AppID", kAppId},
        {progId, L"", kNomeClasse},
        {progId + L"\\CLSID", L"", clsid},
        {semVersao, L"", kNomeClasse},
        {semVersao + L"\\CLSID", L"", clsid},
        {semVersao + L"\\CurVer", L"", progId},
        {classe, L"", kNomeClasse},
        {classe, L"AppID", kAppId},
        {classe + L"\\ProgID", L"", progId},
        {classe + L"\\VersionIndependentProgID", L"", semVersao},
        // Quoted: an unquoted path with blanks would let another program answer for it.
        {classe + L"\\LocalServer32", L"", L"\"" + m_sExecutavel + L"\""},
        {classe + L"\\TypeLib", L"", TextoGuid(LIBID_Kalvo)},
    };
  }

  /// What DllRegisterServer writes for the machine, for one user.
  std::vector<Valor> ValoresDoProxy() const {
    const std::wstring clsid = TextoGuid(kClsidProxy);
    const std::wstring interface_ = L"Interface\\" + TextoGuid(IID_IQZDF_Veiculos);
    const std::wstring servidor = L"CLSID\\" + clsid + L"\\InProcServer32";
    return {
        {interface_, L"", kNomeInterface},
        {interface_ + L"\\ProxyStubClsid32", L"", clsid},
        {interface_ + L"\\NumMethods", L"", std::to_wstring(kMetodos)},
        {L"CLSID\\" + clsid, L"", L"PSFactoryBuffer"},
        {servidor, L"", m_sProxy},
        {servidor, L"ThreadingModel", L"Both"},
    };
  }

  std::wstring Completa(const std::wstring &chave) const { return L"Software\\Classes\\" + chave; }

  HRESULT Relata(const CString &operacao, const std::wstring &alvo, HRESULT hr) const {
    DizErro("Kalvo: falha ao " + operacao + " " + Ascii(alvo) + ": erro " +
            TextoCodigo(static_cast<unsigned long>(hr)));
    return hr;
  }

  HRESULT RelataChave(const CString &operacao, const std::wstring &chave, LSTATUS erro) const {
    return Relata(operacao + " a chave", (m_bPorUsuario ? L"HKCU\\" : L"HKLM\\") + Completa(chave),
                  HRESULT_FROM_WIN32(static_cast<DWORD>(erro)));
  }

  HRESULT GravaValores(const std::vector<Valor> &valores) const {
    for (const Valor &valor : valores) {
      HKEY hChave = nullptr;
      LSTATUS erro =
          RegCreateKeyExW(m_hRaiz, Completa(valor.chave).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &hChave, nullptr);
      if (erro == ERROR_SUCCESS) {
        erro = RegSetValueExW(hChave, valor.nome.empty() ? nullptr : valor.nome.c_str(), 0, REG_SZ,
                              reinterpret_cast<const BYTE *>(valor.texto.c_str()),
                              static_cast<DWORD>((valor.texto.size() + 1) * sizeof(wchar_t)));
        RegCloseKey(hChave);
      }
      if (erro != ERROR_SUCCESS) {
        return RelataChave("gravar", valor.chave, erro);
      }
    }
    return S_OK;
  }

  HRESULT ApagaChave(const std::wstring &chave) const {
    const LSTATUS erro = RegDeleteTreeW(m_hRaiz, Completa(chave).c_str());
    return erro == ERROR_SUCCESS || erro == ERROR_FILE_NOT_FOUND ? S_OK : RelataChave("apagar", chave, erro);
  }

  HRESULT RegistraBiblioteca() const {
    ITypeLib *pBiblioteca = nullptr;
    HRESULT hr = LoadTypeLibEx(m_sExecutavel.c_str(), REGKIND_NONE, &pBiblioteca);
    if (SUCCEEDED(hr)) {
      std::wstring caminho = m_sExecutavel;
      const auto registra = m_bPorUsuario ? RegisterTypeLibForUser : RegisterTypeLib;
      hr = registra(pBiblioteca, caminho.data(), nullptr);
      pBiblioteca->Release();
    }
    return FAILED(hr) ? Relata("registrar a biblioteca de tipos de", m_sExecutavel, hr) : S_OK;
  }

  HRESULT DesregistraBiblioteca() const {
    const std::wstring versao = L"TypeLib\\" + TextoGuid(LIBID_Kalvo) + L"\\1.0";
    HKEY hChave = nullptr;
    if (RegOpenKeyExW(m_hRaiz, Completa(versao).c_str(), 0, KEY_READ, &hChave) != ERROR_SUCCESS) {
      return S_OK;
    }
    RegCloseKey(hChave);
    const auto remove = m_bPorUsuario ? UnRegisterTypeLibForUser : UnRegisterTypeLib;
    const HRESULT hr = remove(LIBID_Kalvo, 1, 0, LOCALE_NEUTRAL, SYS_WIN64);
    return FAILED(hr) ? Relata("remover a biblioteca de tipos", versao, hr) : S_OK;
  }

  HRESULT RegistraProxy() const {
    return m_bPorUsuario ? GravaValores(ValoresDoProxy()) : ChamaProxy("DllRegisterServer", "registrar");
  }

  HRESULT DesregistraProxy() const {
    if (!m_bPorUsuario) {
      return ChamaProxy("DllUnregisterServer", "remover o registro de");
    }
    const HRESULT hr = ApagaChave(L"Interface\\" + TextoGuid(IID_IQZDF_Veiculos));
    return FAILED(hr) ? hr : ApagaChave(L"CLSID\\" + TextoGuid(kClsidProxy));
  }

  HRESULT ChamaProxy(const char *lpRotina, const CString &operacao) const {
    const HMODULE hProxy = LoadLibraryExW(m_sProxy.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (hProxy == nullptr) {
      return Relata("carregar", m_sProxy, HRESULT_FROM_WIN32(GetLastError()));
    }
    using Rotina = HRESULT(STDAPICALLTYPE *)();
    const auto rotina = reinterpret_cast<Rotina>(reinterpret_cast<void *>(GetProcAddress(hProxy, lpRotina)));
    const HRESULT hr = rotina != nullptr ? rotina() : HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND);
    FreeLibrary(hProxy);
    return FAILED(hr) ? Relata(operacao, m_sProxy, hr) : S_OK;
  }

  bool m_bPorUsuario;
  HKEY m_hRaiz;
  std::wstring m_sExecutavel;
  std::wstring m_sProxy;
};

}  // namespace

HRESULT ExecutaRegistro(Comando eComando) {
  try {
    const CRegistroServidor registro(eComando == Comando::RegistraPorUsuario ||
                                     eComando == Comando::DesregistraPorUsuario);
    const bool bRegistra = eComando == Comando::Registra || eComando == Comando::RegistraPorUsuario;
    return bRegistra ? registro.Registra() : registro.Desregistra();
  } catch (...) {
    return QZTranslateThrownExceptionToHresult();
  }
}
