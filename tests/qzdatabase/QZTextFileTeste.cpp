// What is special to files of text.

#include "tests/qzdatabase/BancoTeste.h"

namespace {

using namespace std::string_literals;

using Textos = std::vector<std::string>;

class ArquivoTexto : public ComBanco {
protected:
  void Prepara(const std::string &bytes) {
    static_cast<void>(m_banco.Finaliza());
    Poe("TEXTO.DAT", bytes);
    ASSERT_EQ(Abre(), codigos::kOk);
  }
  HRESULT Grava(std::uint64_t *puiPosicao, const Textos &textos) {
    return Texto().GravaColecao(*puiPosicao, Colecao(textos));
  }
  std::vector<std::uint64_t> Offsets() {
    std::vector<std::uint64_t> offsets;
    for (std::size_t idx = 0; idx < Texto().GetPtrArrayRegistros()->GetSize(); ++idx) {
      offsets.push_back((*Texto().GetPtrArrayRegistros())[idx].uiOffset);
    }
    return offsets;
  }

  /// Length of the file's header.
  const std::uint64_t m_uiCabecalho = apoio::CabecalhosLigados() ? kTamanhoCabecalho : 0;
};

/// Where memory says that the lines stand: from the header on, but an appended one from the start of the file. Writing
/// over that counts the header twice.
TEST_F(ArquivoTexto, LugaresDasLinhas) {
  const std::uint64_t h = m_uiCabecalho;
  // The position asked for, the lines, the position given back and the places of all lines.
  const std::tuple<std::uint64_t, Textos, std::uint64_t, std::vector<std::uint64_t>> casos[] = {
      {0, {"tres", "", "x"}, 5, {0, 6, h + 14, h + 22, h + 26}},
      {2, {"trinta"}, 3, {0, 6, h + 14}},
      {1, {"UM", "DOIS"}, 1, {0, 6}},
      {1, {"", "DOIS"}, 1, {0, 4}},
      {2, {"DOIS", "x"}, 2, {0, 6, 0}},
  };
  for (const auto &[uiAntes, textos, uiDepois, offsets] : casos) {
    SCOPED_TRACE(testing::PrintToString(textos));
    Prepara(Linhas({"um", "dois"}));
    std::uint64_t uiPosicao = uiAntes;
    EXPECT_EQ(Grava(&uiPosicao, textos), codigos::kOk);
    EXPECT_EQ(uiPosicao, uiDepois);
    EXPECT_EQ(Offsets(), offsets);
  }
  Prepara(Linhas({"um"}));
  std::uint64_t uiPosicao = 0;
  EXPECT_EQ(Grava(&uiPosicao, {"dois"}), codigos::kOk);
  EXPECT_EQ(Grava(&uiPosicao, {"DOIS"}), codigos::kOk);
  const std::string sDuasVezes = Linhas({"um", "dois"}) + std::string(h != 0 ? h - 8 : 0, '\0') + Linhas({"DOIS"});
  EXPECT_EQ(Disco("TEXTO.DAT"), h != 0 ? sDuasVezes : Linhas({"um", "DOIS"}));
}

/// Lines that are many, and longer than what is read at once. A damaged end is written anew by the first append, and is
/// damaged no more.
TEST_F(ArquivoTexto, LinhasLongasEFimDanificado) {
  Textos linhas(40000, "linha");
  linhas.insert(linhas.end(), {std::string(2047, 'a'), "", std::string(2048, 'b'), std::string(300000, 'c')});
  Prepara(Linhas(linhas) + "\6\0\0\0re\0to"s);
  std::uint64_t uiPosicao = 0;
  linhas.insert(linhas.end(), {"re", "mais", std::string(70000, 'z')});
  ASSERT_EQ(Grava(&uiPosicao, {linhas.end() - 2, linhas.end()}), codigos::kOk);
  uiPosicao = 0;
  ASSERT_EQ(Grava(&uiPosicao, {"fim"}), codigos::kOk);
  EXPECT_EQ(Offsets().back(), m_uiCabecalho + Linhas(linhas).size());
  linhas.emplace_back("fim");
  EXPECT_EQ(uiPosicao, linhas.size());
  EXPECT_TRUE(Disco("TEXTO.DAT") == Linhas(linhas));
}

TEST_F(ArquivoTexto, CopiaOffline) {
  Prepara(Linhas({"a\0b"s, "", "c"}));
  m_empresa.Escreve("TEXTO.OFL", "an earlier companion");
  EXPECT_EQ(Texto().GeraArquivoOffline(), codigos::kOk);
  EXPECT_EQ(Disco("TEXTO.OFL"), Linhas({"a", "", "c"}));
  ASSERT_EQ(Abre(), codigos::kOk);
  Falha(apoio::kOpApaga, "TEXTO.OFL", 1117);
  EXPECT_EQ(Texto().GeraArquivoOffline(), codigos::kOfflineNaoApagado);
  EXPECT_EQ(m_falhas.Vistas(), 50U);
  Falha(apoio::kOpGrava, "TEXTO.OFL", 1117);
  EXPECT_EQ(Texto().GeraArquivoOffline(), codigos::kArqErroFisico);
  m_falhas.Desarma();
  Prepara("");
  EXPECT_EQ(Texto().GeraArquivoOffline(), codigos::kOk);
  EXPECT_FALSE(m_empresa.Existe("TEXTO.OFL")) << "without lines there is none";
}

}  // namespace
