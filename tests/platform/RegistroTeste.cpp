// Values of every kind in the local machine's registry.

#include "tests/apoio/RegistroTeste.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "core/platform/ChaveRegistro.h"
#include "core/platform/Plataforma.h"

namespace {

using apoio::TipoValor;
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

TEST_F(RegistroSistema, CadaTipoDeValor) {
  const char *const lpPath = std::getenv("PATH");
  ASSERT_NE(lpPath, nullptr);
  const CString longo(5000, 'x');
  const CString expansivel = "%path%;%KALVO_NAO_EXISTE%;fim";
  m_registro.DefineTexto(m_chave, "Texto", "C:\\%PATH%\\ \xE7");
  m_registro.DefineTexto(m_chave, "Longo", longo);
  m_registro.DefineTexto(m_chave, "Vazio", "");
  m_registro.Define(m_chave, "SemFim", TipoValor::Texto, "sem");
  m_registro.DefineTexto(m_chave, "", CString("antes\0depois", 12));
  m_registro.Define(m_chave, "Expansivel", TipoValor::TextoExpansivel, expansivel);
  m_registro.Define(m_chave, "Numero", TipoValor::Numero, "\xFE\xFF\xFF\xFF");
  m_registro.Define(m_chave, "Binario", TipoValor::Binario, CString("\1\0\0\0", 4));
  using Texto = std::optional<CString>;
  const struct {
    const char *nome;
    Texto texto;
    std::optional<std::uint32_t> numero;
  } casos[] = {{"tEXTO", "C:\\%PATH%\\ \xE7", {}},
               {"Longo", longo, {}},
               {"Vazio", "", {}},
               {"SemFim", "sem", {}},
               {"", "antes", {}},
               {"Expansivel", CString(lpPath) + ";%KALVO_NAO_EXISTE%;fim", {}},
               {"Numero", {}, 0xFFFFFFFEu},
               {"Binario", {}, {}},
               {"Ausente", {}, {}}};
  for (const auto &caso : casos) {
    EXPECT_EQ(Registro().LeTexto(m_chave, caso.nome, true), caso.texto) << caso.nome;
    EXPECT_EQ(Registro().LeNumero(m_chave, caso.nome), caso.numero) << caso.nome;
  }
  EXPECT_EQ(Registro().LeTexto(m_chave, "Expansivel", false), expansivel);
  EXPECT_EQ(Registro().LeTexto(CString(m_chave).replace(0, 8, "software") + "\\", "SemFim", false), "sem");
  EXPECT_TRUE(Registro().ExisteChave(m_acima + "\\")) << "a key above";
  EXPECT_EQ(Registro().LeTexto(m_chave + "\\Ausente", "", false), std::nullopt);
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
