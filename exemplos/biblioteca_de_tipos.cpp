// The vehicle service by its type library alone: nothing of this package is included or linked. What a tool needs whose
// language can import a type library but no header: names, positions in the vtable, offsets in the records, all looked
// up in Kalvo.tlb.
//
//   g++ -std=c++17 biblioteca_de_tipos.cpp -lole32 -loleaut32 -luuid
//   biblioteca_de_tipos ..\Kalvo.tlb 0001
//
// For 64 bits, as the type library is: in a program of 32 bits the calls pass records differently.
//
// Two things a type library cannot say are known here: that the text parameters carry 8-bit text (Parametro), and that
// "Ponteiros" leads to an array.

#include <windows.h>

#include <oleauto.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

static_assert(sizeof(void *) == 8, "see above");

namespace {

struct Solta {
  void operator()(IUnknown *p) const { p->Release(); }
};
template <class T>
using Ponteiro = std::unique_ptr<T, Solta>;

void Verifica(HRESULT hr, const std::string &sOnde) {
  if (FAILED(hr)) {
    char aCodigo[16];
    std::snprintf(aCodigo, sizeof aCodigo, "0x%08lX", static_cast<unsigned long>(hr));
    throw std::runtime_error(sOnde + ": " + aCodigo);
  }
}

// Names in a type library are wide; those of this one are plain ASCII.
std::wstring Largo(const std::string &sNome) {
  return {sNome.begin(), sNome.end()};
}

class Biblioteca {
public:
  explicit Biblioteca(const std::string &sArquivo) {
    ITypeLib *p = nullptr;
    std::vector<wchar_t> aCaminho(sArquivo.size() + 1);
    MultiByteToWideChar(CP_ACP, 0, sArquivo.c_str(), -1, aCaminho.data(), static_cast<int>(aCaminho.size()));
    Verifica(LoadTypeLib(aCaminho.data(), &p), sArquivo);
    m_sp.reset(p);
  }

  Ponteiro<ITypeInfo> Tipo(const std::string &sNome) const {
    std::wstring sLargo = Largo(sNome);
    ITypeInfo *p = nullptr;
    MEMBERID membro = MEMBERID_NIL;
    USHORT usAchados = 1;
    Verifica(m_sp->FindName(sLargo.data(), 0, &p, &membro, &usAchados), sNome);
    if (usAchados != 1) {
      throw std::runtime_error(sNome + ": not in the type library");
    }
    return Ponteiro<ITypeInfo>(p);
  }

  GUID Identificador(const std::string &sNome) const {
    const Ponteiro<ITypeInfo> spTipo = Tipo(sNome);
    TYPEATTR *p = nullptr;
    Verifica(spTipo->GetTypeAttr(&p), sNome);
    const GUID guid = p->guid;
    spTipo->ReleaseTypeAttr(p);
    return guid;
  }

private:
  Ponteiro<ITypeLib> m_sp;
};

// A record as the type library describes it: its bytes, and where its fields stand in them.
class Registro {
public:
  Registro(const Biblioteca &biblioteca, const std::string &sNome) {
    const Ponteiro<ITypeInfo> spTipo = biblioteca.Tipo(sNome);
    TYPEATTR *pAtributos = nullptr;
    Verifica(spTipo->GetTypeAttr(&pAtributos), sNome);
    m_aBytes.resize(pAtributos->cbSizeInstance);
    const UINT uiCampos = pAtributos->cVars;
    spTipo->ReleaseTypeAttr(pAtributos);
    for (UINT i = 0; i < uiCampos; ++i) {
      VARDESC *pCampo = nullptr;
      Verifica(spTipo->GetVarDesc(i, &pCampo), sNome);
      BSTR sCampo = nullptr;
      UINT uiNomes = 0;
      spTipo->GetNames(pCampo->memid, &sCampo, 1, &uiNomes);
      const TYPEDESC &tipo = pCampo->elemdescVar.tdesc;
      const std::wstring sLargo(sCampo);
      std::string sChave;
      for (const wchar_t c : sLargo) {
        sChave += static_cast<char>(c);
      }
      m_campos[sChave] = {pCampo->oInst, tipo.vt == VT_CARRAY ? tipo.lpadesc->rgbounds[0].cElements : 0};
      SysFreeString(sCampo);
      spTipo->ReleaseVarDesc(pCampo);
    }
  }

