#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <functional>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "server/ClasseVeiculos.h"
#include "server/ContagemModulo.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/com/ApoioServico.h"

// The service object within the test's own process: what no client of another process can do to it, such as passing a
// pointer that leads nowhere, or aggregating it.

namespace {

using namespace apoiocom;

constexpr std::uint32_t kSemEmpresa = 0x810809E3;
constexpr std::uint32_t kSemRegistro = 0x8004EAC5;

class Servico : public testing::Test {
protected:
  ~Servico() override { EXPECT_EQ(CContagemModulo::DoProcesso().Quantidade(), 0); }

  apoio::ColetorRastro m_rastro;
  void *const m_pRuim = reinterpret_cast<void *>(std::uintptr_t{16});  ///< not null, and leads nowhere
};

template <class T>
bool TudoZero(const T &registro) {
  static const T s_zero{};
  return std::memcmp(&registro, &s_zero, sizeof(T)) == 0;
}

/// The register is gone: each operation says so, Inicializa too, and hands back zeros in outputs full of rubbish.
void EsperaFalhaComZeros(IQZDF_Veiculos &veiculos) {
  LONG lPos = 55;
  unsigned uiQtd = 55;
  LONG posicoes[] = {1, 2};
  tagRESULTADO_BUSCA_VEICULOS resultado{55, {}, &lPos, nullptr};
  tagREG_VEICULOPS lido = Veiculo("V");
  tagREG_VEICULOPS achado = lido;
  tagREG_VEICULOPS lidos[] = {lido, lido};
  EXPECT_EQ(Bits(veiculos.Le(1, &lido)), kSemRegistro);
  EXPECT_EQ(Bits(veiculos.Existe(Texto("V").Get(), &lPos, &achado)), kSemRegistro);
  EXPECT_EQ(Bits(veiculos.BuscaPonteiros({}, &resultado)), kSemRegistro);
  EXPECT_EQ(Bits(veiculos.LePonteiros(2, posicoes, lidos)), kSemRegistro);
  EXPECT_EQ(Bits(veiculos.GetQuantidadeRegistros(&uiQtd)), kSemRegistro);
  EXPECT_TRUE(TudoZero(lido) && TudoZero(achado) && TudoZero(lidos) && TudoZero(resultado));
  EXPECT_EQ(static_cast<unsigned>(lPos) + uiQtd, 0U);
  EXPECT_EQ(Bits(veiculos.Grava(&lPos, achado)), kSemRegistro);
  EXPECT_EQ(Bits(Inicializa(veiculos, "")), kSemRegistro);
}

}  // namespace

TEST_F(Servico, PonteiroNuloERecusadoEORuimTiraORegistroDoObjeto) {
  static LONG s_lPos;
  static tagREG_VEICULOPS s_veiculo;
  const struct {
    const char *lpFuncao;
    std::uint32_t hrNulo;
    HRESULT (*chama)(IQZDF_Veiculos &, void *pPonteiro);
  } linhas[] = {
      {"Inicializa", 0x810809CF, [](auto &v, void *p) { return v.Inicializa(static_cast<LPWSTR>(p), 1, 1); }},
      {"Grava", 0x80004003, [](auto &v, void *p) { return v.Grava(static_cast<LONG *>(p), Veiculo("V")); }},
      {"Le", 0x80004003, [](auto &v, void *p) { return v.Le(1, static_cast<tagREG_VEICULOPS *>(p)); }},
      {"Existe", kSemEmpresa, [](auto &v, void *p) { return v.Existe(static_cast<LPWSTR>(p), &s_lPos, &s_veiculo); }},
      {"Existe", 0x80004003,
       [](auto &v, void *p) { return v.Existe(Texto("V").Get(), static_cast<LONG *>(p), &s_veiculo); }},
      {"Existe", 0x80004003,
       [](auto &v, void *p) { return v.Existe(Texto("V").Get(), &s_lPos, static_cast<tagREG_VEICULOPS *>(p)); }},
      {"BuscaPonteiros", 0x80004003,
       [](auto &v, void *p) { return v.BuscaPonteiros({}, static_cast<tagRESULTADO_BUSCA_VEICULOS *>(p)); }},
      {"LePonteiros", 0x80004003,
       [](auto &v, void *p) { return v.LePonteiros(1, static_cast<LONG *>(p), &s_veiculo); }},
      {"LePonteiros", 0x80004003,
       [](auto &v, void *p) { return v.LePonteiros(1, &s_lPos, static_cast<tagREG_VEICULOPS *>(p)); }},
      {"GetQuantidadeRegistros", 0x80004003,
       [](auto &v, void *p) { return v.GetQuantidadeRegistros(static_cast<unsigned *>(p)); }},
  };
  const Veiculos spSemEmpresa = NovoServico();
  for (const auto &linha : linhas) {
    SCOPED_TRACE(linha.lpFuncao);
    EXPECT_EQ(Bits(linha.chama(*spSemEmpresa, nullptr)), linha.hrNulo);
    const Empresa empresa;
    const Veiculos spVeiculos = ServicoPara(empresa);
    ASSERT_TRUE(spVeiculos);
    LONG lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V001")), S_OK);
    m_rastro.Toma();
    EXPECT_EQ(Bits(linha.chama(*spVeiculos, m_pRuim)), kSemRegistro);
    EXPECT_EQ(m_rastro.Toma().back(),
              std::string("CQZDF_Veiculos::") + linha.lpFuncao + "|QZDF_Veiculos.cpp|pfInSEHFuncao()");
    EsperaFalhaComZeros(*spVeiculos);
    EXPECT_EQ(Registros(empresa).size(), 256U) << "the file is closed";
  }
}

