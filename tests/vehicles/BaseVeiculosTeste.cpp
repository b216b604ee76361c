#include "vehicles/BaseVeiculos.h"

#include <random>
#include <thread>

#include "core/log/ConfiguracaoLog.h"
#include "core/platform/MemoriaTarefa.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/apoio/ComEmpresa.h"
#include "tests/apoio/InstalacaoPropria.h"
#include "tests/apoio/SerieFalhas.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/FiltroVeiculos.h"

namespace {

class Registro : public apoio::ComEmpresa {
protected:
  HRESULT Abre() { return m_base.Inicializa(m_empresa.Codigo(), 7, 42); }
  LONG Acrescenta(const tagREG_VEICULOPS &v) {
    LONG lPos = 0;
    EXPECT_EQ(m_base.Grava(&lPos, v), codigos::kOk);
    return lPos;
  }
  std::vector<LONG> Busca(const tagREG_FILTRO_VEICULOSPS &filtro) {
    tagRESULTADO_BUSCA_VEICULOS resultado;
    EXPECT_EQ(m_base.BuscaPonteiros(filtro, &resultado), codigos::kOk);
    EXPECT_TRUE(resultado.pFiller == nullptr && (resultado.Ponteiros == nullptr) == (resultado.iQtd == 0));
    const std::vector<LONG> posicoes(resultado.Ponteiros, resultado.Ponteiros + resultado.iQtd);
    plataforma::LiberaTarefa(resultado.Ponteiros);
    return posicoes;
  }

  /// What Busca is to find: the answer of looking at every vehicle.
  std::vector<LONG> Examina(const tagREG_FILTRO_VEICULOSPS &filtro) const {
    const CFiltroVeiculos preparado(filtro);
    std::vector<LONG> posicoes;
    for (std::size_t i = 0; i < m_modelo.size(); ++i) {
      if (preparado.Atende(m_modelo[i])) {
        posicoes.push_back(static_cast<LONG>(i + 1));
      }
    }
    return posicoes;
  }
  /// Writes, and into the model too where that succeeds; position 0 appends.
  HRESULT GravaComModelo(LONG lPos, const tagREG_VEICULOPS &v) {
    const HRESULT hr = m_base.Grava(&lPos, v);
    if (!Falhou(hr)) {
      m_modelo.resize(std::max(m_modelo.size(), static_cast<std::size_t>(lPos)));
      CopiaParaRegistro(v, &m_modelo[static_cast<std::size_t>(lPos - 1)]);
    }
    return hr;
  }

