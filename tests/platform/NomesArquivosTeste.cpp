// Operations on names: moving, deleting and listing.

#include <gtest/gtest.h>

#include "core/platform/Plataforma.h"
#include "tests/apoio/PastaTemporaria.h"

namespace {

using namespace plataforma;

const Compartilhamento kCompartilhamentos[] = {Compartilhamento::Exclusivo, Compartilhamento::NegaEscrita,
                                               Compartilhamento::NegaNada};

class NomesArquivos : public testing::Test {
protected:
  std::unique_ptr<IArquivoAberto> Abre(const CString &nome, Compartilhamento compartilhamento) {
    std::unique_ptr<IArquivoAberto> arquivo;
    EXPECT_FALSE(Arquivos().Abre(m_pasta / nome, {Acesso::Leitura, compartilhamento}, &arquivo));
    return arquivo;
  }

  std::uint32_t Move(const CString &origem, const CString &destino) {
    return Arquivos().MoveSubstituindo(m_pasta / origem, m_pasta / destino).erroSO;
  }

  std::uint32_t Apaga(const CString &nome) { return Arquivos().Apaga(m_pasta / nome).erroSO; }

  const apoio::PastaTemporaria m_pasta;
};

TEST_F(NomesArquivos, MoveSubstitui) {
  apoio::EscreveArquivo(m_pasta / "A.TRA", "novo");
  EXPECT_EQ(Move("A.TRA", "B.DAT"), 0u) << "onto a free name";
  EXPECT_FALSE(apoio::ExisteNoDisco(m_pasta / "A.TRA"));
  apoio::EscreveArquivo(m_pasta / "A.TRA", "mais novo");
  EXPECT_EQ(Move("A.TRA", "B.DAT"), 0u) << "onto a file";
  EXPECT_EQ(apoio::LeArquivo(m_pasta / "B.DAT"), "mais novo");
  EXPECT_EQ(Move("B.DAT", "B.DAT"), 0u) << "onto itself";
  EXPECT_EQ(apoio::LeArquivo(m_pasta / "B.DAT"), "mais novo");
}

TEST_F(NomesArquivos, MoveRecusado) {
  m_pasta.CriaSubpasta("SUB");
  apoio::EscreveArquivo(m_pasta / "A.TRA", "origem");
  apoio::EscreveArquivo(m_pasta / "B.DAT", "destino");
  EXPECT_EQ(Move("NADA", "B.DAT"), 2u);
  EXPECT_EQ(Move("NADA\\A.TRA", "B.DAT"), 3u);
  EXPECT_EQ(Move("A.TRA", "NADA\\B.DAT"), 3u);
  EXPECT_EQ(Move("A.TRA", "SUB"), 5u);
  for (const Compartilhamento compartilhamento : kCompartilhamentos) {
    std::unique_ptr<IArquivoAberto> aberto = Abre("B.DAT", compartilhamento);
    EXPECT_EQ(Move("A.TRA", "B.DAT"), 5u) << "target open";
    aberto = Abre("A.TRA", compartilhamento);
    EXPECT_EQ(Move("A.TRA", "B.DAT"), 32u) << "source open";
    EXPECT_EQ(Move("A.TRA", "LIVRE"), 32u) << "source open, free name";
  }
  if (!apoio::SomenteLeituraSemEfeito()) {  // Wine replaces a read-only file
    apoio::MarcaSomenteLeitura(m_pasta / "B.DAT", true);
    EXPECT_EQ(Move("A.TRA", "B.DAT"), 5u) << "target read-only";
  }
  EXPECT_EQ(apoio::LeArquivo(m_pasta / "A.TRA"), "origem");
  EXPECT_EQ(apoio::LeArquivo(m_pasta / "B.DAT"), "destino");
}

TEST_F(NomesArquivos, Apaga) {
  m_pasta.CriaSubpasta("SUB");
  EXPECT_EQ(Apaga("NADA"), 2u);
  EXPECT_EQ(Apaga("NADA\\A.DAT"), 3u);
  EXPECT_EQ(Apaga("SUB"), 5u);
  apoio::EscreveArquivo(m_pasta / "A.DAT", "x");
  for (const Compartilhamento compartilhamento : kCompartilhamentos) {
    const std::unique_ptr<IArquivoAberto> aberto = Abre("A.DAT", compartilhamento);
    EXPECT_EQ(Apaga("A.DAT"), 32u);
  }
  apoio::MarcaSomenteLeitura(m_pasta / "A.DAT", true);
  EXPECT_EQ(Apaga("A.DAT"), 5u);
  apoio::MarcaSomenteLeitura(m_pasta / "A.DAT", false);
  EXPECT_EQ(Apaga("A.DAT"), 0u);
  EXPECT_FALSE(apoio::ExisteNoDisco(m_pasta / "A.DAT"));
}

TEST_F(NomesArquivos, Lista) {
  // The third and fourth have short alias names on Windows that end in .TRA.
  for (const char *nome : {"df2.tra", "DF1.TRA", "DF3.TRAX", "X.TRACE", "DF.TRA", "DF1.TRA~", "\xC9.DAT", "SEMPONTO"}) {
    apoio::EscreveArquivo(m_pasta / nome, "");
  }
  m_pasta.CriaSubpasta("DF9.TRA");
  using Nomes = std::vector<CString>;
  Nomes nomes{"resto"};
  EXPECT_FALSE(Arquivos().Lista(m_pasta.Caminho(), &nomes));
  EXPECT_EQ(nomes, (Nomes{"DF.TRA", "DF1.TRA", "DF1.TRA~", "DF3.TRAX", "SEMPONTO", "X.TRACE", "df2.tra", "\xC9.DAT"}));
  EXPECT_EQ(Arquivos().Lista(m_pasta / "NADA\\", &nomes).causa, CausaArquivo::CaminhoInvalido);
  EXPECT_TRUE(nomes.empty());
}

}  // namespace
