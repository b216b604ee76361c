#include <gtest/gtest.h>

#include "core/platform/Plataforma.h"
#include "core/qzdatabase/disco/CabecalhoArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"
#include "tests/apoio/ArquivosDecorado.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/apoio/EmpresaComBase.h"
#include "tests/apoio/RelogioFalso.h"
#include "tests/apoio/SerieFalhas.h"
#include "tests/apoio/ServicosTrocados.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/BaseVeiculos.h"

namespace {

class Conversao : public ::testing::Test {
protected:
  HRESULT Abre(const apoio::EmpresaComBase &empresa) {
    CBaseVeiculos base;
    return base.Inicializa(empresa.Codigo(), 7, 42);
  }
  HRESULT Abre() { return Abre(m_empresa); }

  apoio::EmpresaComBase m_empresa;
  apoio::RelogioFalso m_relogio;
  apoio::ArquivosComFalha m_falhas{*plataforma::ServicosDoSistema().arquivos};
  apoio::ServicosTrocados m_servicos{&m_falhas, nullptr, &m_relogio};
};

/// Bases as they may be found; opening one again changes nothing.
TEST_F(Conversao, BasesDeTodasAsVersoes) {
  const std::string versao2 = std::string("\x02", 1) + std::string(15, '\0');
  const struct {
    const char *nome;
    const char *antes;
    std::string versao;  ///< content of the version file; empty for none
    HRESULT hr;
    const char *depois;  ///< null for no record file
  } casos[] = {{"version 0", "0ab", "", codigos::kOk, "ab"},
               {"without vehicles", "0", "", codigos::kOk, nullptr},
               {"empty", "", "", codigos::kOk, nullptr},
               {"version 1", "ab", kVersao1, codigos::kOk, "ab"},
               {"newer", "0ab", versao2, codigos::kBaseMaisNova, "0ab"}};
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.nome);
    apoio::EmpresaComBase empresa;
    empresa.Escreve("DFVEIC.DAT", Base(caso.antes));
    if (!caso.versao.empty()) {
      empresa.Escreve("DFVEIVS.DAT", caso.versao);
    }
    for (int vez = 0; vez < 2; ++vez) {
      apoio::ColetorRastro rastro;
      EXPECT_EQ(Abre(empresa), caso.hr);
      EXPECT_EQ(rastro.Toma(),
                std::vector<std::string>(Falhou(caso.hr) ? 1 : 0,
                                         "CBaseVeiculos::OnInicializa|BaseVeiculos.cpp|ExecutaConversao()"));
      EXPECT_EQ(empresa.Existe("DFVEIC.DAT"), caso.depois != nullptr);
      EXPECT_EQ(caso.depois != nullptr ? empresa.Le("DFVEIC.DAT") : "",
                Base(caso.depois != nullptr ? caso.depois : ""));
      EXPECT_EQ(empresa.Le("DFVEIVS.DAT"), Falhou(caso.hr) ? versao2 : kVersao1);
      for (const char *lpResto : {"DFVEIC.TRA", "DFVEIVSD.TRA"}) {
        EXPECT_FALSE(empresa.Existe(lpResto)) << lpResto;
      }
    }
  }
}

TEST_F(Conversao, EmpresaVaziaNaoTocaEmNada) {
  m_falhas.Arma({apoio::kOpTodas, "", 1, true, plataforma::FalhaWin32(5), {}});
  CBaseVeiculos base;
  EXPECT_EQ(base.Inicializa("", 7, 42), codigos::kSemEmpresa);
  EXPECT_EQ(m_falhas.Vistas(), 0U);
}

TEST_F(Conversao, OutraEmpresaNoMesmoObjetoTambemConverte) {
  apoio::EmpresaComBase outra;
  m_empresa.Escreve("DFVEIC.DAT", Base("0ab"));
  outra.Escreve("DFVEIC.DAT", Base("0cd"));
  CBaseVeiculos base;
  EXPECT_EQ(base.Inicializa(m_empresa.Codigo(), 7, 42), codigos::kOk);
  EXPECT_EQ(base.Inicializa(outra.Codigo(), 7, 42), codigos::kOk);
  EXPECT_EQ(base.Finaliza(), codigos::kOk);
  EXPECT_EQ(outra.Le("DFVEIC.DAT"), Base("cd"));
}

