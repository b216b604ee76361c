#ifndef KALVO_CLIENT_QZVEICULOSCLIENTE_H
#define KALVO_CLIENT_QZVEICULOSCLIENTE_H

// C++ access to the vehicle service for client programs. Header only, C++17; links with ole32 and the identifiers of
// the interface (QZDF_Veiculos_i.c).
//
//   CQZApartamento     enters the multithreaded apartment for as long as it lives
//   CQZVeiculosHR      one service object; every operation returns its result code
//   CQZVeiculos        the same; a failing operation raises CQZErroVeiculos
//   CQZResultadoBusca  what a search found, a range of vehicles with their positions
//
// No caller handles a pointer or frees anything. The headers may be included first or last, with or without UNICODE and
// with the macros min and max defined.
//
// An object may be called from several threads of the multithreaded apartment at once. After a machine fault
// (EhFalhaDeMaquina) the object is useless: destroy it and create another.

#include <windows.h>

#include <objbase.h>

#include "QZDF_Veiculos.h"
#include "QZVeiculosErros.h"
#include "QZVeiculosMoeda.h"
#include "QZVeiculosPadrao.h"
#include "QZVeiculosTextos.h"

inline void VerificaHR(HRESULT hr) {
  if (FAILED(hr)) {
    throw CQZErroVeiculos(hr);
  }
}

/// Create it before the first service object of the thread and destroy it after the last one.
class CQZApartamento {
public:
  CQZApartamento() { VerificaHR(CoInitializeEx(nullptr, COINIT_MULTITHREADED)); }
  ~CQZApartamento() { CoUninitialize(); }
  CQZApartamento(const CQZApartamento &) = delete;
  CQZApartamento &operator=(const CQZApartamento &) = delete;
};

/// Result codes. Operations other than Cria need an object: before a successful Cria they give E_POINTER. Output
/// parameters are always set: on failure to what the service left in them, which is zero for records it did not read.
class CQZVeiculosHR {
public:
  /// Creates the service object; an earlier one is let go.
  HRESULT Cria() {
    m_pVeiculos.reset();
    void *pObjeto = nullptr;
    const HRESULT hr =
        CoCreateInstance(CLSID_CQZDF_Veiculos, nullptr, CLSCTX_LOCAL_SERVER, IID_IQZDF_Veiculos, &pObjeto);
    if (SUCCEEDED(hr)) {
      m_pVeiculos.reset(static_cast<IQZDF_Veiculos *>(pObjeto));
    }
    return hr;
  }

  HRESULT Inicializa(std::string_view sEmpresa, std::uint16_t iUsuario, LONG lNumeroSessao) {
    if (!m_pVeiculos) {
      return E_POINTER;
    }
    if (!TextoSemZero(sEmpresa)) {
      return E_INVALIDARG;
    }
    CQZTextoParametro empresa(sEmpresa);
    return m_pVeiculos->Inicializa(empresa.Get(), iUsuario, lNumeroSessao);
  }

  /// lPos 0 appends and receives the new position; 1 to the number of records overwrites. On failure lPos keeps its
  /// value.
  HRESULT Grava(LONG &lPos, const tagREG_VEICULOPS &veiculo) {
    return m_pVeiculos ? m_pVeiculos->Grava(&lPos, veiculo) : E_POINTER;
  }

  HRESULT Le(LONG lPos, tagREG_VEICULOPS &veiculo) {
    veiculo = {};
    return m_pVeiculos ? m_pVeiculos->Le(lPos, &veiculo) : E_POINTER;
  }

  /// Finds by code, else by plate. Not finding is success with lPos 0. An empty text finds the first record. A text
  /// longer than the code field is refused here with E_INVALIDARG: the service would cut it and might find another
  /// code.
  HRESULT Existe(std::string_view sCodigo, LONG &lPos, tagREG_VEICULOPS &veiculo) {
    lPos = 0;
    veiculo = {};
    if (!m_pVeiculos) {
      return E_POINTER;
    }
    if (sCodigo.size() > sizeof(veiculo.szCodigo) || !TextoSemZero(sCodigo)) {
      return E_INVALIDARG;
    }
    CQZTextoParametro codigo(sCodigo);
    return m_pVeiculos->Existe(codigo.Get(), &lPos, &veiculo);
  }

