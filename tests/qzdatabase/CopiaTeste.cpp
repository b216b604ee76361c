// Whole-file copies and companions.

#include "core/qzdatabase/arquivo/QZFileBase.h"
#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

class Copia : public ComBanco {
protected:
  HRESULT CopiaPara(const apoio::EmpresaTeste &outra) { return Arquivo().CopiaArquivoPara(outra.Codigo(), QZ_DF); }

  apoio::EmpresaComBase m_outra;
};

TEST_F(Copia, ByteAByteESemEntradaNaLista) {
  std::string grande;
  for (std::uint32_t n = 0; n < 40000; ++n) {  // more than one piece
    grande += Bytes(n, n);
  }
  m_outra.Escreve("TESTE.DAT", "what was there");
  m_outra.Escreve(kArquivoControle, std::string("\x09\0\0\0TESTE.DAT", 13));
  for (const std::string &dados : {Bytes(1, 3), grande}) {
    m_empresa.Escreve("TESTE.DAT", dados);
    ASSERT_EQ(Abre(), codigos::kOk);
    ASSERT_EQ(CopiaPara(m_outra), codigos::kOk);
    RegTeste reg;
    EXPECT_EQ(Arquivo().Le(3, &reg), codigos::kOk) << "the source goes on";
    ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
    EXPECT_EQ(m_outra.LeInteiro("TESTE.DAT"), m_empresa.LeInteiro("TESTE.DAT"));
    EXPECT_EQ(m_outra.Le("TESTE.DAT"), dados);
    EXPECT_EQ(m_outra.Le(kArquivoControle), std::string(4, '\0'));
  }
  EXPECT_EQ(m_banco.Inicializa(m_outra.Dono()), codigos::kOk) << "the copy is a base";
}

TEST_F(Copia, SemOrigemODestinoSome) {
  m_outra.Escreve("TESTE.DAT", Bytes(1, 1));
  m_outra.Escreve(kArquivoControle, std::string("\x09\0\0\0TESTE.DAT", 13));
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(CopiaPara(m_outra), codigos::kOk);
  EXPECT_FALSE(m_outra.Existe("TESTE.DAT"));
  EXPECT_EQ(m_banco.Inicializa(m_outra.Dono()), codigos::kOk) << "gone on purpose";
}

TEST_F(Copia, RecusaDestinoIgualOuPreso) {
  m_empresa.Escreve("TESTE.DAT", Bytes(1, 2));
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(CopiaPara(m_empresa), codigos::kArquivoNaoApagado);
  EXPECT_TRUE(m_relogio.Esperas().empty());
  m_outra.Escreve("TESTE.DAT", "held");
  m_falhas.Arma({apoio::kOpApaga, m_outra.Caminho("TESTE.DAT"), 1, true, plataforma::FalhaWin32(32), {}});
  EXPECT_EQ(CopiaPara(m_outra), codigos::kArquivoNaoApagado);
  EXPECT_EQ(m_falhas.Vistas(), 50U);
  EXPECT_EQ(m_outra.LeInteiro("TESTE.DAT"), "held");
  m_falhas.Arma({apoio::kOpApaga, m_outra.Caminho("TESTE.DAT"), 1, false, plataforma::FalhaWin32(32), {}});
  EXPECT_EQ(CopiaPara(m_outra), codigos::kOk) << "a short hold is ridden out";
  EXPECT_EQ(Disco("TESTE.DAT"), Bytes(1, 2));
  EXPECT_EQ(m_outra.Le("TESTE.DAT"), Bytes(1, 2));
}

/// The deletion before the copy is in the source's own module, whatever the destination's is.
TEST_F(Copia, ParaOutroModuloApagaODoModuloDaOrigem) {
  m_outra.CriaSubpasta("NFe");
  m_outra.Escreve("TESTE.DAT", "of the source's module");
  m_empresa.Escreve("TESTE.DAT", Bytes(1, 2));
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(Arquivo().CopiaArquivoPara(m_outra.Codigo(), QZ_NFE), codigos::kOk);
  EXPECT_FALSE(m_outra.Existe("TESTE.DAT"));
  EXPECT_EQ(Disco("TESTE.DAT"), Bytes(1, 2));
  EXPECT_EQ(m_outra.LeInteiro("NFe\\TESTE.DAT"), m_empresa.LeInteiro("TESTE.DAT"));
}

