#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "core/env/QZPath.h"
#include "core/log/ConfiguracaoLog.h"
#include "server/ClasseVeiculos.h"
#include "server/ContagemModulo.h"
#include "tests/apoio/ArquivosDecorado.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/apoio/ServicosFalsos.h"
#include "tests/apoio/ServicosTrocados.h"
#include "tests/com/ApoioServico.h"

// The service object within the test's own process: what no client of another process can do to it, such as passing a
// pointer that leads nowhere, or aggregating it.

namespace {

using namespace apoiocom;

/// Pointers that are not null and lead nowhere.
template <class T>
T *PonteiroRuim() {
  return reinterpret_cast<T *>(std::uintptr_t{16});
}

class Servico : public testing::Test {
protected:
  ~Servico() override { EXPECT_EQ(CContagemModulo::DoProcesso().Quantidade(), 0); }

  apoio::ColetorRastro m_rastro;
};

/// An object that aggregates the service object.
class Externo final : public IUnknown {
public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void **ppv) override {
    if (riid == IID_IUnknown) {
      *ppv = this;
      AddRef();
      return S_OK;
    }
    return m_pInterno->QueryInterface(riid, ppv);
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++m_ulReferencias; }
  ULONG STDMETHODCALLTYPE Release() override { return --m_ulReferencias; }

  IUnknown *m_pInterno = nullptr;
  ULONG m_ulReferencias = 1;
};

template <class T>
bool TudoZero(const T &registro) {
  static const T s_zero{};
  return std::memcmp(&registro, &s_zero, sizeof(T)) == 0;
}

/// The register is gone: each operation says so, Inicializa too, and hands back zeros in outputs full of rubbish.
void EsperaFalhaComZeros(IQZDF_Veiculos &veiculos) {
  constexpr std::uint32_t kSemRegistro = 0x8004EAC5;
  LONG lPos = 55;
  unsigned uiQtd = 55;
  LONG posicoes[] = {1, 2};
  tagRESULTADO_BUSCA_VEICULOS resultado{55, {}, &lPos, nullptr};
  tagREG_VEICULOPS lido = Veiculo("V");
  tagREG_VEICULOPS achado = lido;
  tagREG_VEICULOPS lidos[] = {lido, lido};
  EXPECT_EQ(Bits(veiculos.Le(1, &lido)), kSemRegistro);
  EXPECT_EQ(Bits(veiculos.Existe(Texto("V").Ponteiro(), &lPos, &achado)), kSemRegistro);
  EXPECT_EQ(Bits(veiculos.BuscaPonteiros({}, &resultado)), kSemRegistro);
  EXPECT_EQ(Bits(veiculos.LePonteiros(2, posicoes, lidos)), kSemRegistro);
  EXPECT_EQ(Bits(veiculos.GetQuantidadeRegistros(&uiQtd)), kSemRegistro);
  EXPECT_TRUE(TudoZero(lido) && TudoZero(achado) && TudoZero(lidos) && TudoZero(resultado));
  EXPECT_EQ(static_cast<unsigned>(lPos) + uiQtd, 0U);
  EXPECT_EQ(Bits(veiculos.Grava(&lPos, achado)), kSemRegistro);
  EXPECT_EQ(Bits(Inicializa(veiculos, "")), kSemRegistro);
}

}  // namespace