/// What the conversion created is in the list, what it deleted is not; either one's later absence says so.
TEST_F(Conversao, ArquivosQueSomemDepois) {
  for (const char *lpRegistros : {"0ab", "0"}) {
    apoio::EmpresaComBase empresa;
    empresa.Escreve("DFVEIC.DAT", Base(lpRegistros));
    empresa.Escreve("QZDATABASE_FILE_CTRL.DAT", std::string("\x0A\0\0\0DFVEIC.DAT", 14));
    ASSERT_EQ(Abre(empresa), codigos::kOk);
    ASSERT_EQ(Abre(empresa), codigos::kOk);
    if (empresa.Existe("DFVEIC.DAT")) {
      ASSERT_FALSE(plataforma::Arquivos().Apaga(empresa.Caminho("DFVEIC.DAT")));
      EXPECT_EQ(Abre(empresa), codigos::kArquivoDesapareceu);
    }
    ASSERT_FALSE(plataforma::Arquivos().Apaga(empresa.Caminho("DFVEIVS.DAT")));
    EXPECT_EQ(Abre(empresa), codigos::kArquivoDesapareceu);
  }
}

/// A journal that cannot be read just now is not taken for none.
TEST_F(Conversao, DiarioPresoFazEsperar) {
  m_empresa.Escreve("DFVEIC.DAT", Base("0ab"));
  m_falhas.Arma({apoio::kOpGrava, "DFVEIVS.DAT", 1, true, plataforma::FalhaWin32(1117), {}});
  EXPECT_EQ(Abre(), codigos::kArqErroFisico) << "stopped before the version";
  ASSERT_TRUE(m_empresa.Existe("DFVEIVSD.TRA"));
  m_falhas.Arma({apoio::kOpAbre, "DFVEIVSD.TRA", 1, true, plataforma::FalhaWin32(32), {}});
  EXPECT_EQ(Abre(), codigos::kArqCompartilhamento);
  EXPECT_EQ(m_falhas.Vistas(), 50U);
  m_falhas.Arma({apoio::kOpLe, "DFVEIVSD.TRA", 1, true, plataforma::FalhaWin32(1117), {}});
  EXPECT_EQ(Abre(), codigos::kArqErroFisico);
  m_falhas.Arma({apoio::kOpAbre, "DFVEIVSD.TRA", 1, false, plataforma::FalhaWin32(32), {}});
  EXPECT_EQ(Abre(), codigos::kOk) << "one busy moment is ridden out";
  EXPECT_EQ(m_empresa.Le("DFVEIC.DAT"), Base("ab"));
}

/// The journal of a conversion that ends with these vehicles.
std::string Diario(const std::string &letras, char versao = 1) {
  const std::string dados = Base(letras);
  std::string bytes = std::string(1, versao) + std::string(7, '\0') + Bytes(std::uint64_t{dados.size()}) +
                      Bytes(CalculaCrc64(dados.data(), dados.size()));
  return bytes + Bytes(CalculaCrc64(bytes.data(), bytes.size()));
}

