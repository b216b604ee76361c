#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "client/Argumentos.h"
#include "client/Comandos.h"
#include "client/QZVeiculosCliente.h"

namespace {

// A register in memory in the place of the service, with its rules on positions and outputs. It is offered as the class
// object of this process, so a creation as a local server gets it.
class CServicoSimulado : public IQZDF_Veiculos {
public:
  std::vector<tagREG_VEICULOPS> m_aVeiculos;
  std::string m_sEmpresa;
  std::string m_sCodigo;
  HRESULT m_hr = S_OK;  // what every operation ends with, after setting its outputs
  int m_iReferencias = 0;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppObjeto) override {
    const bool bMinha = IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IQZDF_Veiculos);
    *ppObjeto = bMinha ? this : nullptr;
    m_iReferencias += bMinha ? 1 : 0;
    return bMinha ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++m_iReferencias); }
  ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--m_iReferencias); }

  HRESULT STDMETHODCALLTYPE Inicializa(LPWSTR lpEmpresa, unsigned short, LONG) override {
    m_sEmpresa = reinterpret_cast<const char *>(lpEmpresa);
    return m_hr;
  }
  HRESULT STDMETHODCALLTYPE Grava(LONG *pPos, tagREG_VEICULOPS veiculo) override {
    if (*pPos == 0) {
      m_aVeiculos.push_back(veiculo);
      *pPos = static_cast<LONG>(m_aVeiculos.size());
    } else if (static_cast<std::size_t>(*pPos) <= m_aVeiculos.size()) {
      m_aVeiculos[static_cast<std::size_t>(*pPos - 1)] = veiculo;
    } else {
      return static_cast<HRESULT>(0x810809DB);
    }
    return m_hr;
  }
  HRESULT STDMETHODCALLTYPE Le(LONG lPos, tagREG_VEICULOPS *pVeiculo) override {
    return LePonteiros(1, &lPos, pVeiculo);
  }
  HRESULT STDMETHODCALLTYPE Existe(LPWSTR lpCodigo, LONG *pPos, tagREG_VEICULOPS *) override {
    m_sCodigo = reinterpret_cast<const char *>(lpCodigo);
    *pPos = 2;
    return m_hr;
  }
  HRESULT STDMETHODCALLTYPE BuscaPonteiros(tagREG_FILTRO_VEICULOSPS, tagRESULTADO_BUSCA_VEICULOS *pResultado) override {
    pResultado->iQtd = static_cast<std::uint32_t>(m_aVeiculos.size());
    pResultado->Ponteiros = static_cast<LONG *>(CoTaskMemAlloc(m_aVeiculos.size() * sizeof(LONG)));
    for (std::uint32_t i = 0; i < pResultado->iQtd; ++i) {
      pResultado->Ponteiros[i] = static_cast<LONG>(i) + 1;
    }
    return m_hr;
  }
  HRESULT STDMETHODCALLTYPE LePonteiros(unsigned iQtd, LONG *pPosicoes, tagREG_VEICULOPS *pVeiculos) override {
    for (unsigned i = 0; i < iQtd; ++i) {
      if (static_cast<std::size_t>(pPosicoes[i]) > m_aVeiculos.size()) {
        return static_cast<HRESULT>(0x810809DA);
      }
      pVeiculos[i] = m_aVeiculos[static_cast<std::size_t>(pPosicoes[i] - 1)];
    }
    return m_hr;
  }
  HRESULT STDMETHODCALLTYPE GetQuantidadeRegistros(unsigned *pQtd) override {
    *pQtd = static_cast<unsigned>(m_aVeiculos.size());
    return m_hr;
  }
};

class CFabrica : public IClassFactory {
public:
  explicit CFabrica(CServicoSimulado &servico) : m_servico(servico) {}
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppObjeto) override {
    const bool bMinha = IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory);
    *ppObjeto = bMinha ? this : nullptr;
    return bMinha ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown *, REFIID riid, void **ppObjeto) override {
    return m_servico.QueryInterface(riid, ppObjeto);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

private:
  CServicoSimulado &m_servico;
};

class Cliente : public testing::Test {
protected:
  void SetUp() override {
    ASSERT_EQ(CoRegisterClassObject(CLSID_CQZDF_Veiculos, &m_fabrica, CLSCTX_LOCAL_SERVER | CLSCTX_INPROC_SERVER,
                                    REGCLS_MULTIPLEUSE, &m_uiRegistro),
              S_OK);
  }
  void TearDown() override {
    CoRevokeClassObject(m_uiRegistro);
    EXPECT_EQ(m_servico.m_iReferencias, 0);
  }

  eSaida Executa(std::vector<std::string> aTextos) {
    aTextos.insert(aTextos.begin(), {"--empresa", "00012"});
    return ExecutaComando(CArgumentos(aTextos, ComandosConhecidos()));
  }

  CQZApartamento m_apartamento;
  CServicoSimulado m_servico;
  CFabrica m_fabrica{m_servico};
  DWORD m_uiRegistro = 0;
};

