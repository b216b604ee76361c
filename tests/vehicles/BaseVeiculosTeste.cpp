#include "vehicles/BaseVeiculos.h"

#include <thread>

#include "core/platform/MemoriaTarefa.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/apoio/EmpresaComBase.h"
#include "tests/apoio/SerieFalhas.h"
#include "tests/vehicles/AmostraVeiculos.h"

namespace {

class Registro : public apoio::ComEmpresa {
protected:
  HRESULT Abre() { return m_base.Inicializa(m_empresa.Codigo(), 7, 42); }
  std::vector<LONG> Busca(const tagREG_FILTRO_VEICULOSPS &filtro) {
    tagRESULTADO_BUSCA_VEICULOS resultado;
    EXPECT_EQ(m_base.BuscaPonteiros(filtro, &resultado), codigos::kOk);
    EXPECT_TRUE(resultado.pFiller == nullptr && (resultado.Ponteiros == nullptr) == (resultado.iQtd == 0));
    const std::vector<LONG> posicoes(resultado.Ponteiros, resultado.Ponteiros + resultado.iQtd);
    plataforma::LiberaTarefa(resultado.Ponteiros);
    return posicoes;
  }
  /// Has the company hold these vehicles, of which none is in memory.
  std::vector<RegVeiculo> Poe(std::size_t qtd, const std::function<tagREG_VEICULOPS(std::uint32_t)> &veiculo) {
    m_empresa.Escreve("DFVEIVS.DAT", kVersao1);
    std::vector<RegVeiculo> registros(qtd);
    std::string bytes;
    for (std::size_t i = 0; i < qtd; ++i) {
      CopiaParaRegistro(veiculo(static_cast<std::uint32_t>(i)), &registros[i]);
      bytes += Bytes(registros[i]);
    }
    m_empresa.Escreve("DFVEIC.DAT", apoio::NoDisco("DFVEIC.DAT", bytes));
    return registros;
  }

