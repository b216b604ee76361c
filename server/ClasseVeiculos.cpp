#include "server/ClasseVeiculos.h"

#include <objbase.h>

#include "server/QZDF_Veiculos.h"

HRESULT CClasseVeiculos::QueryInterface(REFIID riid, void **ppv) {
  if (ppv == nullptr) {
    return E_POINTER;
  }
  if (riid == IID_IUnknown || riid == IID_IClassFactory) {
    *ppv = static_cast<IClassFactory *>(this);
    return S_OK;
  }
  *ppv = nullptr;
  return E_NOINTERFACE;
}

HRESULT CClasseVeiculos::CreateInstance(IUnknown *pExterno, REFIID riid, void **ppv) {
  if (ppv == nullptr) {
    return E_POINTER;
  }
  const CUsoDoModulo uso;
  return CQZDF_Veiculos::Cria(pExterno, riid, ppv);
}

HRESULT CClasseVeiculos::LockServer(BOOL bTrava) {
  CContagemModulo &contagem = CContagemModulo::DoProcesso();
  if (bTrava) {
    contagem.Trava();
    ++m_lTravas;
    return S_OK;
  }
  LONG lTravas = m_lTravas.load();
  while (lTravas > 0 && !m_lTravas.compare_exchange_weak(lTravas, lTravas - 1)) {
  }
  if (lTravas <= 0) {
    return E_UNEXPECTED;
  }
  contagem.Destrava();
  return S_OK;
}

CRegistroClasse::CRegistroClasse(CClasseVeiculos &classe)
    : m_hr(CoRegisterClassObject(CLSID_CQZDF_Veiculos, static_cast<IClassFactory *>(&classe), CLSCTX_LOCAL_SERVER,
                                 REGCLS_MULTIPLEUSE | REGCLS_SUSPENDED, &m_dwRegistro)) {}

CRegistroClasse::~CRegistroClasse() {
  if (SUCCEEDED(m_hr)) {
    CoRevokeClassObject(m_dwRegistro);
  }
}

CClasseAlcancavel::CClasseAlcancavel(CClasseVeiculos &classe) : m_classe(classe) {
  CoLockObjectExternal(&m_classe, TRUE, FALSE);
}

CClasseAlcancavel::~CClasseAlcancavel() {
  CoLockObjectExternal(&m_classe, FALSE, TRUE);
}
