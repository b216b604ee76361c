// Tables that must come out alike on every platform: letters that are one to the wildcard match, and error numbers.

#include "core/platform/DobraCuringa.h"

#include <gtest/gtest.h>

#include <vector>

#include "core/platform/FalhaArquivo.h"

namespace {

using namespace plataforma;

// What the match takes for what the tests of the filter tell, on each platform.
TEST(DobraDoCuringa, Concorda) {
  EXPECT_NE(DobraDoCuringa(), nullptr) << "found out letter by letter, and given up where the match disagrees";
}

TEST(CausaDoErroWin32, Tabela) {
  const struct {
    CausaArquivo causa;
    std::vector<std::uint32_t> erros;
  } casos[] = {
      {CausaArquivo::Nenhuma, {0}},
      {CausaArquivo::Generica, {1, 7, 17, 37, 80, 87, 145, 183, 223, 1450, 0xFFFFFFFF}},
      {CausaArquivo::NaoEncontrado, {2}},
      {CausaArquivo::CaminhoInvalido, {3, 15, 53, 67, 123, 161, 206}},
      {CausaArquivo::MuitosAbertos, {4}},
      {CausaArquivo::AcessoNegado, {5, 19, 65, 82}},
      {CausaArquivo::ArquivoInvalido, {6}},
      {CausaArquivo::RemoveDiretorioAtual, {16}},
      {CausaArquivo::PosicaoInvalida, {25, 131}},
      {CausaArquivo::ErroFisico, {23, 29, 30, 31, 1117}},
      {CausaArquivo::ViolacaoCompartilhamento, {32}},
      {CausaArquivo::ViolacaoBloqueio, {33, 36}},
      {CausaArquivo::FimDeArquivo, {38}},
      {CausaArquivo::DiscoCheio, {39, 112}},
  };
  for (const auto &caso : casos) {
    for (const std::uint32_t erro : caso.erros) {
      EXPECT_EQ(CausaDoErroWin32(erro), caso.causa) << erro;
    }
  }
}

}  // namespace
