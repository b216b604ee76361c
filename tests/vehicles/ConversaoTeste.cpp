#include <gtest/gtest.h>

#include <thread>

#include "core/platform/Plataforma.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/apoio/EmpresaComBase.h"
#include "tests/apoio/RelogioFalso.h"
#include "tests/apoio/SerieFalhas.h"
#include "tests/apoio/ServicosTrocados.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/BaseVeiculos.h"

namespace {

const std::string kVersao1 = std::string("\x01", 1) + std::string(15, '\0');

/// The bytes of a vehicle file whose records are filled with the given letters.
std::string Base(const std::string &letras) {
  std::string bytes;
  for (const char letra : letras) {
    bytes += std::string(256, letra);
  }
  return bytes;
}

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

/// The process stops at the N-th file operation (it and all after fail), for every N; then a new one starts. No vehicle
/// may be dropped twice, lost or doubled.
TEST_F(Conversao, InterrompidaEmQualquerPonto) {
  for (apoio::SerieFalhas serie(m_falhas, {.gravaAntes = 100}, apoio::Duracao::Persistente); serie.Proxima();) {
    apoio::EmpresaComBase empresa;
    empresa.Escreve("DFVEIC.DAT", Base("0abc"));
    const HRESULT hr = serie.Roda([&] { return Abre(empresa); });
    ASSERT_TRUE(serie.Disparou() || hr == codigos::kOk);
    if (const HRESULT hrDepois = Abre(empresa); hrDepois != codigos::kOk) {
      // Stopped between a line of the list of created files and the header that vouches for it.
      ASSERT_EQ(hrDepois, codigos::kDadosNaoConferem);
      ASSERT_FALSE(plataforma::Arquivos().Apaga(empresa.Caminho("QZDATABASE_FILE_CTRL.DAT")));
      ASSERT_EQ(Abre(empresa), codigos::kOk);
    }
    ASSERT_EQ(empresa.Le("DFVEIC.DAT"), Base("abc"));
    ASSERT_EQ(empresa.Le("DFVEIVS.DAT"), kVersao1);
    ASSERT_FALSE(empresa.Existe("DFVEIC.TRA"));
    ASSERT_FALSE(empresa.Existe("DFVEIVSD.TRA"));
  }
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

TEST_F(Conversao, UmaOperacaoQueFalhaNaoPerdeVeiculo) {
  for (apoio::SerieFalhas serie(m_falhas, {.gravaAntes = 100}); serie.Proxima();) {
    apoio::EmpresaComBase empresa;
    empresa.Escreve("DFVEIC.DAT", Base("0abc"));
    const HRESULT hr = serie.Roda([&] { return Abre(empresa); });
    if (Falhou(hr)) {
      ASSERT_EQ(Abre(empresa), codigos::kOk);
    }
    ASSERT_EQ(empresa.Le("DFVEIC.DAT"), Base("abc"));
  }
}

TEST_F(Conversao, VariosAoMesmoTempoConvertemUmaVez) {
  m_empresa.Escreve("DFVEIC.DAT", Base("0abc"));
  std::vector<std::thread> threads;
  std::atomic<int> falhas{0};
  for (int t = 0; t < 6; ++t) {
    threads.emplace_back([&] { falhas += Falhou(Abre()); });
  }
  for (std::thread &thread : threads) {
    thread.join();
  }
  EXPECT_EQ(falhas, 0);
  EXPECT_EQ(m_empresa.Le("DFVEIC.DAT"), Base("abc"));
}

}  // namespace
