#ifndef KALVO_CORE_QZDATABASE_QZDATABASEFACADE_H
#define KALVO_CORE_QZDATABASE_QZDATABASEFACADE_H

#include "core/qzdatabase/QZDataBaseContainer.h"

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
  [[nodiscard]] HRESULT SoltaDataBase();

  inline static CQZDataBaseContainer<TDataBase> m_ContainerFacade;
};

template <typename TDataBase, typename TBase>
HRESULT CQZDataBaseFacade<TDataBase, TBase>::QZDataBaseInicializa() {
  const CQZOperacao rastro(
      this, {"CQZDataBaseFacade<", NomeTipoBanco<TDataBase>::kNome, ",class CQZBaseParaRotinas>::QZDataBaseInicializa"},
      kFonteDataBaseFacade);
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
  const HRESULT hrDataBase = SoltaDataBase();
  const HRESULT hrBase = TBase::OnFinaliza();
  return Falhou(hrDataBase) ? hrDataBase : hrBase;
}

template <typename TDataBase, typename TBase>
HRESULT CQZDataBaseFacade<TDataBase, TBase>::SoltaDataBase() {
  const CQZOperacao rastro(
      this, {"CQZDataBaseFacade<", NomeTipoBanco<TDataBase>::kNome, ",class CQZBaseParaRotinas>::OnFinaliza"},
      kFonteDataBaseFacade);
  if (m_pDataBase == nullptr) {
    return codigos::kOk;
  }
  QZ_VERIFICA(rastro, "m_ContainerFacade.Finaliza(GetEmpresa(), m_pDataBase)",
              m_ContainerFacade.Finaliza(&m_pDataBase));
  return codigos::kOk;
}

#endif
