// What an open file does: positional reading and writing, lengths, time, and the access it was opened for.

#include <gtest/gtest.h>

#include <chrono>

#include "core/platform/Plataforma.h"
#include "tests/apoio/PastaTemporaria.h"

namespace {

using namespace plataforma;

class ConteudoArquivos : public testing::Test {
protected:
  void Abre(Acesso acesso) {
    const FalhaArquivo falha =
        Arquivos().Abre(m_caminho, {acesso, Compartilhamento::NegaNada, Criacao::AbreOuCria}, &m_arquivo);
    ASSERT_FALSE(falha) << falha.erroSO;
  }

  std::string Le(std::uint64_t posicao, std::size_t qtd) {
    std::string lido(qtd, '#');
    const FalhaArquivo falha = m_arquivo->Le(posicao, lido.data(), qtd);
    return falha ? "error " + std::to_string(falha.erroSO) : lido;
  }

  const apoio::PastaTemporaria m_pasta;
  const CString m_caminho = m_pasta / "A.DAT";
  std::unique_ptr<IArquivoAberto> m_arquivo;
};

TEST_F(ConteudoArquivos, LeEGravaNaPosicaoPedidaTambemAcimaDeQuatroGigabytes) {
  apoio::EscreveArquivo(m_caminho, "0123456789");
  Abre(Acesso::LeituraEscrita);
  const struct {
    std::uint64_t posicao;
    std::size_t qtd;
    const char *esperado;
  } casos[] = {{0, 10, "0123456789"}, {7, 3, "789"},       {10, 0, ""},
               {9, 2, "error 38"},    {10, 1, "error 38"}, {std::uint64_t{1} << 33, 1, "error 38"}};
  for (const auto &caso : casos) {
    EXPECT_EQ(Le(caso.posicao, caso.qtd), caso.esperado) << caso.posicao;
  }
  EXPECT_FALSE(m_arquivo->Grava(2, "XY", 2));
  EXPECT_FALSE(m_arquivo->Grava(1, "", 0));
  EXPECT_FALSE(m_arquivo->Descarrega());
  EXPECT_EQ(apoio::LeArquivo(m_caminho), "01XY456789");
  EXPECT_FALSE(m_arquivo->AjustaTamanho(4));
  EXPECT_FALSE(m_arquivo->AjustaTamanho(6));
  const std::uint64_t longe = (std::uint64_t{1} << 32) + 1;
  std::uint64_t tamanho = 0;
  std::uint64_t peloNome = 0;
  ASSERT_FALSE(m_arquivo->Grava(longe, "longe", 5));
  EXPECT_FALSE(m_arquivo->Tamanho(&tamanho));
  EXPECT_FALSE(Arquivos().TamanhoDe(m_caminho, &peloNome));
  EXPECT_EQ(tamanho, longe + 5);
  EXPECT_EQ(peloNome, longe + 5);
  EXPECT_EQ(Le(longe, 5), "longe");
  EXPECT_EQ(Le(0, 7), std::string("01XY\0\0\0", 7)) << "the position must not lose its upper half";
}

TEST_F(ConteudoArquivos, SoFazOQueOModoPermite) {
  apoio::EscreveArquivo(m_caminho, "0123456789");
  Abre(Acesso::Leitura);
  EXPECT_EQ(m_arquivo->Grava(0, "x", 1).erroSO, 5u);
  EXPECT_TRUE(m_arquivo->AjustaTamanho(0));
  Abre(Acesso::Escrita);
  EXPECT_EQ(Le(0, 1), "error 5");
  EXPECT_FALSE(m_arquivo->Grava(0, "x", 1));
  EXPECT_EQ(apoio::LeArquivo(m_caminho), "x123456789");
}

TEST_F(ConteudoArquivos, UltimaEscritaMostraAMudanca) {
  apoio::EscreveArquivo(m_caminho, "1");
  Abre(Acesso::Leitura);
  std::uint64_t antes = 0;
  std::uint64_t depois = 0;
  ASSERT_FALSE(m_arquivo->UltimaEscrita(&antes));
  // The system's clock for files moves in steps, so the change shows only with the next one.
  const auto limite = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (depois <= antes && std::chrono::steady_clock::now() < limite) {
    apoio::EscreveArquivo(m_caminho, "2");
    ASSERT_FALSE(m_arquivo->UltimaEscrita(&depois));
  }
  EXPECT_GT(depois, antes);
}

}  // namespace
