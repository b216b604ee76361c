#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "core/platform/Textos.h"
#include "tests/vehicles/AmostraVeiculos.h"
#include "vehicles/BaseVeiculos.h"
#include "vehicles/PadraoSimples.h"

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
  const std::int64_t kTara = 75000000;
  Confere(RegistroCom(),
          {
              {"zeros", [](Filtro &) {}, true},
              {"tare from equal", [=](Filtro &f) { f.vTaraInicial = kTara; }, true},
              {"tare from above", [=](Filtro &f) { f.vTaraInicial = kTara + 1; }, false},
              {"tare to equal", [=](Filtro &f) { f.vTaraFinal = kTara; }, true},
              {"tare to below", [=](Filtro &f) { f.vTaraFinal = kTara - 1; }, false},
              {"negative bounds are none", [](Filtro &f) { f.vTaraInicial = -5, f.vTaraFinal = -1; }, true},
              {"kg", [](Filtro &f) { f.vCapacidadeKgFinal = 119999999; }, false},
              {"m3", [](Filtro &f) { f.vCapacidadeM3Inicial = 455001; }, false},
              {"year in", [](Filtro &f) { f.iAnoInicial = 2020, f.iAnoFinal = 2020; }, true},
              {"year below", [](Filtro &f) { f.iAnoInicial = 2021; }, false},
              {"year above", [](Filtro &f) { f.iAnoFinal = 2019; }, false},
              {"customer", [](Filtro &f) { f.iPonteiroCliente = 17; }, true},
              {"other customer", [](Filtro &f) { f.iPonteiroCliente = 18; }, false},
          });
  Confere(RegistroCom([](auto &v) { v.iAno = 0x80000000, v.vTara = -1; }),
          {
              {"years compare unsigned", [](Filtro &f) { f.iAnoFinal = 2020; }, false},
              {"negative tare below a bound", [](Filtro &f) { f.vTaraInicial = 1; }, false},
          });
}

TEST(Filtro, Textos) {
  Confere(RegistroCom(),
          {
              {"equal", [](Filtro &f) { Preenche(f.szCodigo, "V001"); }, true},
              {"case matters", [](Filtro &f) { Preenche(f.szCodigo, "v001"); }, false},
              {"prefix only", [](Filtro &f) { Preenche(f.szCodigo, "V00"); }, false},
              {"longer", [](Filtro &f) { Preenche(f.szCodigo, "V0011"); }, false},
              {"bytes behind the terminator", [](Filtro &f) { std::memcpy(f.szCodigo, "V001\0zz", 7); }, true},
              {"wildcard behind the terminator", [](Filtro &f) { std::memcpy(f.szCodigo, "V002\0*", 6); }, false},
              {"ANTT", [](Filtro &f) { Preenche(f.szCodigoANTT, "1234567"); }, false},
              {"RENAVAM", [](Filtro &f) { Preenche(f.szRENAVAM, "00123456789"); }, true},
              {"plate", [](Filtro &f) { Preenche(f.szPlaca, "ABC1D24"); }, false},
              {"UF", [](Filtro &f) { Preenche(f.szUF, "RJ"); }, false},
              {"no wildcards in UF", [](Filtro &f) { Preenche(f.szUF, "S?"); }, false},
          });
  Confere(RegistroCom([](auto &v) { Preenche(v.szCodigo, "1234567890123"); }),
          {
              {"full field", [](Filtro &f) { Preenche(f.szCodigo, "1234567890123"); }, true},
              {"full field, shorter text", [](Filtro &f) { Preenche(f.szCodigo, "123456789012"); }, false},
              {"full field, pattern", [](Filtro &f) { Preenche(f.szCodigo, "*0123"); }, true},
          });
}