/// What interrupted runs, and those who restore old files, may leave. An empty text is no file.
TEST_F(Conversao, DiarioContraOQueEsta) {
  const std::string sRasgada = Bytes(MontaRegVersao()) + "torn";
  const std::string sDois = Base("0ab");
  const std::string sComCabecalho =
      Bytes(MontaRegVersao()) + Bytes(MontaRegCabecalho(0, "DFVEIC.DAT", CalculaCrc64(sDois.data(), sDois.size())));
  const std::string sListada("\x0B\0\0\0DFVEIVS.DAT", 15);
  const std::string sZeros(1, '\0');
  const struct {
    const char *nome;
    std::string base, companheiro, diario, versao, lista;
    HRESULT hr;
    std::string depois;
  } casos[] = {
      {"not swapped", Base("0ab"), Base("ab"), Diario("ab"), "", "", codigos::kOk, "ab"},
      {"not swapped, first record zero", Base(sZeros + "ab"), Base("ab"), Diario("ab"), "", "", codigos::kOk, "ab"},
      {"not swapped, with header", sComCabecalho + sDois, Base("ab"), Diario("ab"), "", "", codigos::kOk, "ab"},
      {"record file gone", "", Base("ab"), Diario("ab"), "", "", codigos::kOk, "ab"},
      {"companion gone", Base("0ab"), "", Diario("ab"), "", "", codigos::kOk, "ab"},
      {"companion of something else", Base("0ab"), Base("xy"), Diario("ab"), "", "", codigos::kOk, "ab"},
      {"swapped", Base("ab"), "", Diario("ab"), "", "", codigos::kOk, "ab"},
      {"swapped, version torn", Base("ab"), "", Diario("ab"), sRasgada, "", codigos::kOk, "ab"},
      {"swapped, version listed", Base("ab"), "", Diario("ab"), "", sListada, codigos::kOk, "ab"},
      {"no vehicles, version torn", "", "", Diario(""), "x", "", codigos::kOk, ""},
      {"version torn, not swapped", Base("0ab"), Base("ab"), Diario("ab"), "x", "", codigos::kTamanhoDiferente, "0ab"},
      {"version torn, no journal", Base("ab"), "", "", "x", "", codigos::kTamanhoDiferente, "ab"},
      {"other base", Base("0xyz"), Base("ab"), Diario("ab"), "", "", codigos::kTraNaoRenomeado, "0xyz"},
      {"other base, as long as before", Base("0xy"), "", Diario("ab"), "", "", codigos::kTraNaoRenomeado, "0xy"},
      {"other base, as long as after", Base("xy"), "", Diario("ab"), "", "", codigos::kTraNaoRenomeado, "xy"},
      {"torn journal", Base("0ab"), Base("ab"), Diario("xy").replace(8, 1, "x"), "", "", codigos::kOk, "ab"},
      {"short journal", Base("0ab"), Base("ab"), Diario("ab").substr(0, 31), "", "", codigos::kOk, "ab"},
      {"other version's journal", Base("0ab"), "", Diario("xy", 2), "", "", codigos::kOk, "ab"},
  };
  for (const auto &caso : casos) {
    SCOPED_TRACE(caso.nome);
    apoio::EmpresaComBase empresa;
    const std::pair<const char *, std::string> arquivos[] = {{"DFVEIC.DAT", caso.base},
                                                             {"DFVEIC.TRA", caso.companheiro},
                                                             {"DFVEIVSD.TRA", caso.diario},
                                                             {"DFVEIVS.DAT", caso.versao},
                                                             {"QZDATABASE_FILE_CTRL.DAT", caso.lista}};
    for (const auto &[lpNome, bytes] : arquivos) {
      if (!bytes.empty()) {
        empresa.Escreve(lpNome, bytes);
      }
    }
    EXPECT_EQ(Abre(empresa), caso.hr);
    EXPECT_EQ(empresa.Existe("DFVEIC.DAT") ? empresa.Le("DFVEIC.DAT") : "", Base(caso.depois));
    if (!Falhou(caso.hr)) {
      EXPECT_EQ(empresa.Le("DFVEIVS.DAT"), kVersao1);
      EXPECT_FALSE(empresa.Existe("DFVEIC.TRA"));
      EXPECT_FALSE(empresa.Existe("DFVEIVSD.TRA"));
    } else if (caso.versao.empty()) {
      EXPECT_FALSE(empresa.Existe("DFVEIVS.DAT"));
    }
  }
}

