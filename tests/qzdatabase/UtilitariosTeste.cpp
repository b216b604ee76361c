// Rewriting and removing record files.

#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

class Utilitarios : public ComBanco {
protected:
  HRESULT Remove(const CString &sNome) { return CQZDataBaseUtil::RemoveRegistroZero<RegTeste>(&m_dono, QZ_DF, sNome); }

  CQZProfilerEmpresa m_dono = m_empresa.Dono();
};

TEST_F(Utilitarios, RemoveRegistroZero) {
  struct Caso {
    const char *nome;
    std::uint32_t registros;
    const char *companheiro;  ///< content of a companion that an interrupted run left
  };
  const Caso casos[] = {{"three", 3, nullptr},
                        {"two", 2, nullptr},
                        {"stale companion", 3, "0123456789abcdef"},
                        {"torn companion", 3, "torn"},
                        {"one, stale", 1, "0123456789abcdef"},
                        {"one", 1, nullptr}};
  for (const Caso &caso : casos) {
    SCOPED_TRACE(caso.nome);
    m_empresa.Escreve("DADOS.DAT", Bytes(1, caso.registros));
    if (caso.companheiro != nullptr) {
      m_empresa.Escreve("DADOS.TRA", caso.companheiro);
    }
    EXPECT_EQ(Remove("DADOS.DAT"), codigos::kOk);
    EXPECT_FALSE(m_empresa.Existe("DADOS.TRA"));
    if (caso.registros > 1) {
      EXPECT_EQ(m_empresa.Le("DADOS.DAT"), Bytes(2, caso.registros));
    } else {
      EXPECT_FALSE(m_empresa.Existe("DADOS.DAT"));
    }
  }
  EXPECT_EQ(Remove("NADA.DAT"), codigos::kOk);
}

TEST_F(Utilitarios, CompanheiroSemArquivoEAUnicaCopia) {
  m_empresa.Escreve("DADOS.TRA", Bytes(1, 2));
  EXPECT_EQ(Remove("DADOS.DAT"), codigos::kOk);
  EXPECT_EQ(m_empresa.Le("DADOS.DAT"), Bytes(1, 2));
  EXPECT_FALSE(m_empresa.Existe("DADOS.TRA"));
  m_empresa.Escreve("OUTRO.TRA", "torn");
  EXPECT_EQ(Remove("OUTRO.DAT"), codigos::kTamanhoNaoMultiplo);
  EXPECT_EQ(m_empresa.Le("OUTRO.TRA"), "torn") << "never deleted";
}

TEST_F(Utilitarios, FalhaEmCadaOperacaoDeixaOVelhoOuONovo) {
  const apoio::PlanoFalha plano{.trecho = "DADOS", .falha = plataforma::FalhaWin32(112), .gravaAntes = 9};
  for (apoio::SerieFalhas serie(m_falhas, plano, apoio::Duracao::Ambas); serie.Proxima();) {
    m_empresa.Escreve("DADOS.DAT", Bytes(1, 4));
    const HRESULT hr = serie.Roda([&] { return Remove("DADOS.DAT"); });
    ASSERT_EQ(m_empresa.Le("DADOS.DAT"), Falhou(hr) ? Bytes(1, 4) : Bytes(2, 4));
    if (!serie.Persistente()) {
      ASSERT_FALSE(m_empresa.Existe("DADOS.TRA"));
    }
    if (Falhou(hr)) {
      ASSERT_EQ(Remove("DADOS.DAT"), codigos::kOk) << "a second try works";
      ASSERT_EQ(m_empresa.Le("DADOS.DAT"), Bytes(2, 4));
    }
  }
}

TEST_F(Utilitarios, FormaDeMascara) {
  m_empresa.Escreve("DFX1.DAT", Bytes(1, 2));
  m_empresa.Escreve("DF12.DATX", Bytes(1, 2));
  m_empresa.Escreve("DF123.DAT", Bytes(1, 2));
  EXPECT_EQ(Remove("DF??.DAT"), codigos::kOk) << "none fits";
  EXPECT_EQ(m_empresa.Le("DFX1.DAT"), Bytes(1, 2));
  m_empresa.Escreve("DF07.DAT", Bytes(1, 3));
  m_empresa.Escreve("DF08.DAT", Bytes(1, 3));
  EXPECT_EQ(Remove("DF??.DAT"), codigos::kOk);
  EXPECT_EQ(m_empresa.Le("DF07.DAT"), Bytes(2, 3)) << "the first one";
  EXPECT_EQ(m_empresa.Le("DF08.DAT"), Bytes(1, 3)) << "and no other";
  EXPECT_EQ(m_empresa.Le("DF12.DATX"), Bytes(1, 2));
  EXPECT_EQ(CQZDataBaseUtil::RemoveRegistroZeroMascara<RegTeste>(&m_dono, QZ_DF, "DF07.DAT"),
            codigos::kMascaraSemCuringa);
}

TEST_F(Utilitarios, RenomeiaEDeleta) {
  const CString &sEmpresa = m_empresa.Codigo();
  m_empresa.Escreve("DADOS.DAT", "old");
  EXPECT_EQ(CQZDataBaseUtil::MoveTRA(sEmpresa, QZ_DF, "DADOS.DAT"), codigos::kTraNaoRenomeado);
  EXPECT_EQ(m_empresa.Le("DADOS.DAT"), "old") << "no companion, nothing deleted";
  m_empresa.Escreve("DADOS.TRA", "new");
  m_falhas.Arma({apoio::kOpMove, "", 1, true, plataforma::FalhaWin32(5), {}});
  EXPECT_EQ(CQZDataBaseUtil::RenomeiaArquivoTRA(sEmpresa, QZ_DF, "DADOS.DAT"), codigos::kTraNaoRenomeado);
  EXPECT_EQ(m_falhas.Vistas(), 50U);
  EXPECT_EQ(m_relogio.Esperas().size(), 50U);
  m_falhas.Arma({apoio::kOpMove, "", 1, false, plataforma::FalhaWin32(5), {}});
  EXPECT_EQ(CQZDataBaseUtil::RenomeiaArquivoTRA(sEmpresa, QZ_DF, "DADOS.DAT"), codigos::kOk);
  EXPECT_EQ(m_empresa.Le("DADOS.DAT"), "new");
  m_falhas.Arma({apoio::kOpApaga, "", 1, true, plataforma::FalhaWin32(32), {}});
  EXPECT_EQ(CQZDataBaseUtil::DeletaArquivo(sEmpresa, QZ_DF, "DADOS.DAT"), codigos::kArquivoNaoApagado);
  EXPECT_EQ(CQZDataBaseUtil::RenomeiaArquivoTRA(sEmpresa, QZ_DF, "DADOS.DAT"), codigos::kArquivoNaoApagado);
  m_falhas.Desarma();
  EXPECT_EQ(CQZDataBaseUtil::RenomeiaArquivoTRA(sEmpresa, QZ_DF, "DADOS.DAT"), codigos::kOk);
  EXPECT_FALSE(m_empresa.Existe("DADOS.DAT"));
  EXPECT_EQ(CQZDataBaseUtil::DeletaArquivo(sEmpresa, QZ_DF, "DADOS.DAT"), codigos::kOk) << "missing is fine";
}

}  // namespace