  /// The positions of every record that passes the filter, ascending.
  HRESULT BuscaPonteiros(const tagREG_FILTRO_VEICULOSPS &filtro, std::vector<LONG> &aPosicoes) {
    aPosicoes.clear();
    if (!m_pVeiculos) {
      return E_POINTER;
    }
    tagRESULTADO_BUSCA_VEICULOS resultado{};
    const HRESULT hr = m_pVeiculos->BuscaPonteiros(filtro, &resultado);
    // The array is the client's whatever the result code says.
    const std::unique_ptr<LONG, CLiberaTarefa> spPonteiros(resultado.Ponteiros);
    if (SUCCEEDED(hr) && spPonteiros) {
      aPosicoes.assign(spPonteiros.get(), spPonteiros.get() + resultado.iQtd);
    }
    return hr;
  }

  /// Reads the positions in order. A position that cannot be read fails the call; the records before it stay filled, it
  /// and the rest are zero.
  HRESULT LePonteiros(const std::vector<LONG> &aPosicoes, std::vector<tagREG_VEICULOPS> &aVeiculos) {
    aVeiculos.assign(aPosicoes.size(), tagREG_VEICULOPS{});
    if (!m_pVeiculos) {
      return E_POINTER;
    }
    if (aPosicoes.empty()) {
      return S_OK;
    }
    // The interface takes the positions as [in]: the service does not write to them.
    return m_pVeiculos->LePonteiros(static_cast<unsigned>(aPosicoes.size()), const_cast<LONG *>(aPosicoes.data()),
                                    aVeiculos.data());
  }

  HRESULT GetQuantidadeRegistros(unsigned &uiQtd) {
    uiQtd = 0;
    return m_pVeiculos ? m_pVeiculos->GetQuantidadeRegistros(&uiQtd) : E_POINTER;
  }

private:
  struct CSoltaObjeto {
    void operator()(IQZDF_Veiculos *pVeiculos) const { pVeiculos->Release(); }
  };
  struct CLiberaTarefa {
    void operator()(LONG *pPonteiros) const { CoTaskMemFree(pPonteiros); }
  };

  std::unique_ptr<IQZDF_Veiculos, CSoltaObjeto> m_pVeiculos;
};

/// A vehicle that a search found.
struct CQZVeiculoAchado {
  LONG lPosicao = 0;
  tagREG_VEICULOPS veiculo{};
};

/// What a search found, ascending by position. The vehicles are read from the service while the range is walked
/// through, a block at a time and each as it is then; a read that fails raises CQZErroVeiculos. One walk at a time, in
/// one thread. Range and iterators keep the service object alive.
class CQZResultadoBusca {
  struct Estado {
    std::shared_ptr<CQZVeiculosHR> spVeiculos;
    std::vector<LONG> aPosicoes;
    std::size_t uiInicioBloco = 0;
    std::vector<tagREG_VEICULOPS> aBloco;

    const tagREG_VEICULOPS &Veiculo(std::size_t uiIndice) {
      constexpr std::size_t kBloco = 500;
      if (uiIndice < uiInicioBloco || uiIndice - uiInicioBloco >= aBloco.size()) {
        uiInicioBloco = uiIndice;
        const std::size_t uiResto = aPosicoes.size() - uiIndice;
        const auto primeira = aPosicoes.begin() + static_cast<std::ptrdiff_t>(uiIndice);
        const auto fim = primeira + static_cast<std::ptrdiff_t>(uiResto < kBloco ? uiResto : kBloco);
        const HRESULT hr = spVeiculos->LePonteiros(std::vector<LONG>(primeira, fim), aBloco);
        if (FAILED(hr)) {
          aBloco.clear();
          throw CQZErroVeiculos(hr);
        }
      }
      return aBloco[uiIndice - uiInicioBloco];
    }
  };

public:
  class iterator {
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = CQZVeiculoAchado;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = CQZVeiculoAchado;