  template <class T>
  T Valor(const std::string &sCampo) const {
    T valor;
    std::memcpy(&valor, m_aBytes.data() + m_campos.at(sCampo).uiLugar, sizeof valor);
    return valor;
  }
  template <class T>
  void Poe(const std::string &sCampo, T valor) {
    std::memcpy(m_aBytes.data() + m_campos.at(sCampo).uiLugar, &valor, sizeof valor);
  }
  // Ended by a zero byte, or by the field's end.
  std::string Texto(const std::string &sCampo) const {
    const Campo &campo = m_campos.at(sCampo);
    const std::string sCheio(reinterpret_cast<const char *>(m_aBytes.data()) + campo.uiLugar, campo.uiLargura);
    return sCheio.substr(0, sCheio.find('\0'));
  }
  void PoeTexto(const std::string &sCampo, const std::string &sTexto) {
    const Campo &campo = m_campos.at(sCampo);
    if (sTexto.size() > campo.uiLargura) {
      throw std::runtime_error(sCampo + ": text too long");
    }
    std::memset(m_aBytes.data() + campo.uiLugar, 0, campo.uiLargura);
    std::memcpy(m_aBytes.data() + campo.uiLugar, sTexto.data(), sTexto.size());
  }

  std::vector<unsigned char> m_aBytes;

private:
  struct Campo {
    ULONG uiLugar;
    ULONG uiLargura;  // of a text
  };
  std::map<std::string, Campo> m_campos;
};

// The 8-bit text that a "wide" parameter carries: behind it two zero bytes at an even offset.
std::vector<wchar_t> Parametro(const std::string &sTexto) {
  std::vector<wchar_t> aTexto((sTexto.size() + 1) / 2 + 1);
  std::memcpy(aTexto.data(), sTexto.data(), sTexto.size());
  return aTexto;
}

// The arguments of a call, in order.
class Argumentos {
public:
  Argumentos &Inteiro(LONG lValor) {
    VARIANTARG valor{};
    valor.vt = VT_I4;
    valor.lVal = lValor;
    m_a.push_back(valor);
    return *this;
  }
  Argumentos &Endereco(void *p) {
    VARIANTARG valor{};
    valor.vt = VT_BYREF | VT_UI1;
    valor.pbVal = static_cast<BYTE *>(p);
    m_a.push_back(valor);
    return *this;
  }
  // A record by value: programs of 64 bits pass the address of a copy.
  Argumentos &PorValor(const Registro &registro) {
    m_aCopia = registro.m_aBytes;
    return Endereco(m_aCopia.data());
  }

  std::vector<VARIANTARG> m_a;

private:
  std::vector<unsigned char> m_aCopia;
};

class Objeto {
public:
  Objeto(const Biblioteca &biblioteca, const std::string &sClasse, const std::string &sInterface)
      : m_spInterface(biblioteca.Tipo(sInterface)) {
    const GUID clsid = biblioteca.Identificador(sClasse);
    const GUID iid = biblioteca.Identificador(sInterface);
    void *p = nullptr;
    Verifica(CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER, iid, &p), "CoCreateInstance");
    m_sp.reset(static_cast<IUnknown *>(p));
  }

