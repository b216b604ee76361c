#include "vehicles/BaseVeiculos.h"

#include <gtest/gtest.h>

#include <thread>

#include "core/platform/MemoriaTarefa.h"
#include "core/platform/Plataforma.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/apoio/EmpresaComBase.h"
#include "tests/apoio/RelogioFalso.h"
#include "tests/apoio/ServicosTrocados.h"
#include "tests/vehicles/AmostraVeiculos.h"

namespace {

class Registro : public ::testing::Test {
protected:
  HRESULT Abre() { return m_base.Inicializa(m_empresa.Codigo(), 7, 42); }
  /// The vehicle file, once the register has let go of it.
  std::string Disco() {
    EXPECT_EQ(m_base.Finaliza(), codigos::kOk);
    return m_empresa.Le("DFVEIC.DAT");
  }
  LONG Acrescenta(const tagREG_VEICULOPS &v) {
    LONG lPos = 0;
    EXPECT_EQ(m_base.Grava(&lPos, v), codigos::kOk);
    return lPos;
  }
  HRESULT Le(LONG lPos, tagREG_VEICULOPS *pVeiculo) { return m_base.LePonteiros(1, &lPos, pVeiculo); }
  std::vector<LONG> Busca(const tagREG_FILTRO_VEICULOSPS &filtro) {
    tagRESULTADO_BUSCA_VEICULOS resultado;
    EXPECT_EQ(m_base.BuscaPonteiros(filtro, &resultado), codigos::kOk);
    EXPECT_EQ(resultado.pFiller, nullptr);
    EXPECT_EQ(resultado.Ponteiros == nullptr, resultado.iQtd == 0);
    const std::vector<LONG> posicoes(resultado.Ponteiros, resultado.Ponteiros + resultado.iQtd);
    plataforma::LiberaTarefa(resultado.Ponteiros);
    return posicoes;
  }