    iterator() = default;

    CQZVeiculoAchado operator*() const { return {m_spEstado->aPosicoes[m_uiIndice], m_spEstado->Veiculo(m_uiIndice)}; }
    iterator &operator++() {
      ++m_uiIndice;
      return *this;
    }
    iterator operator++(int) {
      iterator antes = *this;
      ++*this;
      return antes;
    }
    friend bool operator==(const iterator &a, const iterator &b) { return a.m_uiIndice == b.m_uiIndice; }
    friend bool operator!=(const iterator &a, const iterator &b) { return !(a == b); }

  private:
    friend class CQZResultadoBusca;
    iterator(std::shared_ptr<Estado> spEstado, std::size_t uiIndice)
        : m_spEstado(std::move(spEstado)), m_uiIndice(uiIndice) {}

    std::shared_ptr<Estado> m_spEstado;
    std::size_t m_uiIndice = 0;
  };

  CQZResultadoBusca(std::shared_ptr<CQZVeiculosHR> spVeiculos, std::vector<LONG> aPosicoes)
      : m_spEstado(std::make_shared<Estado>()) {
    m_spEstado->spVeiculos = std::move(spVeiculos);
    m_spEstado->aPosicoes = std::move(aPosicoes);
  }

  iterator begin() const { return {m_spEstado, 0}; }
  iterator end() const { return {m_spEstado, size()}; }
  const std::vector<LONG> &Posicoes() const { return m_spEstado->aPosicoes; }
  std::size_t size() const { return Posicoes().size(); }
  bool empty() const { return Posicoes().empty(); }

private:
  std::shared_ptr<Estado> m_spEstado;
};

/// Exceptions: constructed is created and initialised. A copy is the same service object.
class CQZVeiculos {
public:
  CQZVeiculos(std::string_view sEmpresa, std::uint16_t iUsuario, LONG lNumeroSessao) {
    VerificaHR(m_spVeiculos->Cria());
    VerificaHR(m_spVeiculos->Inicializa(sEmpresa, iUsuario, lNumeroSessao));
  }

  /// Both give the position of the record.
  LONG Inclui(const tagREG_VEICULOPS &veiculo) { return Grava(0, veiculo); }
  LONG Grava(LONG lPos, const tagREG_VEICULOPS &veiculo) {
    VerificaHR(m_spVeiculos->Grava(lPos, veiculo));
    return lPos;
  }

  tagREG_VEICULOPS Le(LONG lPos) {
    tagREG_VEICULOPS veiculo;
    VerificaHR(m_spVeiculos->Le(lPos, veiculo));
    return veiculo;
  }

  /// The position, 0 when there is none; veiculo is then all zero.
  LONG Existe(std::string_view sCodigo, tagREG_VEICULOPS &veiculo) {
    LONG lPos = 0;
    VerificaHR(m_spVeiculos->Existe(sCodigo, lPos, veiculo));
    return lPos;
  }

  CQZResultadoBusca Busca(const tagREG_FILTRO_VEICULOSPS &filtro) { return {m_spVeiculos, BuscaPonteiros(filtro)}; }

  std::vector<LONG> BuscaPonteiros(const tagREG_FILTRO_VEICULOSPS &filtro) {
    std::vector<LONG> aPosicoes;
    VerificaHR(m_spVeiculos->BuscaPonteiros(filtro, aPosicoes));
    return aPosicoes;
  }

  std::vector<tagREG_VEICULOPS> LePonteiros(const std::vector<LONG> &aPosicoes) {
    std::vector<tagREG_VEICULOPS> aVeiculos;
    VerificaHR(m_spVeiculos->LePonteiros(aPosicoes, aVeiculos));
    return aVeiculos;
  }

  unsigned GetQuantidadeRegistros() {
    unsigned uiQtd = 0;
    VerificaHR(m_spVeiculos->GetQuantidadeRegistros(uiQtd));
    return uiQtd;
  }

private:
  std::shared_ptr<CQZVeiculosHR> m_spVeiculos = std::make_shared<CQZVeiculosHR>();
};

#endif
