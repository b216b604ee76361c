#include <gtest/gtest.h>

#include <random>

#include "core/platform/Textos.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/BaseVeiculos.h"
#include "vehicles/FiltroVeiculos.h"

namespace {

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
