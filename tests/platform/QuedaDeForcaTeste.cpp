// The model of a power cut that other tests rely on.

#include <cstring>
#include <functional>

#include "tests/apoio/ArquivosComQuedaDeForca.h"
#include "tests/apoio/PastaTemporaria.h"

namespace {

using namespace plataforma;
using apoio::Queda;
using Passo = std::function<FalhaArquivo(IArquivoAberto &)>;

Passo Grava(std::uint64_t posicao, const char *texto) {
  return [=](IArquivoAberto &arquivo) { return arquivo.Grava(posicao, texto, std::strlen(texto)); };
}
const Passo kDescarrega = [](IArquivoAberto &arquivo) { return arquivo.Descarrega(); };
const Passo kCorta = [](IArquivoAberto &arquivo) { return arquivo.AjustaTamanho(2); };

class QuedaDeForca : public testing::Test {
protected:
  void Faz(const CString &nome, Criacao criacao, const std::vector<Passo> &passos) {
    std::unique_ptr<IArquivoAberto> arquivo;
    ASSERT_FALSE(m_forca.Abre(m_pasta / nome, {Acesso::Escrita, Compartilhamento::Exclusivo, criacao}, &arquivo));
    for (const Passo &passo : passos) {
      ASSERT_FALSE(passo(*arquivo));
    }
    EXPECT_THROW(m_forca.CortaForca(), std::logic_error) << "still open";
  }

  const apoio::PastaTemporaria m_pasta;
  apoio::ArquivosComQuedaDeForca m_forca{*ServicosDoSistema().arquivos};
};

TEST_F(QuedaDeForca, FicaOQueFoiDescarregado) {
  const struct {
    const char *nome;
    const char *antes;
    Criacao criacao;
    std::vector<Passo> passos;
    std::string mantido;
    std::string perdido;
  } casos[] = {
      {"overwritten", "velho", Criacao::SoExistente, {Grava(1, "XX")}, "velho", "velho"},
      {"and flushed", "velho", Criacao::SoExistente, {Grava(1, "XX"), kDescarrega}, "vXXho", "vXXho"},
      {"longer", "velho", Criacao::AbreOuCria, {Grava(4, "XX")}, {"velho\0", 6}, "velho"},
      {"cut", "velho", Criacao::SoExistente, {kCorta}, "ve", "velho"},
      {"emptied", "velho", Criacao::CriaVazio, {Grava(0, "X")}, "v", "velho"},
      {"new", nullptr, Criacao::AbreOuCria, {Grava(0, "XX")}, {"\0\0", 2}, ""},
      {"new, flushed", nullptr, Criacao::CriaVazio, {Grava(0, "X"), kDescarrega, Grava(1, "Y")}, {"X\0", 2}, "X"},
  };
  for (const auto &caso : casos) {
    for (const Queda eQueda : {Queda::TamanhoMantido, Queda::TamanhoPerdido}) {
      const bool bMantido = eQueda == Queda::TamanhoMantido;
      SCOPED_TRACE(testing::Message() << caso.nome << (bMantido ? ", length kept" : ", length lost"));
      static_cast<void>(Arquivos().Apaga(m_pasta / "A"));
      if (caso.antes != nullptr) {
        apoio::EscreveArquivo(m_pasta / "A", caso.antes);
      }
      m_forca.Prepara(eQueda);
      Faz("A", caso.criacao, caso.passos);
      m_forca.CortaForca();
      EXPECT_EQ(apoio::LeArquivo(m_pasta / "A"), bMantido ? caso.mantido : caso.perdido);
    }
  }
}

TEST_F(QuedaDeForca, NomesMudamNaHora) {
  m_forca.Prepara(Queda::TamanhoPerdido);
  apoio::EscreveArquivo(m_pasta / "A.DAT", "velho");
  Faz("A.DAT", Criacao::SoExistente, {Grava(0, "X")});
  Faz("A.TRA", Criacao::CriaVazio, {Grava(0, "no"), kDescarrega, Grava(2, "vo")});
  Faz("B.DAT", Criacao::CriaVazio, {Grava(0, "X")});
  EXPECT_FALSE(m_forca.MoveSubstituindo(m_pasta / "A.TRA", m_pasta / "A.DAT"));
  EXPECT_FALSE(m_forca.Apaga(m_pasta / "B.DAT"));
  m_forca.CortaForca();
  EXPECT_EQ(apoio::LeArquivo(m_pasta / "A.DAT"), "no");
  EXPECT_FALSE(apoio::ExisteNoDisco(m_pasta / "A.TRA"));
  EXPECT_FALSE(apoio::ExisteNoDisco(m_pasta / "B.DAT"));
}

/// From the third change on nothing reaches the disk, but half of the write that ends the process.
TEST_F(QuedaDeForca, AposAQuedaNadaMuda) {
  for (const Queda eQueda : {Queda::DoProcesso, Queda::TamanhoMantido}) {
    m_forca.Prepara(eQueda, 3);
    std::unique_ptr<IArquivoAberto> arquivo;
    const ModoAbertura modo{Acesso::LeituraEscrita, Compartilhamento::Exclusivo, Criacao::CriaVazio};
    ASSERT_FALSE(m_forca.Abre(m_pasta / "A", modo, &arquivo));
    EXPECT_FALSE(arquivo->Grava(0, "ab", 2));
    EXPECT_FALSE(m_forca.Caiu());
    EXPECT_TRUE(arquivo->Grava(2, "cd", 2));
    EXPECT_TRUE(m_forca.Caiu());
    EXPECT_TRUE(arquivo->Grava(0, "XXXX", 4));
    EXPECT_TRUE(arquivo->AjustaTamanho(0));
    EXPECT_TRUE(arquivo->Descarrega());
    arquivo.reset();
    EXPECT_TRUE(m_forca.Abre(m_pasta / "A", modo, &arquivo));
    EXPECT_TRUE(m_forca.Apaga(m_pasta / "A"));
    EXPECT_TRUE(m_forca.MoveSubstituindo(m_pasta / "A", m_pasta / "B"));
    m_forca.CortaForca();
    EXPECT_EQ(apoio::LeArquivo(m_pasta / "A"), eQueda == Queda::DoProcesso ? "abc" : std::string(2, '\0'));
    ASSERT_FALSE(Arquivos().Apaga(m_pasta / "A"));
  }
}

}  // namespace
