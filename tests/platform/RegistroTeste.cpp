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

TEST(RegistroSistema, CadaTipoDeValorEAcessoDeEscritaSoAPedido) {
  const CString sAcima = "SOFTWARE\\Wow6432Node\\Tarvel\\TestePlataforma";
  const CString sChave = sAcima + "\\Valores";
  apoio::RegistroTeste registro;
  registro.CriaChave(sAcima);
  const char *const lpPath = std::getenv("PATH");
  ASSERT_NE(lpPath, nullptr);
  const CString longo(5000, 'x');
  const CString expansivel = "%path%;%KALVO_NAO_EXISTE%;fim";
  registro.DefineTexto(sChave, "Texto", "C:\\%PATH%\\ \xE7");
  registro.DefineTexto(sChave, "Longo", longo);
  registro.DefineTexto(sChave, "Vazio", "");
  registro.Define(sChave, "SemFim", TipoValor::Texto, "sem");
  registro.DefineTexto(sChave, "", CString("antes\0depois", 12));
  registro.Define(sChave, "Expansivel", TipoValor::TextoExpansivel, expansivel);
  registro.Define(sChave, "Numero", TipoValor::Numero, "\xFE\xFF\xFF\xFF");
  registro.Define(sChave, "Binario", TipoValor::Binario, CString("\1\0\0\0", 4));
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
    EXPECT_EQ(Registro().LeTexto(sChave, caso.nome, true), caso.texto) << caso.nome;
    EXPECT_EQ(Registro().LeNumero(sChave, caso.nome), caso.numero) << caso.nome;
  }
  EXPECT_EQ(Registro().LeTexto(sChave, "Expansivel", false), expansivel);
  EXPECT_EQ(Registro().LeTexto(CString(sChave).replace(0, 8, "software") + "\\", "SemFim", false), "sem");
  EXPECT_TRUE(Registro().ExisteChave(sAcima + "\\")) << "a key above";
  EXPECT_EQ(Registro().LeTexto(sChave + "\\Ausente", "", false), std::nullopt);

  EXPECT_EQ(AbreChaveRegistro(sChave + "\\Ausente", AcessoChave::LeituraEscrita), nullptr) << "nothing is created";
  const auto leitura = AbreChaveRegistro(sChave);
  const auto escrita = AbreChaveRegistro(sChave + "\\", AcessoChave::LeituraEscrita);
  ASSERT_TRUE(leitura && escrita);
  EXPECT_FALSE(leitura->GravaTexto("Texto", "depois"));
  EXPECT_FALSE(leitura->CriaSubchave("Filha"));
  EXPECT_EQ(leitura->LeTexto("Texto", false), "C:\\%PATH%\\ \xE7");
  EXPECT_FALSE(Registro().ExisteChave(sChave + "\\Filha"));
  EXPECT_TRUE(escrita->GravaTexto("Texto", "depois"));
  EXPECT_TRUE(escrita->CriaSubchave("Filha"));
  EXPECT_EQ(leitura->LeTexto("texto", false), "depois");
  EXPECT_TRUE(Registro().ExisteChave(sChave + "\\Filha"));
  EXPECT_EQ(AbreChaveRegistro(sChave, AcessoChave::Leitura, "\\\\KALVO-NAO-HA"), nullptr) << "no such machine";
#ifdef _WIN32
  const CString sMaquina = CString("\\\\") + std::getenv("COMPUTERNAME");
  EXPECT_NE(AbreChaveRegistro(sChave, AcessoChave::Leitura, sMaquina), nullptr) << sMaquina;
#endif
}

}  // namespace
