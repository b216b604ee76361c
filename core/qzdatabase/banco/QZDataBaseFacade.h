#ifndef KALVO_CORE_QZDATABASE_BANCO_QZDATABASEFACADE_H
#define KALVO_CORE_QZDATABASE_BANCO_QZDATABASEFACADE_H

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>

#include "core/errors/CodigosResultado.h"
#include "core/log/QZOperacao.h"
#include "core/platform/LivroDaThread.h"
#include "core/platform/Textos.h"
#include "core/platform/Travas.h"
#include "core/qzdatabase/disco/QZCrc64.h"

/// Name of a database class as it stands in the qualified names of the error records ("class CQZDataBase_Veiculos").
/// Every database that is shared specialises it with a `kNome`.
template <typename TDataBase>
struct NomeTipoBanco;

/// The shared databases of a process, one per company, each living as long as it has users.
///
/// Company codes that differ only in letter case are the same company. All operations may run on any thread; the
/// container's lock is held while a database is initialised or finished, so that other companies wait meanwhile.
template <typename TDataBase>
class CQZDataBaseContainer {
public:
  CQZDataBaseContainer() = default;
  CQZDataBaseContainer(const CQZDataBaseContainer &) = delete;
  CQZDataBaseContainer &operator=(const CQZDataBaseContainer &) = delete;

  /// Adds one user to the company's database, creating and initialising it (with this user and session) for the first.
  /// On failure `*ppDataBase` is unchanged and the company has no database.
  [[nodiscard]] HRESULT Inicializa(const CString &sEmpresa, std::uint16_t iUsuario, LONG lNumeroSessao,
                                   TDataBase **ppDataBase);

  /// Takes one user of `*ppDataBase` away and makes it null; the last one finishes and destroys the database. Needs no
  /// memory, so that letting go works when nothing else does.
  [[nodiscard]] HRESULT Finaliza(TDataBase **ppDataBase);

  /// True when the company has a database.
  bool Possui(const CString &sEmpresa);

private:
  static constexpr char kFonteH[] = "QZDataBaseFacade.h";

  /// The CRC of the company code comes first; the code itself tells apart two companies with one CRC.
  using Chave = std::pair<std::uint64_t, CString>;

  struct CQZDataBaseContainerPair {
    std::uint64_t uiUsuarios = 0;  ///< 0 only while the database is initialised or finished, under the lock
    std::unique_ptr<TDataBase> pDataBase;
  };

  /// Destroys, at the end of a scope under the lock, the database that has no user. A machine fault inside the scope
  /// does the same through the ledger, so that a company is never left with half a database and its files open.
  class Descarte {
  public:
    explicit Descarte(CQZDataBaseContainer &container) : m_container(container), m_noLivro(&container, Executa) {}
    ~Descarte() { Executa(&m_container); }
    Descarte(const Descarte &) = delete;
    Descarte &operator=(const Descarte &) = delete;

  private:
    static void Executa(void *pContainer) {
      auto &pares = static_cast<CQZDataBaseContainer *>(pContainer)->m_pares;
      const auto semUsuario =
          std::find_if(pares.begin(), pares.end(), [](const auto &par) { return par.second.uiUsuarios == 0; });
      if (semUsuario != pares.end()) {
        // Out of the map first: should destroying it fault, no later call meets it.
        const auto destruido = pares.extract(semUsuario);
      }
    }

    CQZDataBaseContainer &m_container;
    plataforma::CQZNoLivro m_noLivro;
  };

  static Chave ChaveDaEmpresa(const CString &sEmpresa) {
    CString sMaiuscula = plataforma::Maiusculas(sEmpresa);
    const std::uint64_t crc = CalculaCrc64(sMaiuscula.data(), sMaiuscula.size());
    return {crc, std::move(sMaiuscula)};
  }

  plataforma::SecaoCritica m_secao{plataforma::NivelTrava::Container};
  std::map<Chave, CQZDataBaseContainerPair> m_pares;
};

template <typename TDataBase>
HRESULT CQZDataBaseContainer<TDataBase>::Inicializa(const CString &sEmpresa, std::uint16_t iUsuario, LONG lNumeroSessao,
                                                    TDataBase **ppDataBase) {
  const CQZProfilerEmpresa profiler(sEmpresa, iUsuario, static_cast<std::uint32_t>(lNumeroSessao));
  const CQZOperacao rastro(&profiler, {"CQZDataBaseContainer<", NomeTipoBanco<TDataBase>::kNome, ">::Inicializa"},
                           kFonteH);
  const Chave chave = ChaveDaEmpresa(sEmpresa);
  const plataforma::CQZTrava trava(m_secao);
  const Descarte descarte(*this);
  auto par = m_pares.find(chave);
  if (par == m_pares.end()) {
    par = m_pares.emplace(chave, CQZDataBaseContainerPair{0, std::make_unique<TDataBase>()}).first;
    QZ_VERIFICA(rastro, "pDataBase->Inicializa(sEmpresa, iUsuario, lNumeroSessao)",
                par->second.pDataBase->Inicializa(sEmpresa, iUsuario, lNumeroSessao));
  }
  ++par->second.uiUsuarios;
  *ppDataBase = par->second.pDataBase.get();
  return codigos::kOk;
}

