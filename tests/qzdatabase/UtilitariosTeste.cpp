// Rewriting and removing record files.

#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

class Utilitarios : public ComBanco {
protected:
  using Conteudo = std::optional<std::string>;

  /// What is in a file, if it is there.
  Conteudo Resta(const CString &sNome) { return m_empresa.Existe(sNome) ? Conteudo(m_empresa.Le(sNome)) : Conteudo(); }
  HRESULT Remove(const CString &sNome) { return CQZDataBaseUtil::RemoveRegistroZero<RegTeste>(&m_dono, QZ_DF, sNome); }

  CQZProfilerEmpresa m_dono = m_empresa.Dono();
};

/// Beside a companion that an interrupted run has left, which is the only copy where there is no file.
TEST_F(Utilitarios, RemoveRegistroZero) {
  const std::tuple<Conteudo, Conteudo, HRESULT, Conteudo> casos[] = {
      {Bytes(1, 3), {}, codigos::kOk, Bytes(2, 3)},     {{}, {}, codigos::kOk, {}},
      {Bytes(1, 3), "torn", codigos::kOk, Bytes(2, 3)}, {Bytes(1, 1), Bytes(8, 8), codigos::kOk, {}},
      {{}, Bytes(1, 2), codigos::kOk, Bytes(1, 2)},     {{}, "torn", codigos::kTamanhoNaoMultiplo, {}}};
  for (const auto &[antes, companheiro, hr, depois] : casos) {
    SCOPED_TRACE(antes.value_or("no file") + ", " + companheiro.value_or("no companion"));
    Poe("DADOS.DAT", antes);
    Poe("DADOS.TRA", companheiro);
    EXPECT_EQ(Remove("DADOS.DAT"), hr);
    EXPECT_EQ(Resta("DADOS.DAT"), depois);
    EXPECT_EQ(Resta("DADOS.TRA"), Falhou(hr) ? companheiro : Conteudo());
  }
}

/// What comes before the move may refuse it. Where the companion is not moved that is undone; where that fails the
/// companion stays.
TEST_F(Utilitarios, TrocaRecusadaOuDesfeita) {
  Poe("DADOS.DAT", Bytes(1, 3));
  Falha(apoio::kOpMove, "", 5);
  for (const auto &[hrAntes, hrDesfaz] : {std::pair(codigos::kArqOutra, codigos::kOk),
                                          {codigos::kOk, codigos::kOk},
                                          {codigos::kOk, codigos::kArqOutra}}) {
    EXPECT_EQ(CQZDataBaseUtil::RemoveRegistroZero<RegTeste>(
                  &m_dono, QZ_DF, "DADOS.DAT", [hr = hrAntes] { return hr; }, [hr = hrDesfaz] { return hr; }),
              Falhou(hrAntes) ? hrAntes : codigos::kTraNaoRenomeado);
    EXPECT_EQ(m_empresa.Existe("DADOS.TRA"), Falhou(hrDesfaz));
  }
}

/// A companion that cannot be asked for, that somebody puts there meanwhile, or that is not on the storage device.
TEST_F(Utilitarios, CompanheiroDuvidoso) {
  Poe("DADOS.DAT", Bytes(1, 3));
  Falha(apoio::kOpDescarrega, "DADOS.TRA", 1117);
  EXPECT_EQ(Remove("DADOS.DAT"), codigos::kArqErroFisico);
  m_falhas.Arma(AntesDeAbrir("DADOS.DAT", [this] { m_empresa.Escreve("DADOS.TRA", Bytes(8, 9)); }));
  EXPECT_EQ(Remove("DADOS.DAT"), codigos::kTraNaoRenomeado);
  m_empresa.Escreve("DADOS.TRA", Bytes(8, 9));
  Falha(apoio::kOpExiste, "DADOS.DAT", 64);
  EXPECT_EQ(Remove("DADOS.DAT"), codigos::kArqOutra);
  EXPECT_EQ(m_empresa.Le("DADOS.TRA"), Bytes(8, 9));
  EXPECT_EQ(m_empresa.LeInteiro("DADOS.DAT"), NoDisco("DADOS.DAT", Bytes(1, 3)));
}

/// The first file that fits, and no other.
TEST_F(Utilitarios, FormaDeMascara) {
  for (const char *lpNome : {"DFX1.DAT", "DF12.DATX", "DF123.DAT", "DF07.DAT", "DF08.DAT"}) {
    m_empresa.Escreve(lpNome, Bytes(1, 3));
  }
  EXPECT_EQ(Remove("DF??.DAT"), codigos::kOk);
  for (const char *lpNome : {"DFX1.DAT", "DF12.DATX", "DF123.DAT", "DF07.DAT", "DF08.DAT"}) {
    EXPECT_EQ(m_empresa.Le(lpNome), Bytes(lpNome == std::string("DF07.DAT") ? 2 : 1, 3)) << lpNome;
  }
  EXPECT_EQ(Remove("ZZ??.DAT"), codigos::kOk) << "none fits";
  Falha(apoio::kOpLista, "", 5);
  EXPECT_EQ(Remove("DF??.DAT"), codigos::kArqAcessoNegado) << "not: none fits";
  EXPECT_EQ(CQZDataBaseUtil::RemoveRegistroZeroMascara<RegTeste>(&m_dono, QZ_DF, "DF07.DAT"),
            codigos::kMascaraSemCuringa);
}

TEST_F(Utilitarios, MoveEDeleta) {
  const CString &sEmpresa = m_empresa.Codigo();
  const auto renomeia = [&] { return CQZDataBaseUtil::RenomeiaArquivoTRA(sEmpresa, QZ_DF, "DADOS.DAT"); };
  const auto deleta = [&] { return CQZDataBaseUtil::DeletaArquivo(sEmpresa, QZ_DF, "DADOS.DAT"); };
  m_empresa.Escreve("DADOS.DAT", "old");
  EXPECT_EQ(CQZDataBaseUtil::MoveTRA(sEmpresa, QZ_DF, "DADOS.DAT"), codigos::kTraNaoRenomeado);
  Falha(apoio::kOpExiste, "DADOS.TRA", 64);
  EXPECT_EQ(renomeia(), codigos::kArqOutra) << "it may be there";
  EXPECT_EQ(m_empresa.Le("DADOS.DAT"), "old");
  m_empresa.Escreve("DADOS.TRA", "new");
  Falha(apoio::kOpMove, "", 5);
  EXPECT_EQ(renomeia(), codigos::kTraNaoRenomeado);
  EXPECT_EQ(m_relogio.Esperas().size(), 50U);
  Falha(apoio::kOpMove, "", 5, false);
  EXPECT_EQ(renomeia(), codigos::kOk);
  EXPECT_EQ(m_empresa.Le("DADOS.DAT"), "new");
  for (const std::uint32_t erro : {32U, 53U}) {
    Falha(apoio::kOpApaga, "", erro);
    EXPECT_EQ(deleta(), codigos::kArquivoNaoApagado);
    EXPECT_EQ(m_falhas.Vistas(), 50U);
    EXPECT_EQ(renomeia(), codigos::kArquivoNaoApagado);
  }
  m_falhas.Desarma();
  EXPECT_EQ(renomeia(), codigos::kOk) << "there is no companion, so the file goes";
  EXPECT_FALSE(m_empresa.Existe("DADOS.DAT"));
  EXPECT_EQ(deleta(), codigos::kOk) << "missing is fine";
}

}  // namespace