  void Chama(const std::string &sOperacao, const Argumentos &argumentos) {
    std::vector<VARTYPE> aTipos;
    std::vector<VARIANTARG *> aValores;
    std::vector<VARIANTARG> aCopias = argumentos.m_a;
    for (VARIANTARG &valor : aCopias) {
      aTipos.push_back(valor.vt);
      aValores.push_back(&valor);
    }
    VARIANT resultado{};
    Verifica(DispCallFunc(m_sp.get(), LugarNaVtable(sOperacao), CC_STDCALL, VT_I4, static_cast<UINT>(aTipos.size()),
                          aTipos.data(), aValores.data(), &resultado),
             sOperacao);
    Verifica(resultado.lVal, sOperacao);
  }

private:
  ULONG_PTR LugarNaVtable(const std::string &sOperacao) const {
    std::wstring sLargo = Largo(sOperacao);
    LPOLESTR pNome = sLargo.data();
    MEMBERID membro = MEMBERID_NIL;
    Verifica(m_spInterface->GetIDsOfNames(&pNome, 1, &membro), sOperacao);
    FUNCDESC *pFuncao = nullptr;
    for (UINT i = 0; SUCCEEDED(m_spInterface->GetFuncDesc(i, &pFuncao)); ++i) {
      const bool bAchada = pFuncao->memid == membro;
      const auto uiLugar = static_cast<ULONG_PTR>(pFuncao->oVft);
      m_spInterface->ReleaseFuncDesc(pFuncao);
      if (bAchada) {
        return uiLugar;
      }
    }
    throw std::runtime_error(sOperacao + ": not in the interface");
  }

  Ponteiro<ITypeInfo> m_spInterface;
  Ponteiro<IUnknown> m_sp;
};

void Trabalha(const std::string &sBiblioteca, const std::string &sEmpresa) {
  const Biblioteca biblioteca(sBiblioteca);
  Objeto veiculos(biblioteca, "CQZDF_Veiculos", "IQZDF_Veiculos");
  std::vector<wchar_t> aEmpresa = Parametro(sEmpresa);
  veiculos.Chama("Inicializa", Argumentos().Endereco(aEmpresa.data()).Inteiro(1).Inteiro(1));

  Registro veiculo(biblioteca, "tagREG_VEICULOPS");
  veiculo.PoeTexto("szCodigo", "UTI00004");
  veiculo.PoeTexto("szPlaca", "JKL4M56");
  veiculo.PoeTexto("szUF", "RS");
  veiculo.Poe<std::uint32_t>("iAno", 2020);
  veiculo.Poe<std::int64_t>("vTara", 1550 * 10000LL);
  LONG lPosicao = 0;  // appends
  veiculos.Chama("Grava", Argumentos().Endereco(&lPosicao).PorValor(veiculo));
  std::printf("gravado na posicao %ld\n", lPosicao);

  Registro filtro(biblioteca, "tagREG_FILTRO_VEICULOSPS");
  filtro.PoeTexto("szUF", "RS");
  Registro resultado(biblioteca, "tagRESULTADO_BUSCA_VEICULOS");
  veiculos.Chama("BuscaPonteiros", Argumentos().PorValor(filtro).Endereco(resultado.m_aBytes.data()));
  LONG *const pPosicoes = resultado.Valor<LONG *>("Ponteiros");
  const std::vector<LONG> aPosicoes(pPosicoes, pPosicoes + resultado.Valor<std::uint32_t>("iQtd"));
  CoTaskMemFree(pPosicoes);
  for (const LONG lAchada : aPosicoes) {
    veiculos.Chama("Le", Argumentos().Inteiro(lAchada).Endereco(veiculo.m_aBytes.data()));
    std::printf("%s %ld kg\n", veiculo.Texto("szPlaca").c_str(),
                static_cast<long>(veiculo.Valor<std::int64_t>("vTara") / 10000));
  }
}

}  // namespace

int main(int argc, char **argv) {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  int iSaida = 0;
  try {
    Trabalha(argc > 1 ? argv[1] : "Kalvo.tlb", argc > 2 ? argv[2] : "0001");
  } catch (const std::exception &erro) {
    std::fprintf(stderr, "%s\n", erro.what());
    iSaida = 1;
  }
  CoUninitialize();
  return iSaida;
}
