// Values of every kind in the local machine's registry.

#include "tests/apoio/RegistroTeste.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "core/platform/ChaveRegistro.h"
#include "core/platform/Plataforma.h"

namespace {

using plataforma::AbreChaveRegistro;
using plataforma::AcessoChave;
using plataforma::Registro;

/// Keys of its own for each test: the tests may run at the same time, as processes that share one registry.
class RegistroSistema : public testing::Test {
protected:
  const CString m_acima = CString("SOFTWARE\\Wow6432Node\\Tarvel\\TestePlataforma-") +
                          testing::UnitTest::GetInstance()->current_test_info()->name();
  const CString m_chave = m_acima + "\\Valores";

  void SetUp() override { m_registro.CriaChave(m_acima); }

  apoio::RegistroTeste m_registro;
};

TEST_F(RegistroSistema, Textos) {
  const CString longo(5000, 'x');
  m_registro.DefineTexto(m_chave, "Curto", "C:\\Dados\\ \xE7");
  m_registro.DefineTexto(m_chave, "Longo", longo);
  m_registro.DefineTexto(m_chave, "Vazio", "");
  m_registro.DefineTexto(m_chave, "SemFim", "sem", false);
  m_registro.DefineTexto(m_chave, "Cortado", CString("antes\0depois", 12));
  m_registro.DefineTexto(m_chave, "", "da chave");
  const struct {
    const char *nome;
    CString texto;
  } casos[] = {{"Curto", "C:\\Dados\\ \xE7"},
               {"cURTO", "C:\\Dados\\ \xE7"},
               {"Longo", longo},
               {"Vazio", ""},
               {"SemFim", "sem"},
               {"Cortado", "antes"},
               {"", "da chave"}};
  for (const auto &caso : casos) {
    EXPECT_EQ(Registro().LeTexto(m_chave, caso.nome, false), caso.texto) << caso.nome;
  }
  EXPECT_EQ(Registro().LeTexto(m_chave + "\\", "SemFim", false), "sem") << "final separator";
  EXPECT_EQ(Registro().LeTexto(CString(m_chave).replace(0, 8, "software"), "SemFim", false), "sem");
}

TEST_F(RegistroSistema, Expansao) {
  m_registro.DefineTextoExpansivel(m_chave, "Expansivel", "%path%;%KALVO_NAO_EXISTE%;fim");
  m_registro.DefineTexto(m_chave, "Literal", "%PATH%");
  const char *const caminho = std::getenv("PATH");
  ASSERT_NE(caminho, nullptr);
  EXPECT_EQ(Registro().LeTexto(m_chave, "Expansivel", true), CString(caminho) + ";%KALVO_NAO_EXISTE%;fim");
  EXPECT_EQ(Registro().LeTexto(m_chave, "Expansivel", false), "%path%;%KALVO_NAO_EXISTE%;fim");
  EXPECT_EQ(Registro().LeTexto(m_chave, "Literal", true), "%PATH%");
}

TEST_F(RegistroSistema, NumerosETiposTrocados) {
  m_registro.DefineNumero(m_chave, "Numero", 0xFFFFFFFEu);
  m_registro.DefineTexto(m_chave, "Texto", "123");
  m_registro.DefineBinario(m_chave, "Binario", CString("\1\0\0\0", 4));
  EXPECT_EQ(Registro().LeNumero(m_chave, "Numero"), 0xFFFFFFFEu);
  for (const char *nome : {"Texto", "Binario", "Ausente"}) {
    EXPECT_EQ(Registro().LeNumero(m_chave, nome), std::nullopt) << nome;
  }
  for (const char *nome : {"Numero", "Binario", "Ausente"}) {
    EXPECT_EQ(Registro().LeTexto(m_chave, nome, true), std::nullopt) << nome;
  }
}

TEST_F(RegistroSistema, NadaFicaGuardado) {
  {
    apoio::RegistroTeste registro;
    registro.DefineTexto(m_chave, "Nome", "antes");
    EXPECT_EQ(Registro().LeTexto(m_chave, "Nome", false), "antes");
    registro.DefineTexto(m_chave, "Nome", "depois");
    EXPECT_EQ(Registro().LeTexto(m_chave, "Nome", false), "depois");
    registro.RemoveValor(m_chave, "Nome");
    EXPECT_EQ(Registro().LeTexto(m_chave, "Nome", false), std::nullopt);
    EXPECT_TRUE(Registro().ExisteChave(m_chave));
    EXPECT_TRUE(Registro().ExisteChave(m_acima + "\\")) << "a key above";
    registro.RemoveChave(m_acima);
    EXPECT_FALSE(Registro().ExisteChave(m_chave));
    registro.CriaChave(m_chave);
  }
  EXPECT_FALSE(Registro().ExisteChave(m_chave));
  EXPECT_EQ(Registro().LeTexto(m_chave, "Nome", false), std::nullopt);
  EXPECT_EQ(Registro().LeNumero(m_chave, "Nome"), std::nullopt);
}

TEST_F(RegistroSistema, AcessoDeEscritaSoAPedido) {
  m_registro.DefineTexto(m_chave, "Nome", "antes");
  EXPECT_EQ(AbreChaveRegistro(m_chave + "\\Ausente", AcessoChave::LeituraEscrita), nullptr) << "nothing is created";
  const auto leitura = AbreChaveRegistro(m_chave);
  const auto escrita = AbreChaveRegistro(m_chave + "\\", AcessoChave::LeituraEscrita);
  ASSERT_TRUE(leitura && escrita);
  EXPECT_FALSE(leitura->GravaTexto("Nome", "depois"));
  EXPECT_FALSE(leitura->CriaSubchave("Filha"));
  EXPECT_EQ(leitura->LeTexto("Nome", false), "antes");
  EXPECT_FALSE(Registro().ExisteChave(m_chave + "\\Filha"));
  EXPECT_TRUE(escrita->GravaTexto("Nome", "depois"));
  EXPECT_TRUE(escrita->CriaSubchave("Filha"));
  EXPECT_EQ(leitura->LeTexto("nome", false), "depois");
  EXPECT_TRUE(Registro().ExisteChave(m_chave + "\\Filha"));
  EXPECT_EQ(AbreChaveRegistro(m_chave, AcessoChave::Leitura, "\\\\KALVO-NAO-HA"), nullptr) << "no such machine";
}

}  // namespace