TEST(Filtro, CuringaDaOVeredicto) {
  Confere(
      RegistroCom(),
      {
          {"star passes over UF and masks",
           [](Filtro &f) { Preenche(f.szDescricao, "*"), Preenche(f.szUF, "RJ"), f.iTipoRodado = 0x20; }, true},
          {"code pattern, plate not compared",
           [](Filtro &f) { Preenche(f.szCodigo, "V0*"), Preenche(f.szPlaca, "XXX0000"); }, true},
          {"earlier text still counts",
           [](Filtro &f) { Preenche(f.szDescricao, "OTHER"), Preenche(f.szCodigo, "V0*"); }, false},
          {"ranges still count", [](Filtro &f) { Preenche(f.szDescricao, "*"), f.iAnoInicial = 2021; }, false},
          {"letter case does not matter", [](Filtro &f) { Preenche(f.szDescricao, "*toco"); }, true},
          {"one character", [](Filtro &f) { Preenche(f.szCodigo, "V?01"); }, true},
          {"one too few", [](Filtro &f) { Preenche(f.szCodigo, "V?1"); }, false},
          {"first pattern decides", [](Filtro &f) { Preenche(f.szDescricao, "X*"), Preenche(f.szCodigo, "*"); }, false},
          {"alternatives", [](Filtro &f) { Preenche(f.szCodigo, "X*;V*"); }, true},
          {"everything", [](Filtro &f) { Preenche(f.szCodigo, "*.*"); }, true},
      });
  // Accented letters fold like the system folds them: 0xC3 and 0xE3 are the same letter.
  Confere(RegistroCom([](auto &v) { Preenche(v.szDescricao, "CAMINH\xC3O"); }),
          {{"accents", [](Filtro &f) { Preenche(f.szDescricao, "caminh\xE3*"); }, true},
           {"plain pattern on an accented text", [](Filtro &f) { Preenche(f.szDescricao, "CAM?NH?O"); }, true}});
}

TEST(Filtro, Mascaras) {
  for (unsigned tipo = 0; tipo < 256; ++tipo) {
    for (unsigned bit = 0; bit < 8; ++bit) {
      const RegVeiculo reg = RegistroCom([&](auto &v) {
        v.iTipoCarroceria = v.iTipoRodado = v.iTipoVeiculo = v.iTipoTransporte = static_cast<std::uint8_t>(tipo);
      });
      const auto mascara = static_cast<std::uint8_t>(1U << bit);
      SCOPED_TRACE(testing::Message() << "type " << tipo << ", bit " << bit);
      const bool bTipo = tipo == 0 ? bit == 0 : bit == 1;
      Confere(reg, {{"body", [=](Filtro &f) { f.iTipoCarroceria = mascara; }, tipo > 5 || tipo == bit},
                    {"wheels", [=](Filtro &f) { f.iTipoRodado = mascara; }, tipo < 1 || tipo > 6 || tipo == bit + 1},
                    {"kind", [=](Filtro &f) { f.iTipoVeiculo = mascara; }, bTipo},
                    {"transport", [=](Filtro &f) { f.iTipoTransporte = mascara; }, bTipo}});
    }
  }
}

/// The fast matcher must never differ from the system's own. Rerun a failure with KALVO_SEMENTE set to its seed.
TEST(Filtro, PadraoSimplesIgualAoDoSistema) {
  const char *lpSemente = std::getenv("KALVO_SEMENTE");
  const unsigned semente = lpSemente != nullptr ? static_cast<unsigned>(std::stoul(lpSemente)) : std::random_device()();
  SCOPED_TRACE(testing::Message() << "seed " << semente);
  std::mt19937 gerador(semente);
  const auto sorteia = [&](const std::string &alfabeto, std::size_t maximo) {
    std::string texto(gerador() % (maximo + 1), ' ');
    for (char &c : texto) {
      c = alfabeto[gerador() % alfabeto.size()];
    }
    return texto;
  };
  for (int i = 0; i < 20000; ++i) {
    const std::string padrao = sorteia(i % 2 == 0 ? "aAbB1 *?" : "aAb*", 8);
    const std::string texto = sorteia("aAbB1 .;-[]", 10);
    CPadraoSimples simples;
    if (simples.Define(padrao)) {
      ASSERT_EQ(simples.Casa(texto) == CPadraoSimples::Resposta::Casa,
                plataforma::CasaCuringa(texto.c_str(), padrao.c_str()))
          << "text '" << texto << "' pattern '" << padrao << "'";
    }
  }
}

}  // namespace
