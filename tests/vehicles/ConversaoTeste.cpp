#include <gtest/gtest.h>

#include <thread>

#include "core/platform/Plataforma.h"
#include "tests/apoio/ArquivosDecorado.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/apoio/EmpresaComBase.h"
#include "tests/apoio/RelogioFalso.h"
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

TEST_F(Conversao, DaVersaoZeroUmaVezSo) {
  m_empresa.Escreve("DFVEIC.DAT", Base("0ab"));
  for (int vez = 0; vez < 2; ++vez) {
    EXPECT_EQ(Abre(), codigos::kOk);
    EXPECT_EQ(m_empresa.Le("DFVEIC.DAT"), Base("ab"));
    EXPECT_EQ(m_empresa.Le("DFVEIVS.DAT"), kVersao1);
    EXPECT_FALSE(m_empresa.Existe("DFVEIC.TRA"));
    EXPECT_FALSE(m_empresa.Existe("DFVEIVS.TRA"));
  }
}

TEST_F(Conversao, UmRegistroOuNenhum) {
  for (const char *letras : {"", "0"}) {
    apoio::EmpresaComBase empresa;
    empresa.Escreve("DFVEIC.DAT", Base(letras));
    EXPECT_EQ(Abre(empresa), codigos::kOk);
    EXPECT_FALSE(empresa.Existe("DFVEIC.DAT"));
    EXPECT_EQ(empresa.Le("DFVEIVS.DAT"), kVersao1);
  }
}

TEST_F(Conversao, BaseMaisNova) {
  const std::string versao2 = std::string("\x02", 1) + std::string(15, '\0');
  m_empresa.Escreve("DFVEIC.DAT", Base("0ab"));
  m_empresa.Escreve("DFVEIVS.DAT", versao2);
  apoio::ColetorRastro rastro;
  EXPECT_EQ(Abre(), codigos::kBaseMaisNova);
  EXPECT_EQ(rastro.Toma(),
            (std::vector<std::string>{"CBaseVeiculos::OnInicializa|BaseVeiculos.cpp|ExecutaConversao()"}))
      << "no line of its own";
  EXPECT_EQ(m_empresa.Le("DFVEIC.DAT"), Base("0ab"));
  EXPECT_EQ(m_empresa.Le("DFVEIVS.DAT"), versao2);
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
  for (std::size_t n = 1;; ++n) {
    SCOPED_TRACE(testing::Message() << "stopped at operation " << n);
    apoio::EmpresaComBase empresa;
    empresa.Escreve("DFVEIC.DAT", Base("0abc"));
    m_falhas.Arma({apoio::kOpTodas, empresa.Caminho(""), n, true, plataforma::FalhaWin32(1117), 100});
    const HRESULT hr = Abre(empresa);
    const bool bDisparou = m_falhas.Disparou();
    m_falhas.Desarma();
    if (const HRESULT hrDepois = Abre(empresa); hrDepois != codigos::kOk) {
      // Stopped between a line of the list of created files and the header that vouches for it.
      ASSERT_EQ(hrDepois, codigos::kDadosNaoConferem);
      ASSERT_FALSE(plataforma::Arquivos().Apaga(empresa.Caminho("QZDATABASE_FILE_CTRL.DAT")));
      ASSERT_EQ(Abre(empresa), codigos::kOk);
    }
    ASSERT_EQ(empresa.Le("DFVEIC.DAT"), Base("abc"));
    ASSERT_EQ(empresa.Le("DFVEIVS.DAT"), kVersao1);
    ASSERT_FALSE(empresa.Existe("DFVEIC.TRA"));
    ASSERT_FALSE(empresa.Existe("DFVEIVS.TRA"));
    if (!bDisparou) {
      ASSERT_EQ(hr, codigos::kOk);
      break;
    }
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

/// The journal of an earlier program, found after the record file was rewritten.
TEST_F(Conversao, DiarioAntigoEContinuado) {
  m_empresa.Escreve("DFVEIC.DAT", Base("ab"));
  m_empresa.Escreve("DFVEIVS.TRA", kVersao1);
  EXPECT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(m_empresa.Le("DFVEIC.DAT"), Base("ab"));
  EXPECT_EQ(m_empresa.Le("DFVEIVS.DAT"), kVersao1);
  EXPECT_FALSE(m_empresa.Existe("DFVEIVS.TRA"));
  EXPECT_FALSE(m_empresa.Existe("DFVEIVSD.TRA"));
}

/// A journal that cannot be read just now is not taken for none.
TEST_F(Conversao, DiarioPresoFazEsperar) {
  m_empresa.Escreve("DFVEIC.DAT", Base("ab"));
  m_empresa.Escreve("DFVEIVSD.TRA", kVersao1);
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
  for (std::size_t n = 1;; ++n) {
    SCOPED_TRACE(testing::Message() << "fault " << n);
    apoio::EmpresaComBase empresa;
    empresa.Escreve("DFVEIC.DAT", Base("0abc"));
    m_falhas.Arma({apoio::kOpTodas, empresa.Caminho(""), n, false, plataforma::FalhaWin32(1117), 100});
    const HRESULT hr = Abre(empresa);
    const bool bDisparou = m_falhas.Disparou();
    m_falhas.Desarma();
    if (Falhou(hr)) {
      ASSERT_EQ(Abre(empresa), codigos::kOk);
    }
    ASSERT_EQ(empresa.Le("DFVEIC.DAT"), Base("abc"));
    if (!bDisparou) {
      break;
    }
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