/// What the next step depends on is on the storage device, or the step is not taken.
TEST_F(Conversao, OQueNaoChegaAoDispositivoNaoConta) {
  m_empresa.Escreve("DFVEIC.DAT", Base("0ab"));
  const struct {
    const char *nome;
    unsigned operacoes;
    bool bFica;
  } casos[] = {{"DFVEIC.TRA", apoio::kOpDescarrega, false},
               {"DFVEIVSD.TRA", apoio::kOpDescarrega, false},
               {"DFVEIVSD.TRA", apoio::kOpDescarrega | apoio::kOpApaga, true}};
  for (const auto &caso : casos) {
    SCOPED_TRACE(testing::Message() << caso.nome << " " << caso.operacoes);
    m_falhas.Arma({caso.operacoes, caso.nome, 1, true, plataforma::FalhaWin32(1117), {}});
    EXPECT_EQ(Abre(), codigos::kArqErroFisico);
    EXPECT_EQ(m_empresa.Le("DFVEIC.DAT"), Base("0ab"));
    EXPECT_EQ(m_empresa.Existe(caso.nome), caso.bFica);
  }
  m_falhas.Arma({apoio::kOpDescarrega, "DFVEIVS.DAT", 1, true, plataforma::FalhaWin32(1117), {}});
  EXPECT_EQ(Abre(), codigos::kArqErroFisico);
  EXPECT_EQ(Abre(), codigos::kOk) << "the version can be read";
  EXPECT_TRUE(m_empresa.Existe("DFVEIVSD.TRA")) << "but a power cut may still take it";
  m_falhas.Arma({apoio::kOpLe, "DFVEIVS.DAT", 1, true, plataforma::FalhaWin32(1117), {}});
  EXPECT_EQ(Abre(), codigos::kArqErroFisico) << "not taken for a torn one";
  m_falhas.Desarma();
  EXPECT_EQ(Abre(), codigos::kOk);
  EXPECT_FALSE(m_empresa.Existe("DFVEIVSD.TRA"));
  EXPECT_EQ(m_empresa.Le("DFVEIC.DAT"), Base("ab"));
}

/// Without vehicles the journal serves the version alone, which is torn here.
TEST_F(Conversao, VersaoRasgadaDeBaseSemVeiculos) {
  m_empresa.Escreve("DFVEIC.DAT", Base("0"));
  m_falhas.Arma({apoio::kOpGrava | apoio::kOpAjustaTamanho, "DFVEIVS.DAT", 1, true, plataforma::FalhaWin32(1117), 5});
  EXPECT_EQ(Abre(), codigos::kArqErroFisico);
  m_falhas.Desarma();
  EXPECT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(m_empresa.Le("DFVEIVS.DAT"), kVersao1);
}

/// A swap that fails leaves the old base and no journal, which would refuse what others add to it; one that only seems
/// to have failed leaves the journal.
TEST_F(Conversao, TrocaQueFalha) {
  m_empresa.Escreve("DFVEIC.DAT", Base("0ab"));
  m_falhas.Arma({apoio::kOpMove, "DFVEIC.DAT", 1, true, plataforma::FalhaWin32(5), {}});
  EXPECT_EQ(Abre(), codigos::kTraNaoRenomeado);
  m_falhas.Desarma();
  EXPECT_EQ(m_empresa.Le("DFVEIC.DAT"), Base("0ab"));
  EXPECT_FALSE(m_empresa.Existe("DFVEIC.TRA"));
  EXPECT_FALSE(m_empresa.Existe("DFVEIVSD.TRA"));

  class RespostaPerdida final : public apoio::ArquivosDecorado {
  public:
    using ArquivosDecorado::ArquivosDecorado;
    plataforma::FalhaArquivo MoveSubstituindo(const CString &origem, const CString &destino) override {
      const plataforma::FalhaArquivo falha = ArquivosDecorado::MoveSubstituindo(origem, destino);
      const bool bBase = destino.find("DFVEIC.DAT") != CString::npos;
      return falha || !bBase ? falha : plataforma::FalhaWin32(64);
    }
  } perdida(m_falhas);
  {
    const apoio::ServicosTrocados servicos(&perdida);
    EXPECT_EQ(Abre(), codigos::kTraNaoRenomeado);
  }
  EXPECT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(m_empresa.Le("DFVEIC.DAT"), Base("ab"));
}

}  // namespace