TEST_F(Servico, FalhaEmUmaChamadaNaoDerrubaAsOutras) {
  const Empresa empresa;
  for (int i = 0; i < 20; ++i) {
    const Veiculos spVeiculos = ServicoPara(empresa);
    ASSERT_TRUE(spVeiculos);
    LONG lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V")), S_OK);
    std::atomic<int> iCertas{0};
    const auto leAteFalhar = [&] {
      tagREG_VEICULOPS veiculo;
      HRESULT hr = S_OK;
      for (; iCertas < 1000000 && (hr = spVeiculos->Le(1, &veiculo)) == S_OK; ++iCertas) {
      }
      return Bits(hr);
    };
    std::vector<std::future<std::uint32_t>> outras(3);
    for (auto &outra : outras) {
      outra = std::async(std::launch::async, leAteFalhar);
    }
    while (iCertas < 50) {
      std::this_thread::yield();
    }
    EXPECT_EQ(Bits(spVeiculos->Le(1, static_cast<tagREG_VEICULOPS *>(m_pRuim))), kSemRegistro);
    for (auto &outra : outras) {
      EXPECT_EQ(outra.get(), kSemRegistro);
    }
  }
}

// It would change the company under the call.
TEST_F(Servico, InicializaEsperaAChamadaEmAndamento) {
  static std::function<void()> s_aoFalhar;
  const Empresa a;
  const Empresa b;
  const Veiculos spVeiculos = ServicoPara(a);
  ASSERT_TRUE(spVeiculos);
  std::future<HRESULT> outra;
  s_aoFalhar = [&] {
    outra = std::async(std::launch::async, [&] { return Inicializa(*spVeiculos, b.Codigo()); });
    EXPECT_EQ(outra.wait_for(std::chrono::milliseconds(300)), std::future_status::timeout);
  };
  // When the call tells of its failure, it holds nothing but what keeps the company.
  const SumidouroRastro anterior = DefineSumidouroRastro([](const FalhaRastreada &falha) {
    if (falha.funcao.Texto() == "CQZDF_Veiculos::Le") {
      s_aoFalhar();
    }
  });
  tagREG_VEICULOPS veiculo;
  EXPECT_EQ(Bits(spVeiculos->Le(1, &veiculo)), 0x810809E3U);
  DefineSumidouroRastro(anterior);
  ASSERT_TRUE(outra.valid());
  EXPECT_EQ(outra.get(), S_OK);
}

TEST_F(Servico, ObjetoAgregadoPertenceAoExterno) {
  const Veiculos spExterno = NovoServico();
  CClasseVeiculos classe;
  void *pObjeto = nullptr;
  EXPECT_EQ(classe.CreateInstance(spExterno.get(), IID_IQZDF_Veiculos, &pObjeto), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(pObjeto, nullptr);
  ASSERT_EQ(classe.CreateInstance(spExterno.get(), IID_IUnknown, &pObjeto), S_OK);
  const Ponteiro<IUnknown> spInterno(static_cast<IUnknown *>(pObjeto));
  ASSERT_EQ(spInterno->QueryInterface(IID_IQZDF_Veiculos, &pObjeto), S_OK);
  EXPECT_EQ(static_cast<IUnknown *>(pObjeto)->Release(), 1U) << "the outer object's own reference";
}

TEST_F(Servico, SoObjetosETravasSeguramOProcesso) {
  CContagemModulo &contagem = CContagemModulo::DoProcesso();
  CClasseVeiculos classe;
  classe.AddRef();
  EXPECT_EQ(contagem.Quantidade(), 0);
  EXPECT_EQ(classe.LockServer(TRUE), S_OK);
  EXPECT_EQ(contagem.Quantidade(), 1);
  contagem.LimpaAtividade();
  EXPECT_TRUE(contagem.EmUso());
  EXPECT_EQ(classe.LockServer(FALSE), S_OK);
  // It counts as use until the monitor has noticed: what came and went meanwhile keeps the process.
  EXPECT_TRUE(contagem.EmUso());
  EXPECT_EQ(WaitForSingleObject(contagem.EventoZerou(), 0), WAIT_OBJECT_0);
  contagem.LimpaAtividade();
  EXPECT_FALSE(contagem.EmUso());
  EXPECT_EQ(classe.LockServer(FALSE), E_UNEXPECTED);
  EXPECT_FALSE(contagem.EmUso());
}