TEST_F(Servico, PonteirosNulosSaoRecusadosEOObjetoFica) {
  const Empresa empresa;
  const Veiculos spVeiculos = ServicoPara(empresa);
  ASSERT_TRUE(spVeiculos);
  LONG lPos = 0;
  tagREG_VEICULOPS veiculo;
  EXPECT_EQ(spVeiculos->Grava(nullptr, Veiculo("V")), E_POINTER);
  EXPECT_EQ(spVeiculos->Le(1, nullptr), E_POINTER);
  EXPECT_EQ(spVeiculos->Existe(Texto("V").Ponteiro(), nullptr, &veiculo), E_POINTER);
  EXPECT_EQ(spVeiculos->Existe(Texto("V").Ponteiro(), &lPos, nullptr), E_POINTER);
  EXPECT_EQ(spVeiculos->BuscaPonteiros(tagREG_FILTRO_VEICULOSPS{}, nullptr), E_POINTER);
  EXPECT_EQ(spVeiculos->LePonteiros(1, nullptr, &veiculo), E_POINTER);
  EXPECT_EQ(spVeiculos->LePonteiros(1, &lPos, nullptr), E_POINTER);
  EXPECT_EQ(spVeiculos->GetQuantidadeRegistros(nullptr), E_POINTER);
  EXPECT_EQ(spVeiculos->LePonteiros(0, nullptr, nullptr), S_OK);
  EXPECT_EQ(spVeiculos->Existe(nullptr, &lPos, &veiculo), S_OK);
  EXPECT_EQ(spVeiculos->Grava(&lPos, Veiculo("V")), S_OK);
  EXPECT_EQ(Bits(NovoServico()->Inicializa(nullptr, 1, 1)), 0x810809CFU);
}

TEST_F(Servico, FalhaDeMaquinaTiraORegistroDoObjeto) {
  static LONG s_lPos;
  static tagREG_VEICULOPS s_veiculo;
  const struct {
    const char *lpFuncao;
    HRESULT (*chama)(IQZDF_Veiculos &);
  } linhas[] = {
      {"Inicializa", [](IQZDF_Veiculos &v) { return v.Inicializa(PonteiroRuim<wchar_t>(), 1, 1); }},
      {"Grava", [](IQZDF_Veiculos &v) { return v.Grava(PonteiroRuim<LONG>(), Veiculo("V")); }},
      {"Le", [](IQZDF_Veiculos &v) { return v.Le(1, PonteiroRuim<tagREG_VEICULOPS>()); }},
      {"Existe", [](IQZDF_Veiculos &v) { return v.Existe(PonteiroRuim<wchar_t>(), &s_lPos, &s_veiculo); }},
      {"BuscaPonteiros",
       [](IQZDF_Veiculos &v) { return v.BuscaPonteiros({}, PonteiroRuim<tagRESULTADO_BUSCA_VEICULOS>()); }},
      {"LePonteiros", [](IQZDF_Veiculos &v) { return v.LePonteiros(1, PonteiroRuim<LONG>(), &s_veiculo); }},
      {"GetQuantidadeRegistros", [](IQZDF_Veiculos &v) { return v.GetQuantidadeRegistros(PonteiroRuim<unsigned>()); }},
  };
  for (const auto &linha : linhas) {
    SCOPED_TRACE(linha.lpFuncao);
    const Empresa empresa;
    const Veiculos spVeiculos = ServicoPara(empresa);
    ASSERT_TRUE(spVeiculos);
    LONG lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo("V001")), S_OK);
    m_rastro.Toma();
    EXPECT_EQ(Bits(linha.chama(*spVeiculos)), 0x8004EAC5U);
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
    std::atomic<int> iEstranhas{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
      threads.emplace_back([&] {
        tagREG_VEICULOPS veiculo;
        for (;;) {
          const std::uint32_t hr = Bits(spVeiculos->Le(1, &veiculo));
          if (hr != 0) {
            iEstranhas += hr == 0x8004EAC5U ? 0 : 1;
            return;
          }
          ++iCertas;
        }
      });
    }
    while (iCertas < 50) {
      std::this_thread::yield();
    }
    EXPECT_EQ(Bits(spVeiculos->Le(1, PonteiroRuim<tagREG_VEICULOPS>())), 0x8004EAC5U);
    for (std::thread &thread : threads) {
      thread.join();
    }
    EXPECT_EQ(iEstranhas, 0);
  }
}