template <typename TDataBase>
HRESULT CQZDataBaseContainer<TDataBase>::Finaliza(TDataBase **ppDataBase) {
  const CQZEscopoProfiler escopo(*ppDataBase,
                                 {"CQZDataBaseContainer<", NomeTipoBanco<TDataBase>::kNome, ">::Finaliza"});
  const plataforma::CQZTrava trava(m_secao);
  const auto par = std::find_if(m_pares.begin(), m_pares.end(),
                                [&](const auto &candidato) { return candidato.second.pDataBase.get() == *ppDataBase; });
  *ppDataBase = nullptr;
  if (par == m_pares.end()) {
    return codigos::kOk;
  }
  if (par->second.uiUsuarios >= 2) {
    --par->second.uiUsuarios;
    return codigos::kOk;
  }
  par->second.uiUsuarios = 0;
  const Descarte descarte(*this);
  return par->second.pDataBase->Finaliza();
}

template <typename TDataBase>
bool CQZDataBaseContainer<TDataBase>::Possui(const CString &sEmpresa) {
  const Chave chave = ChaveDaEmpresa(sEmpresa);
  const plataforma::CQZTrava trava(m_secao);
  return m_pares.count(chave) != 0;
}

/// Gives a business object (TBase is its routine base) the one database of its company, shared with every other object
/// of the process that works on the company.
template <typename TDataBase, typename TBase>
class CQZDataBaseFacade : public TBase {
public:
  /// True when the present company's database is already initialised in this process, by this or another object.
  bool QZDataBaseEstaInicializado() const { return m_ContainerFacade.Possui(this->GetEmpresa()); }

protected:
  /// Obtains the company's database; called from the business object's OnInicializa. An empty company fails with
  /// 0x810809CF.
  [[nodiscard]] HRESULT QZDataBaseInicializa();

  /// Lets go of the database, then finishes the base; the first failure is returned.
  [[nodiscard]] HRESULT OnFinaliza() override;

  /// The company's database; null unless initialised.
  TDataBase *m_pDataBase = nullptr;

private:
  static constexpr char kFonteH[] = "QZDataBaseFacade.h";

  inline static CQZDataBaseContainer<TDataBase> m_ContainerFacade;
};

template <typename TDataBase, typename TBase>
HRESULT CQZDataBaseFacade<TDataBase, TBase>::QZDataBaseInicializa() {
  const CQZOperacao rastro(
      this, {"CQZDataBaseFacade<", NomeTipoBanco<TDataBase>::kNome, ",class CQZBaseParaRotinas>::QZDataBaseInicializa"},
      kFonteH);
  if (this->GetEmpresa().empty()) {
    QZ_RETORNA_CODIGO(rastro, codigos::kSemEmpresa);
  }
  QZ_VERIFICA(
      rastro, "m_ContainerFacade.Inicializa(GetEmpresa(), GetUsuario(), GetNumeroSessao(), m_pDataBase)",
      m_ContainerFacade.Inicializa(this->GetEmpresa(), this->GetUsuario(), this->GetNumeroSessao(), &m_pDataBase));
  return codigos::kOk;
}

template <typename TDataBase, typename TBase>
HRESULT CQZDataBaseFacade<TDataBase, TBase>::OnFinaliza() {
  const CQZOperacao rastro(
      this, {"CQZDataBaseFacade<", NomeTipoBanco<TDataBase>::kNome, ",class CQZBaseParaRotinas>::OnFinaliza"}, kFonteH);
  HRESULT hrDataBase = codigos::kOk;
  if (m_pDataBase != nullptr) {
    static_cast<void>(QZ_FALHOU(rastro, hrDataBase, "m_ContainerFacade.Finaliza(GetEmpresa(), m_pDataBase)",
                                m_ContainerFacade.Finaliza(&m_pDataBase)));
  }
  HRESULT hr = codigos::kOk;
  static_cast<void>(QZ_FALHOU(rastro, hr, "__super::OnFinaliza()", TBase::OnFinaliza()));
  return Falhou(hrDataBase) ? hrDataBase : hr;
}

#endif
