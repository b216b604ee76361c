#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "core/platform/Textos.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/BaseVeiculos.h"
#include "vehicles/FiltroVeiculos.h"

namespace {

using Filtro = tagREG_FILTRO_VEICULOSPS;

struct Caso {
  const char *nome;
  std::function<void(Filtro &)> filtro;
  bool esperado;
};

/// The record under test: VeiculoCompleto with some changes.
RegVeiculo RegistroCom(const std::function<void(tagREG_VEICULOPS &)> &muda = {}) {
  tagREG_VEICULOPS v = VeiculoCompleto();
  if (muda) {
    muda(v);
  }
  RegVeiculo reg;
  CopiaParaRegistro(v, &reg);
  return reg;
}

void Confere(const RegVeiculo &reg, const std::vector<Caso> &casos) {
  for (const Caso &caso : casos) {
    Filtro filtro{};
    caso.filtro(filtro);
    EXPECT_EQ(CBaseVeiculos::AtendeFiltro(reg, filtro), caso.esperado) << caso.nome;
  }
}

TEST(Filtro, FaixasECliente) {
  const tagREG_VEICULOPS v = VeiculoCompleto();
  Confere(RegistroCom(), {{"all equal",
                           [=](Filtro &f) {
                             f.vTaraInicial = f.vTaraFinal = v.vTara;
                             f.vCapacidadeKgInicial = f.vCapacidadeKgFinal = v.vCapacidadeKg;
                             f.vCapacidadeM3Inicial = f.vCapacidadeM3Final = v.vCapacidadeM3;
                             f.iAnoInicial = f.iAnoFinal = 2020, f.iPonteiroCliente = v.iPonteiroCliente;
                           },
                           true},
                          {"tare from", [=](Filtro &f) { f.vTaraInicial = v.vTara + 1; }, false},
                          {"tare to", [=](Filtro &f) { f.vTaraFinal = v.vTara - 1; }, false},
                          {"kg from", [=](Filtro &f) { f.vCapacidadeKgInicial = v.vCapacidadeKg + 1; }, false},
                          {"kg to", [=](Filtro &f) { f.vCapacidadeKgFinal = v.vCapacidadeKg - 1; }, false},
                          {"m3 from", [=](Filtro &f) { f.vCapacidadeM3Inicial = v.vCapacidadeM3 + 1; }, false},
                          {"m3 to", [=](Filtro &f) { f.vCapacidadeM3Final = v.vCapacidadeM3 - 1; }, false},
                          {"negative is none", [](Filtro &f) { f.vTaraInicial = 1, f.vTaraFinal = -5; }, true},
                          {"year from", [](Filtro &f) { f.iAnoInicial = 2021; }, false},
                          {"year to", [](Filtro &f) { f.iAnoFinal = 2019; }, false},
                          {"other customer", [](Filtro &f) { f.iPonteiroCliente = 0x7A; }, false}});
  Confere(RegistroCom([](auto &r) { r.iAno = 0x80000000, r.vTara = -1; }),
          {{"years compare unsigned", [](Filtro &f) { f.iAnoFinal = 2020; }, false},
           {"negative tare, no lower bound", [](Filtro &f) { f.vTaraFinal = 1; }, true}});
}

TEST(Filtro, Textos) {
  const std::pair<std::size_t, std::string> textos[] = {{offsetof(Filtro, szDescricao), "CAMINHAO TOCO"},
                                                        {offsetof(Filtro, szCodigoANTT), "12345678"},
                                                        {offsetof(Filtro, szCodigo), "V001"},
                                                        {offsetof(Filtro, szRENAVAM), "00123456789"},
                                                        {offsetof(Filtro, szPlaca), "ABC1D23"},
                                                        {offsetof(Filtro, szUF), "SP"}};
  for (const auto &[uiOnde, sTexto] : textos) {
    for (const std::string &s : {sTexto, sTexto.substr(0, sTexto.size() - 1), sTexto + "1"}) {
      Filtro filtro{};
      s.copy(reinterpret_cast<char *>(&filtro) + uiOnde, s.size());
      EXPECT_EQ(CBaseVeiculos::AtendeFiltro(RegistroCom(), filtro), s == sTexto) << s;
    }
  }
  Confere(RegistroCom(),
          {{"bytes behind the terminator", [](Filtro &f) { std::memcpy(f.szCodigo, "V001\0zz", 7); }, true},
           {"wildcard behind the terminator", [](Filtro &f) { std::memcpy(f.szCodigo, "V002\0*", 6); }, false},
           {"no wildcards in UF", [](Filtro &f) { Preenche(f.szUF, "S?"); }, false},
           {"masks still count", [](Filtro &f) { Preenche(f.szCodigo, "V001"), f.iTipoRodado = 0x20; }, false}});
  Confere(RegistroCom([](auto &r) { Preenche(r.szCodigo, "1234567890123"), Preenche(r.szRENAVAM, "123456789012"); }),
          {{"full field", [](Filtro &f) { Preenche(f.szRENAVAM, "123456789012"); }, true},
           {"full field, shorter text", [](Filtro &f) { Preenche(f.szCodigo, "123456789012"); }, false},
           {"full field, pattern", [](Filtro &f) { Preenche(f.szCodigo, "*0123"); }, true}});
}

TEST(Filtro, CuringaDaOVeredicto) {
  Confere(
      RegistroCom(),
      {{"star passes over UF and masks",
        [](Filtro &f) { Preenche(f.szDescricao, "*"), Preenche(f.szUF, "RJ"), f.iTipoRodado = 0x20; }, true},
       {"earlier text still counts", [](Filtro &f) { Preenche(f.szDescricao, "OTHER"), Preenche(f.szCodigo, "V0*"); },
        false},
       {"ranges still count", [](Filtro &f) { Preenche(f.szDescricao, "*"), f.iAnoInicial = 2021; }, false},
       {"first pattern decides", [](Filtro &f) { Preenche(f.szDescricao, "X*"), Preenche(f.szCodigo, "*"); }, false},
       {"alternatives", [](Filtro &f) { Preenche(f.szCodigo, "X*;V*"); }, true},
       {"everything", [](Filtro &f) { Preenche(f.szCodigo, "*.*"); }, true}});
  // Accented letters fold like the system folds them: 0xC3 and 0xE3 are the same letter.
  Confere(RegistroCom([](auto &v) { Preenche(v.szDescricao, "CAMINH\xC3O"); }),
          {{"accents", [](Filtro &f) { Preenche(f.szDescricao, "caminh\xE3*"); }, true},
           {"plain pattern on an accented text", [](Filtro &f) { Preenche(f.szDescricao, "CAM?NH?O"); }, true}});
}

/// Types next to each other, so that one is not taken for another; those of the body and the kinds count from 0.
TEST(Filtro, Mascaras) {
  for (unsigned tipo = 0; tipo < 256; ++tipo) {
    for (unsigned bit = 0; bit < 8; ++bit) {
      const RegVeiculo reg = RegistroCom([&](auto &v) {
        v.iTipoCarroceria = v.iTipoVeiculo = static_cast<std::uint8_t>(tipo);
        v.iTipoRodado = v.iTipoTransporte = static_cast<std::uint8_t>(tipo + 1);
      });
      const auto mascara = static_cast<std::uint8_t>(1U << bit);
      SCOPED_TRACE(testing::Message() << "type " << tipo << ", bit " << bit);
      Confere(reg, {{"body", [=](Filtro &f) { f.iTipoCarroceria = mascara; }, tipo > 5 || tipo == bit},
                    {"wheels", [=](Filtro &f) { f.iTipoRodado = mascara; }, tipo > 5 || tipo == bit},
                    {"kind", [=](Filtro &f) { f.iTipoVeiculo = mascara; }, bit == (tipo == 0 ? 0 : 1)},
                    {"transport", [=](Filtro &f) { f.iTipoTransporte = mascara; }, bit == (tipo == 255 ? 0 : 1)}});
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
    const bool bLongo = i % 7 == 0;
    RegVeiculo reg;
    std::memset(&reg, textos[0], sizeof(reg));
    const std::string texto = sorteia(textos, bLongo ? sizeof(reg.szDescricao) : 10);
    std::string padrao = sorteia(padroes, bLongo ? sizeof(reg.szDescricao) : 8);
    // The system's match tries every way to spread a text over the stars: with many of them it does not come back.
    for (std::size_t p = padrao.find('*'), estrelas = 1; p != std::string::npos; p = padrao.find('*', p + 1)) {
      padrao[p] = ++estrelas > 5 ? '?' : '*';
    }
    if (padrao.find_first_of("*?") == std::string::npos) {
      continue;
    }
    Preenche(reg.szDescricao, texto);
    Preenche(reg.szRENAVAM, texto);
    const std::string cortado = texto.substr(0, sizeof(reg.szRENAVAM));
    Filtro descricao{};
    Filtro renavam{};
    Preenche(descricao.szDescricao, padrao);
    Preenche(renavam.szRENAVAM, padrao);
    ASSERT_EQ(CBaseVeiculos::AtendeFiltro(reg, descricao), plataforma::CasaCuringa(texto.c_str(), padrao.c_str()))
        << "text '" << texto << "' pattern '" << padrao << "'";
    if (padrao.size() <= sizeof(reg.szRENAVAM)) {
      ASSERT_EQ(CBaseVeiculos::AtendeFiltro(reg, renavam), plataforma::CasaCuringa(cortado.c_str(), padrao.c_str()))
          << "text '" << cortado << "' pattern '" << padrao << "'";
    }
  }
}

/// A run that begins and ends anywhere in its block: the places found are those of its records.
TEST(Filtro, TrechoDeUmBloco) {
  CQZBlocosRegistros<RegVeiculo> registros;
  registros.DefineTamanho(100);
  for (std::size_t i = 0; i < 100; ++i) {
    const RegVeiculo reg = RegistroCom([i](auto &v) { v.iAno = static_cast<std::uint32_t>(2000 + i % 10); });
    registros.Copia(i, &reg, 1);
  }
  registros.Abrange(0, 100);
  Filtro filtro{};
  filtro.iAnoInicial = filtro.iAnoFinal = 2005;
  std::vector<std::size_t> achados;
  CFiltroVeiculos(filtro).Procura(std::as_const(registros).TrechoEm(13, 46), [&](std::size_t i) {
    achados.push_back(i);
    return true;
  });
  EXPECT_EQ(achados, (std::vector<std::size_t>{2, 12, 22, 32}));
}

}  // namespace
