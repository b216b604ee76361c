#ifndef KALVO_SERVER_CLASSEVEICULOS_H
#define KALVO_SERVER_CLASSEVEICULOS_H

#include <windows.h>
//
#include <unknwn.h>

#include <atomic>

/// The class object: creates service objects, plain or aggregated. One lives for the whole process and does not itself
/// keep it alive; clients that want that call LockServer.
class CClasseVeiculos final : public IClassFactory {
public:
  CClasseVeiculos() = default;
  CClasseVeiculos(const CClasseVeiculos &) = delete;
  CClasseVeiculos &operator=(const CClasseVeiculos &) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppv) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown *pExterno, REFIID riid, void **ppv) override;
  /// Without a lock to take away an unlocking gives E_UNEXPECTED: it must not end the process under others' objects.
  HRESULT STDMETHODCALLTYPE LockServer(BOOL bTrava) override;

private:
  std::atomic<LONG> m_lTravas{0};
};

/// The class object's registration with the component platform; destruction revokes it.
class CRegistroClasse {
public:
  /// Registers suspended, for multiple use by other processes. Resultado tells how it went.
  explicit CRegistroClasse(CClasseVeiculos &classe);
  ~CRegistroClasse();
  CRegistroClasse(const CRegistroClasse &) = delete;
  CRegistroClasse &operator=(const CRegistroClasse &) = delete;

  HRESULT Resultado() const { return m_hr; }

private:
  DWORD m_dwRegistro = 0;
  HRESULT m_hr;
};

/// Keeps the class object reachable, for a scope, for clients that found it before its registration was revoked.
class CClasseAlcancavel {
public:
  explicit CClasseAlcancavel(CClasseVeiculos &classe);
  ~CClasseAlcancavel();
  CClasseAlcancavel(const CClasseAlcancavel &) = delete;
  CClasseAlcancavel &operator=(const CClasseAlcancavel &) = delete;

private:
  CClasseVeiculos &m_classe;
};

#endif