  apoio::EmpresaComBase m_empresa;
  apoio::RelogioFalso m_relogio;
  apoio::ServicosTrocados m_servicos{nullptr, nullptr, &m_relogio};
  CBaseVeiculos m_base;
};

TEST_F(Registro, EmpresaNova) {
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(m_empresa.Le("DFVEIVS.DAT"), std::string("\x01", 1) + std::string(15, '\0'));
  EXPECT_FALSE(m_empresa.Existe("DFVEIC.DAT"));
  std::uint32_t iNumero = 9;
  tagREG_VEICULOPS v = VeiculoCompleto();
  EXPECT_EQ(m_base.GetQuantidadeRegistros(&iNumero), codigos::kOk);
  EXPECT_EQ(iNumero, 0U);
  EXPECT_TRUE(Busca({}).empty());
  EXPECT_EQ(m_base.Existe("", &iNumero, &v), codigos::kOk);
  EXPECT_EQ(iNumero, 0U);
  EXPECT_EQ(Bytes(v), Bytes(tagREG_VEICULOPS{}));
  EXPECT_EQ(Le(0, &v), codigos::kPosicaoZero);
  EXPECT_EQ(Le(1, &v), codigos::kArquivoNaoAberto) << "no file yet";
  EXPECT_EQ(Acrescenta(VeiculoCompleto()), 1);
  EXPECT_EQ(Disco().size(), 256U);
}

TEST_F(Registro, PosicoesRuins) {
  ASSERT_EQ(Abre(), codigos::kOk);
  for (int i = 0; i < 5; ++i) {
    Acrescenta(VeiculoCompleto());
  }
  const std::string antes = Disco();
  ASSERT_EQ(Abre(), codigos::kOk);
  for (const LONG lRuim : {6, 7, -1, INT32_MIN, INT32_MAX}) {
    SCOPED_TRACE(lRuim);
    tagREG_VEICULOPS v = VeiculoCompleto();
    EXPECT_EQ(Le(lRuim, &v), codigos::kPosicaoAlemDoFim);
    EXPECT_EQ(Bytes(v), Bytes(tagREG_VEICULOPS{}));
    LONG lPos = lRuim;
    EXPECT_EQ(m_base.Grava(&lPos, Veiculo("NEW")), codigos::kGravacaoAlemDoFim);
    EXPECT_EQ(lPos, lRuim);
  }

  tagREG_VEICULOPS lidos[3] = {VeiculoCompleto(), VeiculoCompleto(), VeiculoCompleto()};
  const LONG posicoes[] = {5, 0, 1};
  EXPECT_EQ(m_base.LePonteiros(3, posicoes, lidos), codigos::kPosicaoZero);
  EXPECT_EQ(Bytes(lidos[0]), Bytes(VeiculoCompleto())) << "read before the failure";
  EXPECT_EQ(Bytes(lidos[1]) + Bytes(lidos[2]), std::string(336, '\0'));
  EXPECT_EQ(Disco(), antes);
}

TEST_F(Registro, GravaLeEBusca) {
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(Acrescenta(Veiculo("A", "PLA0001")), 1);
  EXPECT_EQ(Acrescenta(Veiculo("B", "A")), 2);
  EXPECT_EQ(Acrescenta(Veiculo("A", "PLA0003")), 3) << "codes need not be unique";
  LONG lPos = 2;
  EXPECT_EQ(m_base.Grava(&lPos, Veiculo("C", "A")), codigos::kOk);
  EXPECT_EQ(lPos, 2);
  EXPECT_EQ(Busca({}), (std::vector<LONG>{1, 2, 3}));
  tagREG_FILTRO_VEICULOSPS filtro{};
  Preenche(filtro.szCodigo, "A");
  EXPECT_EQ(Busca(filtro), (std::vector<LONG>{1, 3}));

  CArray<LONG> aPonteiros;
  CArray<RegVeiculo> aRegistros;
  EXPECT_EQ(m_base.InternalGetRegs(filtro, &aPonteiros, &aRegistros), codigos::kOk);
  ASSERT_EQ(aPonteiros.GetSize(), 2U);
  ASSERT_EQ(aRegistros.GetSize(), 2U);
  EXPECT_EQ(std::string(aRegistros[1].szPlaca), "PLA0003");

  tagREG_VEICULOPS v;
  EXPECT_EQ(Le(2, &v), codigos::kOk);
  EXPECT_EQ(Bytes(v), Bytes(Veiculo("C", "A")));
  EXPECT_EQ(Disco().size(), 3 * 256U);
}

TEST_F(Registro, Existe) {
  ASSERT_EQ(Abre(), codigos::kOk);
  Acrescenta(Veiculo("X1", "V002"));
  Acrescenta(Veiculo("V002", "PLA0002"));
  Acrescenta(Veiculo("1234567890123", "123456789"));
  Acrescenta(Veiculo("V001", "AAA1A11"));
  const std::pair<const char *, std::uint32_t> casos[] = {
      {"V002", 2},  // a code goes before a plate
      {"PLA0002", 2},    {"v002", 0},     {"NADA", 0},          {"", 1},
      {"*2", 2},         {"PLA*", 2},     {"1234567890123", 3}, {"12345678901234567890", 3},
      {"1234567890", 3}, {"12345678", 0}, {"V002 ", 0},         {"V00?", 2},
      {"*001", 4},       {"aaa*", 4}};
  for (const auto &[texto, esperado] : casos) {
    SCOPED_TRACE(texto);
    std::uint32_t iPos = 77;
    tagREG_VEICULOPS v = VeiculoCompleto();
    EXPECT_EQ(m_base.Existe(texto, &iPos, &v), codigos::kOk);
    EXPECT_EQ(iPos, esperado);
    tagREG_VEICULOPS lido{};
    if (esperado != 0) {
      EXPECT_EQ(Le(static_cast<LONG>(esperado), &lido), codigos::kOk);
    }
    EXPECT_EQ(Bytes(v), Bytes(lido));
  }
}

TEST_F(Registro, CadeiasDoRastro) {
  ASSERT_EQ(Abre(), codigos::kOk);
  Acrescenta(VeiculoCompleto());
  apoio::ColetorRastro rastro;
  tagREG_VEICULOPS v;
  LONG lPos = 7;
  EXPECT_EQ(m_base.Grava(&lPos, v), codigos::kGravacaoAlemDoFim);
  EXPECT_EQ(rastro.Toma(),
            (std::vector<std::string>{
                "CQZFile<struct RegVeiculo>::GravaColecao|QZFile.h|((HRESULT)0x810809DBL)",
                "CQZFile<struct RegVeiculo>::Grava|QZFile.h|GravaColecao(uiPosicao, aRegistros)",
                "CBaseVeiculos::Grava|BaseVeiculos.cpp|m_pDataBase->m_Veiculos.Grava(uiPosicao, RegVei)"}));
  EXPECT_EQ(m_base.Inicializa("", 7, 42), codigos::kSemEmpresa);
  EXPECT_EQ(rastro.Toma(),
            (std::vector<std::string>{"CQZDataBaseFacade<class CQZDataBase_Veiculos,class CQZBaseParaRotinas>::"
                                      "QZDataBaseInicializa|QZDataBaseFacade.h|((HRESULT)0x810809CFL)",
                                      "CBaseVeiculos::OnInicializa|BaseVeiculos.cpp|QZDataBaseInicializa()"}));
}

TEST_F(Registro, VariosRegistrosDaMesmaEmpresaAoMesmoTempo) {
  constexpr int kThreads = 6;
  constexpr int kPorThread = 100;
  std::atomic<int> falhas{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      CBaseVeiculos base;
      falhas += Falhou(base.Inicializa(m_empresa.Codigo(), 1, t));
      for (int i = 0; i < kPorThread; ++i) {
        const std::string codigo = std::to_string(t) + "-" + std::to_string(i);
        LONG lPos = 0;
        std::uint32_t iAchado = 0;
        tagREG_VEICULOPS v;
        falhas += Falhou(base.Grava(&lPos, Veiculo(codigo)));
        falhas += Falhou(base.Existe(codigo.c_str(), &iAchado, &v)) || static_cast<LONG>(iAchado) != lPos;
      }
    });
  }
  for (std::thread &thread : threads) {
    thread.join();
  }
  EXPECT_EQ(falhas, 0);
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(Busca({}).size(), std::size_t{kThreads * kPorThread});
}

}  // namespace
