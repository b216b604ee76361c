#include "server/QZDF_Veiculos.h"

#include <cstring>
#include <mutex>
#include <new>
#include <shared_mutex>
#include <utility>

#include "core/errors/CodigosResultado.h"
#include "core/errors/guard/TraducaoExcecoes.h"
#include "server/ChamadaServico.h"

namespace {

/// Count of references while the object is being destroyed: a reference taken and released meanwhile, by the component
/// platform for instance, must not destroy it again.
constexpr LONG kEmDestruicao = -0x40000000;

/// The bytes of a text parameter as they arrive; no text at all is an empty one.
const char *Bytes8(LPCWSTR lpTexto) {
  return lpTexto == nullptr ? "" : reinterpret_cast<const char *>(lpTexto);
}

/// Copies a text parameter; the caller's pointer may be bad.
HRESULT CopiaTexto(LPCWSTR lpTexto, CString &sCopia) {
  try {
    auto copia = [&]() -> HRESULT {
      sCopia = Bytes8(lpTexto);
      return 0;
    };
    return ChamaSEH(copia);
  } catch (...) {
    return QZTranslateThrownExceptionToHresult();
  }
}

/// Holds the register's lifecycle lock until Solta; nothing to hold without a register.
class CTravaCicloDeVida {
public:
  CTravaCicloDeVida(CBaseVeiculos *pBase, bool bExclusivo) {
    if (pBase != nullptr && bExclusivo) {
      m_exclusiva = std::unique_lock(pBase->TravaCicloDeVida());
    } else if (pBase != nullptr) {
      m_compartilhada = std::shared_lock(pBase->TravaCicloDeVida());
    }
  }

  /// Lets go before the end of the scope.
  void Solta() noexcept {
    m_exclusiva = {};
    m_compartilhada = {};
  }

private:
  std::unique_lock<plataforma::SecaoCompartilhada> m_exclusiva;
  std::shared_lock<plataforma::SecaoCompartilhada> m_compartilhada;
};

ParametrosEscopo SemParametros() {
  return {};
}

/// The number behind a pointer that may be bad, as text; "0" for a bad one.
CString TextoDe(const LONG *pNumero) {
  LONG lNumero = 0;
  IgnoraFalhas([&] { lNumero = *pNumero; });
  return std::to_string(lNumero);
}

void SoltaBase(std::shared_ptr<CBaseVeiculos> &spBase) {
  IgnoraFalhas([&] { spBase.reset(); });
}

}  // namespace

HRESULT CQZDF_Veiculos::Cria(IUnknown *pExterno, REFIID riid, void **ppv) {
  *ppv = nullptr;
  if (pExterno != nullptr && riid != IID_IUnknown) {
    return CLASS_E_NOAGGREGATION;
  }
  CQZDF_Veiculos *pObjeto = nullptr;
  try {
    pObjeto = new CQZDF_Veiculos(pExterno);
  } catch (...) {
    return QZTranslateThrownExceptionToHresult();
  }
  HRESULT hr = pObjeto->m_hrConstruct;
  if (!Falhou(hr)) {
    if (pExterno == nullptr) {
      pObjeto->m_vigia.Comeca();
      pObjeto->m_vigia.Observa();
    }
    hr = pObjeto->m_interno.QueryInterface(riid, ppv);
  }
  pObjeto->m_interno.Release();
  return hr;
}

CQZDF_Veiculos::CQZDF_Veiculos(IUnknown *pExterno)
    : m_interno(*this), m_pExterno(pExterno != nullptr ? pExterno : &m_interno), m_vigia(*this) {
  const CQZProfilerEmpresa profiler;
  const CChamadaServico chamada(profiler, "CQZDF_Veiculos::CQZDF_Veiculos", "m_hrConstruct");
  m_hrConstruct = chamada.Guarda([this]() -> HRESULT {
    m_spBase.store(std::make_shared<CBaseVeiculos>());
    return 0;
  });
}

CQZDF_Veiculos::~CQZDF_Veiculos() {
  const CQZProfilerEmpresa profiler;
  const CChamadaServico chamada(profiler, "CQZDF_Veiculos::~CQZDF_Veiculos");
  static_cast<void>(chamada.Guarda([this]() -> HRESULT {
    m_spBase.store(nullptr);
    return 0;
  }));
}

