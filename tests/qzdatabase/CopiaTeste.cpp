// Whole-file copies and companions.

#include "core/platform/Textos.h"
#include "core/qzdatabase/arquivo/QZFileBase.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

class Copia : public ComBanco {
protected:
  HRESULT CopiaPara(const apoio::EmpresaTeste &outra) { return Arquivo().CopiaArquivoPara(outra.Codigo(), QZ_DF); }

  apoio::EmpresaComBase m_outra;
};

/// Where the source has no file the destination has none. What was there is deleted in the source's own module,
/// whatever the destination's is.
TEST_F(Copia, ByteAByteESemEntradaNaLista) {
  m_outra.CriaSubpasta("NFe");
  const std::tuple<std::optional<std::string>, ModuloQZ, const char *> casos[] = {
      {std::nullopt, QZ_DF, "TESTE.DAT"},
      {Bytes(1, 3), QZ_DF, "TESTE.DAT"},
      {Bytes(1, 2), QZ_NFE, "NFe\\TESTE.DAT"},
      {Bytes(1, 40000), QZ_DF, "TESTE.DAT"}};  // more than one piece
  for (const auto &[dados, eModulo, lpDestino] : casos) {
    m_outra.Escreve("TESTE.DAT", "what was there");
    m_outra.Escreve(kArquivoControle, Linhas({"TESTE.DAT"}));
    Poe("TESTE.DAT", dados);
    ASSERT_EQ(Abre(), codigos::kOk);
    ASSERT_EQ(Arquivo().CopiaArquivoPara(m_outra.Codigo(), eModulo), codigos::kOk);
    EXPECT_EQ(Grava(0, Registro(9)), codigos::kOk) << "the source goes on";
    ASSERT_EQ(m_banco.Finaliza(), codigos::kOk);
    EXPECT_EQ(m_outra.Existe("TESTE.DAT"), dados && eModulo == QZ_DF);
    EXPECT_TRUE(!dados || m_outra.LeInteiro(lpDestino) == NoDisco("TESTE.DAT", *dados));
    EXPECT_EQ(m_outra.Le(kArquivoControle), std::string(4, '\0'));
  }
  EXPECT_EQ(m_banco.Inicializa(m_outra.Dono()), codigos::kOk) << "the copy is a base";
}

TEST_F(Copia, RecusaDestinoIgualOuPreso) {
  Poe("TESTE.DAT", Bytes(1, 2));
  ASSERT_EQ(Abre(), codigos::kOk);
  apoio::RegistroTeste registro;
  registro.DefineTexto(CString(kChaveSuite) + "Empresas\\MESMA", "DF", plataforma::Maiusculas(m_empresa.Caminho("")));
  for (const CString &sMesma : {m_empresa.Codigo(), CString("MESMA")}) {
    EXPECT_EQ(Arquivo().CopiaArquivoPara(sMesma, QZ_DF), codigos::kArquivoNaoApagado);
    EXPECT_TRUE(m_relogio.Esperas().empty());
  }
  m_outra.Escreve("TESTE.DAT", "held");
  Falha(apoio::kOpApaga, m_outra.Caminho("TESTE.DAT"), 32);
  EXPECT_EQ(CopiaPara(m_outra), codigos::kArquivoNaoApagado);
  EXPECT_EQ(m_relogio.Esperas(), std::vector<std::uint32_t>(50, 10));
  EXPECT_EQ(m_outra.LeInteiro("TESTE.DAT"), "held");
  Falha(apoio::kOpApaga, m_outra.Caminho("TESTE.DAT"), 32, false);
  EXPECT_EQ(CopiaPara(m_outra), codigos::kOk) << "a short hold is ridden out";
  EXPECT_EQ(m_outra.Le("TESTE.DAT"), Bytes(1, 2));
}

/// Every failure is told, and none touches the source.
TEST_F(Copia, FalhaEmCadaOperacaoPoupaAOrigem) {
  for (apoio::SerieFalhas serie(m_falhas, {.gravaAntes = 9}); serie.Proxima();) {
    Poe("TESTE.DAT", Bytes(1, 5));
    ASSERT_EQ(Abre(), codigos::kOk);
    m_outra.Escreve("TESTE.DAT", "old");
    const HRESULT hr = serie.Roda([&] { return CopiaPara(m_outra); });
    ASSERT_TRUE(Falhou(hr) || m_outra.LeInteiro("TESTE.DAT") == NoDisco("TESTE.DAT", Bytes(1, 5)));
    ASSERT_EQ(Falhou(hr) ? CopiaPara(m_outra) : hr, codigos::kOk) << "a second try works";
    ASSERT_EQ(Disco("TESTE.DAT"), Bytes(1, 5));
    ASSERT_EQ(m_outra.Le("TESTE.DAT"), Bytes(1, 5));
  }
}

/// '?' stands for one digit anywhere in the name. What cannot be listed is not taken for empty.
TEST_F(Copia, RenomeiaGroup) {
  const std::pair<const char *, std::vector<std::string>> casos[] = {{"DF??.DAT", {"DF01", "DF02"}},
                                                                     {"DF?.DAT", {"DF7"}},
                                                                     {"DF?X.DAT", {"DF7X"}},
                                                                     {"df07x.DAT", {"DF07X"}},
                                                                     {"ZZ.DAT", {}}};
  ASSERT_EQ(Abre(), codigos::kOk);
  m_empresa.Escreve("DF03.TRAX", "no companion");
  for (const auto &[grupo, movidos] : casos) {
    SCOPED_TRACE(grupo);
    const std::vector<std::string> nomes{"DF01", "DF02", "DF7", "DF7X", "DF123", "DFX1", "DF07X", "DF"};
    for (const std::string &nome : nomes) {
      m_empresa.Escreve(nome + ".TRA", "new");
      m_empresa.Escreve(nome + ".DAT", "old");
    }
    Falha(apoio::kOpLista, "", 5);
    EXPECT_EQ(m_banco.RenomeiaGroup(grupo), codigos::kArqAcessoNegado);
    m_falhas.Desarma();
    EXPECT_EQ(m_banco.RenomeiaGroup(grupo), codigos::kOk);
    for (const std::string &nome : nomes) {
      const bool bMovido = std::find(movidos.begin(), movidos.end(), nome) != movidos.end();
      EXPECT_EQ(m_empresa.LeInteiro(nome + ".DAT"), bMovido ? "new" : "old") << nome;
      EXPECT_EQ(m_empresa.Existe(nome + ".TRA"), !bMovido) << nome;
    }
  }
  EXPECT_TRUE(m_empresa.Existe("DF03.TRAX"));
}

}  // namespace