  std::vector<RegVeiculo> m_modelo;
  CBaseVeiculos m_base;
};

/// Wherever the process ends while it writes the version file, the next start makes it anew.
TEST_F(Registro, EmpresaNova) {
  const apoio::PlanoFalha plano{.trecho = "DFVEIVS.DAT", .gravaAntes = 8};
  for (apoio::SerieFalhas serie(m_falhas, plano, apoio::Duracao::Persistente); serie.Proxima();) {
    const apoio::EmpresaComBase empresa;
    static_cast<void>(serie.Roda([&] { return CBaseVeiculos().Inicializa(empresa.Codigo(), 7, 42); }));
    ASSERT_EQ(m_base.Inicializa(empresa.Codigo(), 7, 42), codigos::kOk);
    EXPECT_EQ(empresa.Le("DFVEIVS.DAT"), kVersao1);
    EXPECT_FALSE(empresa.Existe("DFVEIC.DAT"));
    EXPECT_TRUE(Busca({}).empty());
    EXPECT_EQ(Acrescenta(VeiculoCompleto()), 1);
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

/// A failure wherever it stands among many positions: what was read before it stays, and one chain is traced. No record
/// comes to a place that is none.
TEST_F(Registro, PosicoesRuins) {
  constexpr std::size_t kQtd = 200;
  ASSERT_EQ(Abre(), codigos::kOk);
  std::string arquivo;
  for (const char *lpCodigo : {"A", "B", "C"}) {
    ASSERT_EQ(GravaComModelo(0, Veiculo(lpCodigo)), codigos::kOk);
    arquivo += Bytes(m_modelo.back());
  }
  const std::pair<std::size_t, LONG> casos[] = {{0, 4},          {1, 4},   {63, 5},          {64, -1},
                                                {65, INT32_MIN}, {128, 0}, {199, INT32_MAX}, {kQtd, 0}};
  for (const auto &[ruim, lRuim] : casos) {
    SCOPED_TRACE(ruim);
    const bool bRuim = ruim < kQtd;
    std::vector<LONG> posicoes(kQtd);
    for (std::size_t i = 0; i < kQtd; ++i) {
      posicoes[i] = i == ruim ? lRuim : static_cast<LONG>(1 + i * i % 3);
    }
    std::vector<tagREG_VEICULOPS> lidos(kQtd, Veiculo("OLD"));
    apoio::ColetorRastro rastro;
    const HRESULT hr = !bRuim ? codigos::kOk : lRuim == 0 ? codigos::kPosicaoZero : codigos::kPosicaoAlemDoFim;
    EXPECT_EQ(m_base.LePonteiros(kQtd, posicoes.data(), lidos.data()), hr);
    for (std::size_t i = 0; i < kQtd; ++i) {
      const bool bLido = i < ruim;
      const std::string codigo(1, "?ABC"[bLido ? posicoes[i] : 0]);
      ASSERT_EQ(Bytes(lidos[i]), bLido ? Bytes(Veiculo(codigo)) : std::string(168, '\0')) << i;
    }
    const std::string sCodigo = lRuim == 0 ? "((HRESULT)0x810809D9L)" : "((HRESULT)0x810809DAL)";
    const std::vector<std::string> cadeia = {
        "CQZFile<struct RegVeiculo>::Le|QZFile.h|" + sCodigo,
        "CBaseVeiculos::LePonteiros|BaseVeiculos.cpp|m_pDataBase->m_Veiculos.Le(Ponteiros[idx], &RegVei)"};
    EXPECT_EQ(rastro.Toma(), bRuim ? cadeia : std::vector<std::string>());
    LONG lPos = lRuim;
    EXPECT_TRUE(lRuim == 0 || m_base.Grava(&lPos, Veiculo("NEW")) == codigos::kGravacaoAlemDoFim);
    EXPECT_EQ(lPos, lRuim);
  }
  ASSERT_EQ(m_base.Finaliza(), codigos::kOk);
  EXPECT_EQ(m_empresa.Le("DFVEIC.DAT"), arquivo);
}

/// With the switches on, each record read leaves an entry and an exit, also where many are read; a search leaves none.
TEST_F(Registro, CadaLeituraNoLog) {
  const apoio::PastaTemporaria instalacao;
  const apoio::InstalacaoPropria propria(instalacao.Caminho());
  const auto configura = [&](const std::string &chaves) {
    apoio::EscreveArquivo(instalacao / "log.ini", "[Log]\r\nTimeoutConfig=0\r\n" + chaves);
    m_relogio.m_ticks = static_cast<std::uint32_t>(CarregaConfiguracaoLog()) - 1;  // so that it is read again
    CarregaConfiguracaoLog();
  };
  ASSERT_EQ(Abre(), codigos::kOk);
  Acrescenta(VeiculoCompleto());
  configura("Entrada=1\r\nSaida=1\r\nPerformance=1\r\n");
  const LONG posicoes[] = {1, 1, 1};
  tagREG_VEICULOPS lidos[3];
  EXPECT_EQ(m_base.LePonteiros(3, posicoes, lidos), codigos::kOk);
  EXPECT_EQ(Busca({}), std::vector<LONG>{1});
  std::uint32_t iPos = 0;
  EXPECT_EQ(m_base.Existe("V001", &iPos, &lidos[0]), codigos::kOk);
  configura("");
  const std::string log = apoio::LeArquivo(instalacao / "QZProfiler.dat");
  std::size_t leituras = 0;
  for (std::size_t i = 0; (i = log.find("<struct RegVeiculo>::Le\t", i)) != std::string::npos; ++i) {
    ++leituras;
  }
  EXPECT_EQ(leituras, 6U) << log;
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
  CArray<RegVeiculo> aRegistros;
  EXPECT_EQ(m_base.InternalGetRegs(filtro, nullptr, &aRegistros), codigos::kOk);
  ASSERT_EQ(aRegistros.GetSize(), 2U);
  EXPECT_STREQ(aRegistros[1].szPlaca, "PLA0003");

  tagREG_VEICULOPS lidos[2];
  const LONG posicoes[] = {3, 2};
  EXPECT_EQ(m_base.LePonteiros(2, posicoes, lidos), codigos::kOk);
  EXPECT_EQ(Bytes(lidos[0]), Bytes(Veiculo("A", "PLA0003")));
  EXPECT_EQ(Bytes(lidos[1]), Bytes(Veiculo("C", "A")));
  std::uint32_t iQtd = 0;
  EXPECT_EQ(m_base.GetQuantidadeRegistros(&iQtd), codigos::kOk);
  EXPECT_EQ(iQtd, 3U);
}

TEST_F(Registro, Existe) {
  ASSERT_EQ(Abre(), codigos::kOk);
  const tagREG_VEICULOPS gravados[] = {Veiculo("X1", "V002"), Veiculo("V002", "PLA0002"),
                                       Veiculo("1234567890123", "123456789"), Veiculo("V001", "AAA1A11")};
  std::for_each(gravados, gravados + 4, [&](const auto &v) { Acrescenta(v); });
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
    EXPECT_EQ(Bytes(v), Bytes(esperado != 0 ? gravados[esperado - 1] : tagREG_VEICULOPS{}));
  }
}

/// What a search passes over by the digests is nothing that looking at every vehicle finds: in several blocks, after
/// writes that succeed and that fail, and after loads.
TEST_F(Registro, BuscasPelosResumos) {
  static const char *const kPalavras[] = {"SILO", "silo", "S\xC3O", "s\xE3o", "TRUCK", "LO", "A", " ", "1 2", "*?"};
  static const char *const kPadroes[] = {"*SILO*", "*s\xE3o*", "S?LO*", "*CK",     "*TR?CK*1*", "*LOA*",
                                         "*",      "*?",       "*.*",   " *SILO*", "*A;*SILO*", "*SILOS\xC3OSILO*"};
  static const char *const kUFs[] = {"SP", "PS", "S", "", "SPA", "sp", "RJ"};
  static const std::uint32_t kAnos[] = {0, 1, 1995, 2000, 2001, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
  std::mt19937 gerador(5);
  const auto sorteia = [&](std::size_t n) { return static_cast<std::uint32_t>(gerador() % n); };
  const auto um = [&](const auto &deles) { return deles[sorteia(std::size(deles))]; };
  const auto veiculo = [&](std::uint32_t iAno) {
    tagREG_VEICULOPS v = VeiculoCompleto();
    std::string descricao;
    for (std::uint32_t n = sorteia(sorteia(10) == 0 ? 25 : 5); n != 0; --n) {
      descricao += um(kPalavras);
    }
    Preenche(v.szDescricao, descricao);
    Preenche(v.szUF, um(kUFs));
    v.iAno = iAno;
    v.vTara = sorteia(4);
    return v;
  };
  const auto filtroPara = [&](const RegVeiculo &reg) {
    tagREG_FILTRO_VEICULOSPS filtro{};
    filtro.iAnoInicial = sorteia(2) == 0 ? reg.iAno : sorteia(3) == 0 ? um(kAnos) : 0;
    filtro.iAnoFinal = sorteia(2) == 0 ? reg.iAno : sorteia(3) == 0 ? um(kAnos) : 0;
    filtro.vTaraInicial = sorteia(3) == 0 ? reg.vTara : 0;
    if (sorteia(2) == 0) {
      std::memcpy(filtro.szUF, reg.szUF, sizeof(filtro.szUF));
    }
    if (const std::uint32_t uiTexto = sorteia(4); uiTexto == 0) {
      std::memcpy(filtro.szDescricao, reg.szDescricao, sizeof(filtro.szDescricao));
    } else if (uiTexto < 3) {
      Preenche(filtro.szDescricao, um(kPadroes));
    }
    Preenche(filtro.szCodigo, sorteia(5) == 0 ? "V00*" : "");
    return filtro;
  };
  const auto abreComModelo = [&] {
    std::string bytes;
    for (const RegVeiculo &reg : m_modelo) {
      bytes += Bytes(reg);
    }
    m_empresa.Escreve("DFVEIC.DAT", apoio::NoDisco("DFVEIC.DAT", bytes));
    ASSERT_EQ(Abre(), codigos::kOk);
  };
  ASSERT_EQ(Abre(), codigos::kOk);
  // Years that rise, so that blocks differ in them.
  for (std::uint32_t n = 0; n < 4 * kRegistrosPorBloco + 300; ++n) {
    RegVeiculo reg;
    CopiaParaRegistro(veiculo(1000 + n), &reg);
    m_modelo.push_back(reg);
  }
  ASSERT_EQ(m_base.Finaliza(), codigos::kOk);
  abreComModelo();
  for (int i = 0; i < 300; ++i) {
    SCOPED_TRACE(i);
    const std::uint32_t uiOp = sorteia(20);
    const auto uiIndice = sorteia(m_modelo.size());
    const RegVeiculo antigo = m_modelo[uiIndice];
    if (uiOp == 0) {
      ASSERT_EQ(m_base.Finaliza(), codigos::kOk);
      m_modelo.erase(m_modelo.begin(), m_modelo.begin() + sorteia(100));
      abreComModelo();
    } else {
      apoio::PlanoFalha plano{.operacoes = apoio::kOpGrava, .trecho = "DFVEIC.DAT", .enesima = 1 + sorteia(2)};
      plano.bPersistente = true;
      plano.gravaAntes = sorteia(257);
      if (uiOp < 5) {
        m_falhas.Arma(plano);
      }
      static_cast<void>(GravaComModelo(sorteia(3) == 0 ? 0 : static_cast<LONG>(uiIndice + 1), veiculo(um(kAnos))));
      m_falhas.Desarma();
    }
    for (const RegVeiculo &reg : {antigo, m_modelo[std::min<std::size_t>(uiIndice, m_modelo.size() - 1)],
                                  m_modelo.back(), m_modelo[sorteia(m_modelo.size())]}) {
      const tagREG_FILTRO_VEICULOSPS filtro = filtroPara(reg);
      ASSERT_EQ(Busca(filtro), Examina(filtro)) << filtro.iAnoInicial << '-' << filtro.iAnoFinal << ' '
                                                << std::string(filtro.szDescricao, sizeof(filtro.szDescricao));
    }
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
  EXPECT_EQ(m_base.Inicializa("", 7, 42), codigos::kSemEmpresa);
  EXPECT_EQ(rastro.Toma().back(), "CBaseVeiculos::OnInicializa|BaseVeiculos.cpp|QZDataBaseInicializa()");
}

/// Objects that come and go. Records, searches and what an index answers, beside appends and overwrites.
TEST_F(Registro, VariosObjetosDaMesmaEmpresaAoMesmoTempo) {
  // Retries must take time here: a thread that holds a file for a moment may be the one that waits for the processor.
  const apoio::ServicosTrocados relogio(nullptr, nullptr, plataforma::ServicosDoSistema().relogio);
  // The first searches make the signatures of what was loaded, beside each other and beside writers.
  constexpr std::uint32_t kCarregados = 3 * kRegistrosPorBloco - 100;
  std::string carregados;
  for (std::uint32_t n = 0; n < kCarregados; ++n) {
    tagREG_VEICULOPS v = Veiculo("C" + std::to_string(n));
    v.iAno = 3000 + n % 6;
    Preenche(v.szDescricao, "CARRETA");
    RegVeiculo reg;
    CopiaParaRegistro(v, &reg);
    carregados += Bytes(reg);
  }
  ASSERT_EQ(Abre(), codigos::kOk);  // an empty one, so that this is no old base
  ASSERT_EQ(m_base.Finaliza(), codigos::kOk);
  m_empresa.Escreve("DFVEIC.DAT", apoio::NoDisco("DFVEIC.DAT", carregados));
  constexpr int kThreads = 6;
  constexpr int kGravacoes = 100;
  const auto codigo = [](int t, int i) { return std::to_string(t) + "-" + std::to_string(i); };
  std::atomic<int> falhas{0};
  std::vector<std::thread> threads;
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
        tagREG_VEICULOPS novo = Veiculo(codigo(t, i));
        novo.iAno = static_cast<std::uint32_t>(3000 + t);
        falhas += Falhou(base->Grava(&lPos, novo)) || Falhou(base->Existe(codigo(t, i).c_str(), &iAchado, &v)) ||
                  static_cast<LONG>(iAchado) != lPos;
        tagREG_FILTRO_VEICULOSPS destaThread{};
        destaThread.iAnoInicial = destaThread.iAnoFinal = novo.iAno;
        Preenche(destaThread.szDescricao, "*toco");
        CArray<LONG> aAchadas;
        falhas += Falhou(base->InternalGetRegs(destaThread, &aAchadas, nullptr)) ||
                  aAchadas.GetSize() != static_cast<std::size_t>(i + 1 - (i + 1) / 4);
      }
    });
  }
  for (std::thread &thread : threads) {
    thread.join();
  }
  EXPECT_EQ(falhas, 0);
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(Busca({}).size(), kCarregados + kThreads * kGravacoes * 3U / 4);
}

}  // namespace