HRESULT CQZDF_Veiculos::CInterno::QueryInterface(REFIID riid, void **ppv) {
  if (ppv == nullptr) {
    return E_POINTER;
  }
  *ppv = nullptr;
  if (riid == IID_IUnknown) {
    *ppv = static_cast<IUnknown *>(this);
    AddRef();
    return S_OK;
  }
  if (riid == IID_IQZDF_Veiculos) {
    *ppv = static_cast<IQZDF_Veiculos *>(&m_objeto);
    m_objeto.AddRef();
    return S_OK;
  }
  return E_NOINTERFACE;
}

ULONG CQZDF_Veiculos::CInterno::AddRef() {
  return static_cast<ULONG>(++m_objeto.m_lReferencias);
}

ULONG CQZDF_Veiculos::CInterno::Release() {
  const LONG lRestam = --m_objeto.m_lReferencias;
  if (lRestam == 0) {
    m_objeto.m_lReferencias.store(kEmDestruicao);
    delete &m_objeto;
  }
  return static_cast<ULONG>(lRestam);
}

HRESULT CQZDF_Veiculos::QueryInterface(REFIID riid, void **ppv) {
  return m_pExterno->QueryInterface(riid, ppv);
}

ULONG CQZDF_Veiculos::AddRef() {
  return m_pExterno->AddRef();
}

ULONG CQZDF_Veiculos::Release() {
  return m_pExterno->Release();
}

IUnknown *CQZDF_Veiculos::SeguraSeVivo() {
  LONG lReferencias = m_lReferencias.load();
  while (lReferencias > 0) {
    if (m_lReferencias.compare_exchange_weak(lReferencias, lReferencias + 1)) {
      return &m_interno;
    }
  }
  return nullptr;
}

void CQZDF_Veiculos::PerdeRegistro() {
  std::shared_ptr<CBaseVeiculos> spPerdida = m_spBase.exchange(nullptr);
  SoltaBase(spPerdida);
}

template <class Formata, class Zera, class Corpo>
HRESULT CQZDF_Veiculos::Opera(const IQZDF_Profiler &profiler, const NomeOperacao &nome, Acesso eAcesso,
                              const Formata &formata, Zera &&zera, Corpo &&corpo) {
  // A reference of this call's own: another call that meets a fault may drop the object's at any moment.
  std::shared_ptr<CBaseVeiculos> spBase = m_spBase.load();
  try {
    m_vigia.Observa();
    CTravaCicloDeVida trava(spBase.get(), eAcesso == Acesso::Exclusivo);
    // Under the lock: the records of the call name the company that it works on, which Inicializa changes.
    const CChamadaServico chamada(profiler, nome, "hr", formata);
    auto guardado = [&]() -> HRESULT {
      zera();
      return spBase != nullptr ? corpo(*spBase) : codigos::kSemRegistro;
    };
    // For a fault that somebody further out takes: control never comes back to the lines below.
    const HRESULT hr = chamada.Guarda(guardado, [&] {
      trava.Solta();
      PerdeRegistro();
      SoltaBase(spBase);
    });
    // The lock is part of the register: it must be free before the last reference may go.
    trava.Solta();
    if (EhErroSEH(hr)) {
      PerdeRegistro();
    }
    SoltaBase(spBase);
    return hr;
  } catch (...) {
    return QZTranslateThrownExceptionToHresult();
  }
}

template <class Zera, class Corpo>
HRESULT CQZDF_Veiculos::Opera(const NomeOperacao &nome, Zera &&zera, Corpo &&corpo) {
  return Opera(*this, nome, Acesso::Compartilhado, SemParametros, zera, corpo);
}

template <class Formata, class Zera, class Corpo>
HRESULT CQZDF_Veiculos::OperaComParametros(const NomeOperacao &nome, const Formata &formata, Zera &&zera,
                                           Corpo &&corpo) {
  return Opera(*this, nome, Acesso::Compartilhado, formata, zera, corpo);
}

HRESULT CQZDF_Veiculos::Inicializa(LPWSTR lpEmpresa, unsigned short iUsuario, LONG lNumeroSessao) {
  CString sEmpresa;
  const HRESULT hrTexto = CopiaTexto(lpEmpresa, sEmpresa);
  const CQZProfilerEmpresa profiler(std::move(sEmpresa), iUsuario, static_cast<std::uint32_t>(lNumeroSessao));
  return Opera(
      profiler, "CQZDF_Veiculos::Inicializa", Acesso::Exclusivo, SemParametros, [] {},
      [&](CBaseVeiculos &base) {
        return Falhou(hrTexto) ? hrTexto : base.Inicializa(profiler.GetEmpresa(), iUsuario, lNumeroSessao);
      });
}

