#ifndef KALVO_SERVER_QZDF_VEICULOS_H
#define KALVO_SERVER_QZDF_VEICULOS_H

#include <windows.h>
//
#include <QZDF_Veiculos.h>

#include <atomic>
#include <memory>

#include "core/log/QZProfilerEmpresa.h"
#include "server/ChamadaServico.h"
#include "server/ContagemModulo.h"
#include "server/VigiaCliente.h"
#include "vehicles/BaseVeiculos.h"

/// The service object: forwards each operation to its register of vehicles under the call guard.
///
/// Free-threaded, plain or aggregated. Every operation returns a result code; no exception and no fault of the machine
/// leaves it. After a machine fault the object has no register any more: that call and every later one return
/// 0x8004EAC5 or the fault's own code, and the client creates a new object.
///
/// Text parameters are declared wide but carry 8-bit text up to the first zero byte. The trace finds company, user and
/// session through IQZDF_Profiler; without a register they are empty, 0 and 0.
class CQZDF_Veiculos final : public IQZDF_Veiculos, public IQZDF_Profiler, private IObjetoVigiado {
public:
  /// Creates an object, aggregated when `pExterno` is not null (only IID_IUnknown may be asked for then), and returns
  /// the interface asked for. A failed construction is the result.
  static HRESULT Cria(IUnknown *pExterno, REFIID riid, void **ppv);

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppv) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;

  HRESULT STDMETHODCALLTYPE Inicializa(LPWSTR lpEmpresa, unsigned short iUsuario, LONG lNumeroSessao) override;
  HRESULT STDMETHODCALLTYPE Grava(LONG *pPos, tagREG_VEICULOPS Veiculo) override;
  HRESULT STDMETHODCALLTYPE Le(LONG lPos, tagREG_VEICULOPS *pVeiculo) override;
  HRESULT STDMETHODCALLTYPE Existe(LPWSTR lpCodigo, LONG *pPos, tagREG_VEICULOPS *pVeiculo) override;
  HRESULT STDMETHODCALLTYPE BuscaPonteiros(tagREG_FILTRO_VEICULOSPS Filtro,
                                           tagRESULTADO_BUSCA_VEICULOS *pResultado) override;
  HRESULT STDMETHODCALLTYPE LePonteiros(unsigned int iQtd, LONG *Ponteiros, tagREG_VEICULOPS *pVeiculos) override;
  HRESULT STDMETHODCALLTYPE GetQuantidadeRegistros(unsigned int *pQtd) override;

  CString GetEmpresa() const override;
  std::uint16_t GetUsuario() const override;
  std::uint32_t GetSessao() const override;

private:
  /// The object's own identity, under which an aggregating object holds it.
  class CInterno final : public IUnknown {
  public:
    explicit CInterno(CQZDF_Veiculos &objeto) : m_objeto(objeto) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppv) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

  private:
    CQZDF_Veiculos &m_objeto;
  };

  /// Keeps the other operations of the object out of one that changes its lifecycle.
  enum class Acesso { Compartilhado, Exclusivo };

  explicit CQZDF_Veiculos(IUnknown *pExterno);
  ~CQZDF_Veiculos();

  IUnknown *SeguraSeVivo() override;

  /// Takes the object's register away, whose state can no longer be trusted.
  void PerdeRegistro();

  template <class Formata, class Zera, class Corpo>
  HRESULT Opera(const IQZDF_Profiler &profiler, const NomeOperacao &nome, Acesso eAcesso, const Formata &formata,
                Zera &&zera, Corpo &&corpo);
  template <class Zera, class Corpo>
  HRESULT Opera(const NomeOperacao &nome, Zera &&zera, Corpo &&corpo);
  template <class Formata, class Zera, class Corpo>
  HRESULT OperaComParametros(const NomeOperacao &nome, const Formata &formata, Zera &&zera, Corpo &&corpo);

  const CUsoDoModulo m_uso;
  CInterno m_interno;
  IUnknown *const m_pExterno;  ///< not counted: the aggregating object outlives this one
  std::atomic<LONG> m_lReferencias{1};
  std::atomic<std::shared_ptr<CBaseVeiculos>> m_spBase;
  HRESULT m_hrConstruct = 0;
  CVigiaCliente m_vigia;
};

#endif
