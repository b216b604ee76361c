// Folding, wildcards and error numbers: tables that must come out alike on every platform.

#include "core/platform/Textos.h"

#include <gtest/gtest.h>

#include <vector>

#include "core/platform/DobraCuringa.h"
#include "core/platform/FalhaArquivo.h"

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
}

TEST(CasaCuringa, LetrasCuringasAlternativasBrancosEPonto) {
  const struct {
    const char *texto;
    const char *padrao;
    bool bCasa;
  } casos[] = {{"ABC", "a?c", true},   {"AC", "a?c", false},       {"", "*", true},          {"", "?", false},
               {"", "", false},        {"ABC", "", false},         {"aXbXc", "a*b*c", true}, {"ABC", "AB", false},
               {"[A]", "[a]", true},   {"ABC ", "abc ", true},     {" ABC", " abc", false},  {"ABC", "abc;", true},
               {"ABC", "XYZ;", false}, {"ABC", "XYZ;  abc", true}, {"A;B", "A;B", false},    {"PONTO.", "*.", true},
               {"PONTO", "*.", false}, {"PONTO", "*.*", true},     {"PONTO", "*.*;X", false}};
  for (const auto &caso : casos) {
    EXPECT_EQ(CasaCuringa(caso.texto, caso.padrao), caso.bCasa) << caso.texto << '|' << caso.padrao;
  }
  EXPECT_NE(DobraDoCuringa(), nullptr) << "which finds out by itself whether it agrees with the match";
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
