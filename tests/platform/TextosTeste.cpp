// Folding, wildcards and error numbers: tables that must come out alike on every platform.

#include "core/platform/Textos.h"

#include <gtest/gtest.h>

#include "core/platform/Mascara.h"
#include "core/platform/SistemaArquivos.h"

namespace {

using namespace plataforma;

TEST(Maiusculas, PaginaDeCodigo1252) {
  CString todas;
  CString dobradas;
  for (int codigo = 0; codigo < 256; ++codigo) {
    const bool bDesce32 = (codigo >= 'a' && codigo <= 'z') || (codigo >= 0xE0 && codigo <= 0xFE && codigo != 0xF7);
    const bool bDesce16 = codigo == 0x9A || codigo == 0x9C || codigo == 0x9E;
    const int dobrada = bDesce32 ? codigo - 32 : bDesce16 ? codigo - 16 : codigo == 0xFF ? 0x9F : codigo;
    todas += static_cast<char>(codigo);
    dobradas += static_cast<char>(dobrada);
  }
  EXPECT_EQ(Maiusculas(todas), dobradas);
  EXPECT_EQ(Maiusculas(""), "");
  EXPECT_EQ(Maiusculas("Ve\xED"
                       "culos_\xE7\xE3o.dat"),
            "VE\xCD"
            "CULOS_\xC7\xC3O.DAT");
}

TEST(CasaCuringa, Tabela) {
  const struct {
    const char *texto;
    const char *padrao;
    bool bCasa;
  } casos[] = {
      {"ABC", "abc", true},
      {"ABC", "AB", false},
      {"AB", "ABC", false},
      {"ABC", "a?c", true},
      {"AC", "a?c", false},
      {"ABC", "*", true},
      {"", "*", true},
      {"", "", false},
      {"ABC", "", false},
      {"", "?", false},
      {"abcabd", "*abd", true},
      {"aXbXc", "a*b*c", true},
      {"ac", "a**c", true},
      {"ab", "a*c", false},
      {"a\xE7\xE3o", "A\xC7\xC3O", true},
      {"\x9A\xFF", "\x8A\x9F", true},
      {"\xD7", "\xF7", false},
      {"ABC", "XYZ;abc", true},
      {"ABC", "XYZ;  abc", true},
      {"ABC", "  abc", true},
      {"ABC", "abc ", false},
      {"ABC ", "abc ", true},
      {" ABC", " abc", false},
      {" ABC", "*abc", true},
      {"ABC", "XYZ;", false},
      {"ABC", "abc;", true},
      {"A;B", "A;B", false},
      {"A", "A;B", true},
      {"SEMPONTO", "*.*", true},
      {"", "*.*", true},
      {"SEMPONTO", "*.*;X", false},
      {"COM.PONTO", "*.*;X", true},
      {"SEMPONTO", "*.", false},
      {"PONTO.", "*.", true},
      {"[A]", "[a]", true},
      {"A", "[A]", false},
      {"pasta\\arq.txt", "*.txt", true},
      {"pasta\\arq.txt", "arq.txt", false},
  };
  for (const auto &caso : casos) {
    EXPECT_EQ(CasaCuringa(caso.texto, caso.padrao), caso.bCasa) << '"' << caso.texto << "\" \"" << caso.padrao << '"';
  }
}

TEST(CasaMascara, SoAsteriscoEInterrogacao) {
  EXPECT_TRUE(CasaMascara("A;B", "A;B"));
  EXPECT_TRUE(CasaMascara("", ""));
  EXPECT_FALSE(CasaMascara("SEMPONTO", "*.*"));
  EXPECT_FALSE(CasaMascara("ABC", "abc"));
  // Tries must not multiply with the number of asterisks; this one would not end.
  EXPECT_FALSE(CasaMascara(CString(200, 'A'), "*A*A*A*A*A*A*A*A*A*A*A*A*A*A*A*AB"));
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