  CBaseVeiculos m_base;
};

/// Wherever the process ends while it writes the version file, the next start makes it anew.
TEST_F(Registro, EmpresaNova) {
  const apoio::PlanoFalha plano{.trecho = "DFVEIVS.DAT", .gravaAntes = 8};
  for (apoio::SerieFalhas serie(m_falhas, plano, apoio::Duracao::Persistente); serie.Proxima();) {
    const apoio::EmpresaComBase empresa;
    static_cast<void>(serie.Roda([&] { return AbreUmaVez(empresa.Codigo()); }));
    ASSERT_EQ(m_base.Inicializa(empresa.Codigo(), 7, 42), codigos::kOk);
    EXPECT_EQ(empresa.Le("DFVEIVS.DAT"), kVersao1);
    EXPECT_FALSE(empresa.Existe("DFVEIC.DAT"));
    EXPECT_TRUE(Busca({}).empty());
    EXPECT_EQ(m_base.Finaliza(), codigos::kOk);
  }
}

/// Byte by byte: what is swapped, cut or left dirty on the way in and put right on the way out shows only here.
TEST(RegVeiculo, Bytes) {
  const auto texto = [](std::string s, std::size_t n) { return s.append(n - s.size(), '\0'); };
  const std::string esperado = texto("V001", 13) + texto("ABC1D23", 9) + texto("SP", 3) + texto("CAMINHAO TOCO", 51) +
                               texto("\xE4\x07", 4) + texto("12345678", 21) + "\2\1\3" + "HGFEDCBAhgfedcba87654321" +
                               texto("00123456789", 12) + "zy" + texto("\4", 114);
  tagREG_VEICULOPS v = VeiculoCompleto();
  v.szCodigo[5] = v.szCodigo[12] = v.szPlaca[8] = v.szDescricao[14] = v.szCodigoANTT[20] = 'x';
  RegVeiculo reg;
  std::memset(&reg, 'x', sizeof(reg));
  CopiaParaRegistro(v, &reg);
  EXPECT_EQ(Bytes(reg), esperado);
  std::memset(&v, 'x', sizeof(v));
  CopiaParaInterface(reg, &v);
  EXPECT_EQ(Bytes(v), Bytes(VeiculoCompleto()));
}

/// What a search passes over, by the digests or by an index, is nothing that looking at every vehicle finds.
TEST_F(Registro, BuscasEmVariosBlocos) {
  const std::vector<RegVeiculo> registros = Poe(4 * kRegistrosPorBloco + 300, [](std::uint32_t i) {
    tagREG_VEICULOPS v = Veiculo("C" + std::to_string(i % 600));
    Preenche(v.szDescricao, i % 8 == 7 ? "SILO S\xC3O" : "CAMINHAO TOCO");
    Preenche(v.szUF, i % 9 == 0 ? "RJ" : "SP");
    v.iAno = 2000 + i / 100;
    return v;
  });
  ASSERT_EQ(Abre(), codigos::kOk);
  const struct {
    const char *lpCodigo;
    const char *lpDescricao;
    const char *lpUF;
    std::uint32_t iDe;
    std::uint32_t iAte;
    std::size_t uiAchados;
  } casos[] = {{"", "", "", 0, 0, 4396},        {"C7", "", "", 0, 0, 8},
               {"", "*o*", "", 0, 0, 4396},     {"", "*s\xE3o", "", 0, 0, 549},
               {"", "X;*SILO*", "", 0, 0, 549}, {"", "", "RJ", 0, 0, 489},
               {"", "", "", 0, 2040, 4100},     {"", "", "SP", 2007, 2007, 89},
               {"", "CAMINHAO", "", 0, 0, 0},   {"", "CAMINHAO TOCO", "RJ", 2043, 0, 9}};
  for (const auto &caso : casos) {
    SCOPED_TRACE(testing::Message() << caso.lpCodigo << caso.lpDescricao << caso.lpUF << caso.iDe << caso.iAte);
    tagREG_FILTRO_VEICULOSPS filtro{};
    Preenche(filtro.szCodigo, caso.lpCodigo);
    Preenche(filtro.szDescricao, caso.lpDescricao);
    Preenche(filtro.szUF, caso.lpUF);
    filtro.iAnoInicial = caso.iDe;
    filtro.iAnoFinal = caso.iAte;
    std::vector<LONG> esperadas;
    for (std::size_t i = 0; i < registros.size(); ++i) {
      if (CBaseVeiculos::AtendeFiltro(registros[i], filtro)) {
        esperadas.push_back(static_cast<LONG>(i + 1));
      }
    }
    EXPECT_EQ(esperadas.size(), caso.uiAchados);
    EXPECT_EQ(Busca(filtro), esperadas);
  }
}

/// Every operation before Inicializa and while another program holds the file: its code, and what administrators find.
TEST_F(Registro, CodigosECadeiasDoRastro) {
  const std::string sSemBanco = "|BaseVeiculos.cpp|((HRESULT)0x810809E3L)";
  apoio::ColetorRastro rastro;
  LONG lPos = 1;
  std::uint32_t iNumero = 9;
  tagREG_VEICULOPS v = VeiculoCompleto();
  tagRESULTADO_BUSCA_VEICULOS resultado{9, {}, nullptr, nullptr};
  const auto chama = [&] {
    return std::vector<HRESULT>{m_base.Grava(&lPos, v), m_base.GetQuantidadeRegistros(&iNumero),
                                m_base.BuscaPonteiros({}, &resultado), m_base.LePonteiros(1, &lPos, &v)};
  };
  EXPECT_EQ(chama(), std::vector<HRESULT>(4, codigos::kArquivoNaoAberto));
  EXPECT_EQ(iNumero + resultado.iQtd, 0U);
  EXPECT_EQ(rastro.Toma(),
            (std::vector<std::string>{
                "CBaseVeiculos::Grava" + sSemBanco, "CBaseVeiculos::GetQuantidadeRegistros" + sSemBanco,
                "CBaseVeiculos::InternalGetRegs" + sSemBanco,
                "CBaseVeiculos::BuscaPonteiros|BaseVeiculos.cpp|InternalGetRegs(Filtro, &aPonteiros, nullptr)",
                "CBaseVeiculos::LePonteiros" + sSemBanco}));
  m_empresa.Escreve("DFVEIC.DAT", std::string(512, 'a'));
  ASSERT_EQ(Abre(), codigos::kOk);  // and is left open for writing where it gets its header
  ASSERT_EQ(Abre(), codigos::kOk);
  Falha(apoio::kOpAbre, "DFVEIC.DAT", 32);
  ASSERT_EQ(m_base.Grava(&lPos, v), codigos::kArqCompartilhamento);
  EXPECT_EQ(rastro.Toma().back(),
            "CBaseVeiculos::Grava|BaseVeiculos.cpp|m_pDataBase->m_Veiculos.Grava(uiPosicao, RegVei)");
  EXPECT_EQ(chama(), std::vector<HRESULT>(4, codigos::kArqCompartilhamento));
  Falha(apoio::kOpAbre, "DFVEIC.DAT", 5, false);  // the count meets it, what comes after the count does not
  EXPECT_EQ(m_base.BuscaPonteiros({}, &resultado), codigos::kArqAcessoNegado);
  m_falhas.Desarma();
  rastro.Toma();
  lPos = 2;
  EXPECT_EQ(m_base.LePonteiros(1, &lPos, &v), codigos::kPosicaoAlemDoFim);
  EXPECT_EQ(rastro.Toma(),
            (std::vector<std::string>{
                "CQZFile<struct RegVeiculo>::Le|QZFile.h|((HRESULT)0x810809DAL)",
                "CBaseVeiculos::LePonteiros|BaseVeiculos.cpp|m_pDataBase->m_Veiculos.Le(Ponteiros[idx], &RegVei)"}));
}

/// Objects that come and go. Records, searches and what an index answers, beside appends and overwrites.
TEST_F(Registro, VariosObjetosDaMesmaEmpresaAoMesmoTempo) {
  // Retries must take time here: a thread that holds a file for a moment may be the one that waits for the processor.
  const apoio::ServicosTrocados relogio(nullptr, nullptr, plataforma::ServicosDoSistema().relogio);
  // The first searches make the signatures of what was loaded, beside each other and beside writers.
  constexpr std::uint32_t kCarregados = 3 * kRegistrosPorBloco - 100;
  Poe(kCarregados, [](std::uint32_t i) {
    tagREG_VEICULOPS v = Veiculo("C" + std::to_string(i));
    v.iAno = 3000 + i % 6;
    Preenche(v.szDescricao, "CARRETA");
    return v;
  });
  constexpr int kThreads = 6;
  constexpr int kGravacoes = 100;
  std::atomic<int> falhas{0};
  std::vector<std::jthread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      std::optional<CBaseVeiculos> base;
      LONG lPos = 0;
      for (int i = 0; i < kGravacoes; ++i) {
        if (i % 20 == 0) {
          falhas += Falhou(base.emplace().Inicializa(m_empresa.Codigo(), 1, t));
        }
        lPos = i % 4 == 3 ? lPos : 0;  // every fourth over the one before
        std::uint32_t iAchado = 0;
        tagREG_VEICULOPS v;
        tagREG_VEICULOPS novo = Veiculo(std::to_string(t) + "-" + std::to_string(i));
        novo.iAno = static_cast<std::uint32_t>(3000 + t);
        falhas += Falhou(base->Grava(&lPos, novo)) || Falhou(base->Existe(novo.szCodigo, &iAchado, &v)) ||
                  static_cast<LONG>(iAchado) != lPos || Falhou(base->LePonteiros(1, &lPos, &v)) ||
                  std::strcmp(v.szCodigo, novo.szCodigo) != 0;
        tagREG_FILTRO_VEICULOSPS destaThread{};
        destaThread.iAnoInicial = destaThread.iAnoFinal = novo.iAno;
        Preenche(destaThread.szDescricao, "*toco");
        CArray<LONG> aAchadas;
        falhas += Falhou(base->InternalGetRegs(destaThread, &aAchadas, nullptr)) ||
                  aAchadas.GetSize() != static_cast<std::size_t>(i + 1 - (i + 1) / 4);
      }
    });
  }
  threads.clear();  // and joins them
  EXPECT_EQ(falhas, 0);
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(Busca({}).size(), kCarregados + kThreads * kGravacoes * 3U / 4);
}

}  // namespace