TEST_F(Copia, FalhaEmCadaOperacaoPoupaAOrigem) {
  m_empresa.Escreve("TESTE.DAT", Bytes(1, 5));
  for (apoio::SerieFalhas serie(m_falhas, {.gravaAntes = 9}); serie.Proxima();) {
    ASSERT_EQ(Abre(), codigos::kOk);
    m_outra.Escreve("TESTE.DAT", "old");
    const HRESULT hr = serie.Roda([&] { return CopiaPara(m_outra); });
    if (Falhou(hr)) {
      ASSERT_EQ(CopiaPara(m_outra), codigos::kOk) << "a second try works";
    }
    ASSERT_EQ(Disco("TESTE.DAT"), Bytes(1, 5));
    ASSERT_EQ(m_outra.Le("TESTE.DAT"), Bytes(1, 5));
  }
}

TEST_F(Copia, CompanheiroOffline) {
  ASSERT_EQ(Abre(), codigos::kOk);
  EXPECT_EQ(Arquivo().DeletaArquivoOffline(), codigos::kOk) << "none is fine";
  m_empresa.Escreve("TESTE.OFL", "x");
  m_falhas.Arma({apoio::kOpApaga, "TESTE.OFL", 1, true, plataforma::FalhaWin32(32), {}});
  EXPECT_EQ(Arquivo().DeletaArquivoOffline(), codigos::kOfflineNaoApagado);
  EXPECT_EQ(m_falhas.Vistas(), 50U);
  EXPECT_EQ(m_relogio.Esperas(), std::vector<std::uint32_t>(50, 10));
  m_falhas.Desarma();
  EXPECT_EQ(Arquivo().DeletaArquivoOffline(), codigos::kOk);
  EXPECT_FALSE(m_empresa.Existe("TESTE.OFL"));
}

TEST_F(Copia, RenomeiaGroup) {
  struct Caso {
    const char *grupo;
    std::vector<std::string> movidos;
  };
  const Caso casos[] = {{"DF??.DAT", {"DF01", "DF02"}}, {"DF?.DAT", {"DF7"}}, {"df07x.DAT", {"DF07X"}}, {"ZZ.DAT", {}}};
  for (const Caso &caso : casos) {
    SCOPED_TRACE(caso.grupo);
    apoio::EmpresaComBase empresa;
    ASSERT_EQ(m_banco.Inicializa(empresa.Dono()), codigos::kOk);
    const std::vector<std::string> nomes{"DF01", "DF02", "DF7", "DF123", "DFX1", "DF07X", "DF"};
    for (const std::string &nome : nomes) {
      empresa.Escreve(nome + ".TRA", "new");
      empresa.Escreve(nome + ".DAT", "old");
    }
    empresa.Escreve("DF03.TRAX", "no companion");
    EXPECT_EQ(m_banco.RenomeiaGroup(caso.grupo), codigos::kOk);
    for (const std::string &nome : nomes) {
      const bool bMovido = std::find(caso.movidos.begin(), caso.movidos.end(), nome) != caso.movidos.end();
      EXPECT_EQ(empresa.LeInteiro(nome + ".DAT"), bMovido ? "new" : "old") << nome;
      EXPECT_EQ(empresa.Existe(nome + ".TRA"), !bMovido) << nome;
    }
    EXPECT_TRUE(empresa.Existe("DF03.TRAX"));
  }
}

TEST_F(Copia, FalhaEmCadaOperacaoDoGrupo) {
  const std::vector<std::string> nomes{"DF1", "DF2", "DF3"};
  ASSERT_EQ(Abre(), codigos::kOk);
  const apoio::PlanoFalha plano{.trecho = "DF", .falha = plataforma::FalhaWin32(5)};
  for (apoio::SerieFalhas serie(m_falhas, plano, apoio::Duracao::Persistente); serie.Proxima();) {
    for (const std::string &nome : nomes) {
      m_empresa.Escreve(nome + ".TRA", "new");
      m_empresa.Escreve(nome + ".DAT", "old");
    }
    const HRESULT hr = serie.Roda([&] { return m_banco.RenomeiaGroup("DF?.DAT"); });
    EXPECT_EQ(Falhou(hr), serie.Disparou());
    for (const std::string &nome : nomes) {
      EXPECT_EQ(m_empresa.LeInteiro(nome + ".DAT"), m_empresa.Existe(nome + ".TRA") ? "old" : "new");
    }
    EXPECT_EQ(m_banco.RenomeiaGroup("DF?.DAT"), codigos::kOk) << "a second try works";
  }
}

}  // namespace