HRESULT CQZDF_Veiculos::Grava(LONG *pPos, tagREG_VEICULOPS Veiculo) {
  if (pPos == nullptr) {
    return codigos::kPonteiroInvalido;
  }
  return OperaComParametros(
      "CQZDF_Veiculos::Grava",
      [&] {
        return ParametrosEscopo{{"*pPos", TextoDe(pPos)}};
      },
      [] {}, [&](CBaseVeiculos &base) { return base.Grava(pPos, Veiculo); });
}

HRESULT CQZDF_Veiculos::Le(LONG lPos, tagREG_VEICULOPS *pVeiculo) {
  if (pVeiculo == nullptr) {
    return codigos::kPonteiroInvalido;
  }
  return OperaComParametros(
      "CQZDF_Veiculos::Le",
      [&] {
        return ParametrosEscopo{{"lPos", std::to_string(lPos)}};
      },
      [&] { *pVeiculo = {}; }, [&](CBaseVeiculos &base) { return base.LePonteiros(1, &lPos, pVeiculo); });
}

HRESULT CQZDF_Veiculos::Existe(LPWSTR lpCodigo, LONG *pPos, tagREG_VEICULOPS *pVeiculo) {
  if (pPos == nullptr || pVeiculo == nullptr) {
    return codigos::kPonteiroInvalido;
  }
  return OperaComParametros(
      "CQZDF_Veiculos::Existe",
      [&] {
        CString sCodigo;
        static_cast<void>(CopiaTexto(lpCodigo, sCodigo));
        return ParametrosEscopo{{"lpCodigo", sCodigo}, {"*pPos", TextoDe(pPos)}};
      },
      [&] {
        *pPos = 0;
        *pVeiculo = {};
      },
      [&](CBaseVeiculos &base) {
        std::uint32_t uiPosicao = 0;
        const HRESULT hr = base.Existe(Bytes8(lpCodigo), &uiPosicao, pVeiculo);
        *pPos = static_cast<LONG>(uiPosicao);
        return hr;
      });
}

HRESULT CQZDF_Veiculos::BuscaPonteiros(tagREG_FILTRO_VEICULOSPS Filtro, tagRESULTADO_BUSCA_VEICULOS *pResultado) {
  if (pResultado == nullptr) {
    return codigos::kPonteiroInvalido;
  }
  return Opera(
      "CQZDF_Veiculos::BuscaPonteiros", [&] { *pResultado = {}; },
      [&](CBaseVeiculos &base) { return base.BuscaPonteiros(Filtro, pResultado); });
}

HRESULT CQZDF_Veiculos::LePonteiros(unsigned int iQtd, LONG *Ponteiros, tagREG_VEICULOPS *pVeiculos) {
  if (iQtd > 0 && (Ponteiros == nullptr || pVeiculos == nullptr)) {
    return codigos::kPonteiroInvalido;
  }
  return Opera(
      "CQZDF_Veiculos::LePonteiros",
      [&] {
        if (iQtd > 0) {
          std::memset(pVeiculos, 0, std::size_t{iQtd} * sizeof(tagREG_VEICULOPS));
        }
      },
      [&](CBaseVeiculos &base) { return base.LePonteiros(iQtd, Ponteiros, pVeiculos); });
}

HRESULT CQZDF_Veiculos::GetQuantidadeRegistros(unsigned int *pQtd) {
  if (pQtd == nullptr) {
    return codigos::kPonteiroInvalido;
  }
  return Opera(
      "CQZDF_Veiculos::GetQuantidadeRegistros", [&] { *pQtd = 0; },
      [&](CBaseVeiculos &base) { return base.GetQuantidadeRegistros(pQtd); });
}

CString CQZDF_Veiculos::GetEmpresa() const {
  const std::shared_ptr<CBaseVeiculos> spBase = m_spBase.load();
  return spBase != nullptr ? spBase->GetEmpresa() : CString();
}

std::uint16_t CQZDF_Veiculos::GetUsuario() const {
  const std::shared_ptr<CBaseVeiculos> spBase = m_spBase.load();
  return spBase != nullptr ? spBase->GetUsuario() : std::uint16_t{0};
}

std::uint32_t CQZDF_Veiculos::GetSessao() const {
  const std::shared_ptr<CBaseVeiculos> spBase = m_spBase.load();
  return spBase != nullptr ? spBase->GetSessao() : 0;
}