TEST_F(Cliente, OverwriteChangesOnlyTheFieldsGiven) {
  EXPECT_EQ(Executa({"grava", "--codigo", "X1", "--ano", "2001", "--tara", "5000"}), kSucesso);
  EXPECT_EQ(m_servico.m_sEmpresa, "00012");
  EXPECT_EQ(Executa({"grava", "--posicao", "1", "--ano", "2002"}), kSucesso);
  ASSERT_EQ(m_servico.m_aVeiculos.size(), 1U);
  EXPECT_EQ(LeCampo(m_servico.m_aVeiculos[0].szCodigo), "X1");
  EXPECT_EQ(m_servico.m_aVeiculos[0].vTara, 50000000);
  EXPECT_EQ(m_servico.m_aVeiculos[0].iAno, 2002U);
  EXPECT_THROW(Executa({"grava", "--posicao", "2", "--ano", "2003"}), CQZErroVeiculos);
  EXPECT_THROW(Executa({"grava", "--posicao", "0", "--ano", "2003"}), CErroUso);
  EXPECT_THROW(Executa({"grava"}), CErroUso);
  EXPECT_EQ(m_servico.m_aVeiculos.size(), 1U);
}

TEST_F(Cliente, ReadsAndSearchesMoreThanOneBlock) {
  m_servico.m_aVeiculos.resize(1201);
  testing::internal::CaptureStdout();
  EXPECT_EQ(Executa({"busca", "--csv"}), kSucesso);
  const std::string sSaida = testing::internal::GetCapturedStdout();
  EXPECT_EQ(std::count(sSaida.begin(), sSaida.end(), '\n'), 1202);
  EXPECT_NE(sSaida.find("\n1201;"), std::string::npos);

  testing::internal::CaptureStdout();
  EXPECT_EQ(Executa({"busca", "--so-posicoes", "--limite", "3"}), kSucesso);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "1\n2\n3\n");
}

TEST_F(Cliente, SearchResultIsARangeThatReadsAsItIsWalkedThrough) {
  m_servico.m_aVeiculos.resize(1100);
  auto achados = CQZVeiculos("1", 1, 1).Busca({});  // which keeps the service object that found it
  EXPECT_EQ(achados.size(), 1100U);
  LONG lEsperada = 0;
  for (const CQZVeiculoAchado &achado : achados) {
    ++lEsperada;
    ASSERT_EQ(achado.lPosicao, lEsperada);
    ASSERT_EQ(achado.veiculo.iAno, lEsperada > 500 ? 2001U : 0U) << lEsperada;
    if (lEsperada == 1) {
      // Not yet read: the second block and what follows.
      for (std::size_t i = 500; i < 1100; ++i) {
        m_servico.m_aVeiculos[i].iAno = 2001;
      }
    }
  }
  EXPECT_EQ(lEsperada, 1100);

  // Two walks side by side, and one that jumps.
  auto segundo = achados.begin();
  for (auto primeiro = achados.begin(); primeiro != achados.end(); std::advance(primeiro, 275)) {
    EXPECT_EQ((*primeiro).veiculo.iAno, (*primeiro).lPosicao > 500 ? 2001U : 0U);
    EXPECT_EQ((*segundo).lPosicao, 1);
    EXPECT_EQ((*segundo).veiculo.iAno, 0U);
  }

  // A read that fails raises, also when it is tried again.
  m_servico.m_aVeiculos.resize(1050);
  const auto ultimo = std::next(achados.begin(), 1099);
  EXPECT_THROW(*ultimo, CQZErroVeiculos);
  EXPECT_THROW(*ultimo, CQZErroVeiculos);
  EXPECT_EQ((*achados.begin()).lPosicao, 1);

  m_servico.m_aVeiculos.clear();
  CQZVeiculos veiculos("1", 1, 1);
  EXPECT_TRUE(veiculos.Busca({}).empty());
  const auto nenhum = veiculos.Busca({});
  EXPECT_TRUE(nenhum.begin() == nenhum.end());
}

TEST_F(Cliente, ResultCodesAndExceptionsCarryTheCode) {
  CQZVeiculosHR veiculos;
  unsigned uiQtd = 9;
  EXPECT_EQ(veiculos.GetQuantidadeRegistros(uiQtd), E_POINTER);
  ASSERT_EQ(veiculos.Cria(), S_OK);
  EXPECT_EQ(veiculos.Inicializa(std::string_view("A\0B", 3), 1, 1), E_INVALIDARG);

  tagREG_VEICULOPS veiculo;
  std::memset(&veiculo, 0x55, sizeof veiculo);
  EXPECT_EQ(veiculos.Le(1, veiculo), static_cast<HRESULT>(0x810809DA));
  const tagREG_VEICULOPS zero{};
  EXPECT_EQ(std::memcmp(&veiculo, &zero, sizeof veiculo), 0);

  LONG lPos = 0;
  EXPECT_EQ(veiculos.Existe("ABCDEFGHIJKLM", lPos, veiculo), S_OK);
  EXPECT_EQ(m_servico.m_sCodigo, "ABCDEFGHIJKLM");
  EXPECT_EQ(veiculos.Existe("ABCDEFGHIJKLMN", lPos, veiculo), E_INVALIDARG);
  EXPECT_EQ(lPos, 0);

  m_servico.m_aVeiculos.resize(3);
  m_servico.m_hr = E_FAIL;
  std::vector<LONG> aPosicoes{7};
  EXPECT_EQ(veiculos.BuscaPonteiros({}, aPosicoes), E_FAIL);
  EXPECT_TRUE(aPosicoes.empty());
  try {
    CQZVeiculos excecoes("1", 1, 1);
    ADD_FAILURE();
  } catch (const CQZErroVeiculos &erro) {
    EXPECT_EQ(erro.GetHR(), E_FAIL);
  }
}

}  // namespace
