#include <gtest/gtest.h>

#include <random>

#include "core/platform/Textos.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/BaseVeiculos.h"
#include "vehicles/FiltroVeiculos.h"

namespace {

using Filtro = tagREG_FILTRO_VEICULOSPS;

/// Types next to each other, so that one is not taken for another; those of the body and the kinds count from 0.
TEST(Filtro, Mascaras) {
  RegVeiculo reg{};
  for (unsigned tipo = 0; tipo < 256; ++tipo) {
    reg.iTipoCarroceria = reg.iTipoVeiculo = static_cast<std::uint8_t>(tipo);
    reg.iTipoRodado = reg.iTipoTransporte = static_cast<std::uint8_t>(tipo + 1);
    for (unsigned bit = 0; bit < 8; ++bit) {
      const std::tuple<std::uint8_t Filtro::*, bool> casos[] = {
          {&Filtro::iTipoCarroceria, tipo > 5 || tipo == bit},
          {&Filtro::iTipoRodado, tipo > 5 || tipo == bit},
          {&Filtro::iTipoVeiculo, bit == (tipo == 0 ? 0 : 1)},
          {&Filtro::iTipoTransporte, bit == (tipo == 255 ? 0 : 1)}};
      for (const auto &[pMascara, bPassa] : casos) {
        Filtro filtro{};
        filtro.*pMascara = static_cast<std::uint8_t>(1U << bit);
        EXPECT_EQ(CBaseVeiculos::AtendeFiltro(reg, filtro), bPassa) << tipo << ' ' << bit;
      }
    }
  }
}

/// Whatever the pattern and the field, the answer is the one of the system's match on the field's text. Texts of all
/// lengths, and letters that the next field begins with behind them.
TEST(Filtro, CuringaIgualAoDoSistema) {
  std::mt19937 gerador(1);
  const auto sorteia = [&](const std::string &alfabeto, std::size_t maximo) {
    std::string texto(gerador() % (maximo + 1), ' ');
    for (char &c : texto) {
      c = alfabeto[gerador() % alfabeto.size()];
    }
    return texto;
  };
  const char *const alfabetos[][2] = {{"aA*?", "aA."},
                                      {"zZ09 *?", "zZ09 ;-[]"},
                                      {"aAz***", "aAz"},
                                      {"\xE3\xC3y\xFF*", "\xE3\xC3yY\xFF\x9F\xD7\xF7"},
                                      {"*.?;- ", "*.?;- "}};
  for (std::size_t i = 0; i < 30000; ++i) {
    const auto &[padroes, textos] = alfabetos[i % std::size(alfabetos)];
    RegVeiculo reg;
    tagREG_FILTRO_VEICULOSPS filtro{};
    std::memset(&reg, textos[0], sizeof(reg));
    const bool bDescricao = i % 2 == 0;
    const std::size_t largura = bDescricao ? sizeof(reg.szDescricao) : sizeof(reg.szRENAVAM);
    const std::string texto = sorteia(textos, i % 7 == 0 ? largura : 10);
    std::string padrao = sorteia(padroes, i % 7 == 0 ? largura : 8);
    // The system's match tries every way to spread a text over the stars: with many of them it does not come back.
    for (std::size_t p = padrao.find('*'), estrelas = 1; p != std::string::npos; p = padrao.find('*', p + 1)) {
      padrao[p] = ++estrelas > 5 ? '?' : '*';
    }
    if (padrao.find_first_of("*?") == std::string::npos) {
      continue;
    }
    if (bDescricao) {
      Preenche(reg.szDescricao, texto);
      Preenche(filtro.szDescricao, padrao);
    } else {
      Preenche(reg.szRENAVAM, texto);
      Preenche(filtro.szRENAVAM, padrao);
    }
    ASSERT_EQ(CBaseVeiculos::AtendeFiltro(reg, filtro), plataforma::CasaCuringa(texto.c_str(), padrao.c_str()))
        << "text '" << texto << "' pattern '" << padrao << "'";
  }
}

}  // namespace