// An Inicializa that comes while a call leaves its entry record waits for the call, which works on what the record
// says.
TEST_F(Servico, RegistroDeEntradaDizAEmpresaDaChamada) {
  const apoio::PastaTemporaria pasta;
  apoio::RegistroFalso registro;
  registro.m_textos = {{{CString(kChaveSuite) + "Miran Empresarial", "Path"}, pasta.Caminho()},
                       {{CString(kChaveSuite) + "Empresas\\A", "DF"}, pasta.CriaSubpasta("A")},
                       {{CString(kChaveSuite) + "Empresas\\B", "DF"}, pasta.CriaSubpasta("B")}};
  apoio::ArquivosComFalha arquivos(plataforma::Arquivos());
  apoio::RelogioFalso relogio;
  const apoio::ServicosTrocados servicos(&arquivos, &registro, &relogio);
  apoio::EscreveArquivo(pasta / "log.ini", "[Log]\r\nEntrada=1\r\nPerformance=1\r\nTimeoutConfig=0");
  relogio.m_ticks = static_cast<std::uint32_t>(CarregaConfiguracaoLog()) - 1;

  const Veiculos spVeiculos = NovoServico();
  for (const char *lpEmpresa : {"B", "A"}) {
    ASSERT_EQ(Inicializa(*spVeiculos, lpEmpresa), S_OK);
    LONG lPos = 0;
    ASSERT_EQ(spVeiculos->Grava(&lPos, Veiculo(lpEmpresa)), S_OK);
  }
  std::future<HRESULT> outra;
  // When the log writer looks for the file of entry records.
  arquivos.Arma({.operacoes = apoio::kOpExiste, .trecho = "QZProfiler.dat", .falha = {}, .aoFalhar = [&] {
                   outra = std::async(std::launch::async, [&] { return Inicializa(*spVeiculos, "B"); });
                   EXPECT_EQ(outra.wait_for(std::chrono::milliseconds(300)), std::future_status::timeout);
                 }});
  tagREG_VEICULOPS veiculo;
  EXPECT_EQ(spVeiculos->Le(1, &veiculo), S_OK);
  EXPECT_EQ(CodigoDe(veiculo), "A");
  ASSERT_TRUE(outra.valid());
  EXPECT_EQ(outra.get(), S_OK);
  const std::string sLog = apoio::LeArquivo(pasta / "QZProfiler.dat");
  EXPECT_NE(sLog.find("CQZDF_Veiculos::Le\tEA\t"), std::string::npos) << sLog;
  EXPECT_EQ(spVeiculos->Le(1, &veiculo), S_OK);
  EXPECT_EQ(CodigoDe(veiculo), "B");
}

TEST_F(Servico, ObjetoAgregadoPertenceAoExterno) {
  Externo externo;
  CClasseVeiculos classe;
  void *pObjeto = nullptr;
  EXPECT_EQ(classe.CreateInstance(&externo, IID_IQZDF_Veiculos, &pObjeto), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(pObjeto, nullptr);
  ASSERT_EQ(classe.CreateInstance(&externo, IID_IUnknown, &pObjeto), S_OK);
  externo.m_pInterno = static_cast<IUnknown *>(pObjeto);
  EXPECT_EQ(externo.m_ulReferencias, 1U);

  ASSERT_EQ(externo.QueryInterface(IID_IQZDF_Veiculos, &pObjeto), S_OK);
  EXPECT_EQ(externo.m_ulReferencias, 2U);
  {
    const Veiculos spVeiculos(static_cast<IQZDF_Veiculos *>(pObjeto));
    ASSERT_EQ(spVeiculos->QueryInterface(IID_IUnknown, &pObjeto), S_OK);
    EXPECT_EQ(pObjeto, static_cast<IUnknown *>(&externo));
    static_cast<IUnknown *>(pObjeto)->Release();
    EXPECT_EQ(spVeiculos->QueryInterface(IID_IClassFactory, &pObjeto), E_NOINTERFACE);
    const Empresa empresa;
    EXPECT_EQ(Inicializa(*spVeiculos, empresa.Codigo()), S_OK);
  }
  EXPECT_EQ(externo.m_ulReferencias, 1U);
  EXPECT_EQ(CContagemModulo::DoProcesso().Quantidade(), 1);
  EXPECT_EQ(externo.m_pInterno->Release(), 0U);
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
  void *pObjeto = nullptr;
  EXPECT_EQ(classe.CreateInstance(nullptr, IID_IClassFactory, &pObjeto), E_NOINTERFACE);
}
