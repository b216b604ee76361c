#include <gtest/gtest.h>
#include <windows.h>
//
#include <comdef.h>

#include <string>
#include <vector>

#include "core/platform/LivroDaThread.h"
#include "core/platform/ServicosSistema.h"
#include "tests/apoio/ArquivosDecorado.h"
#include "tests/apoio/ColetorRastro.h"
#include "tests/apoio/ServicosTrocados.h"
#include "tests/apoio/ValoresProprios.h"
#include "tests/com/ApoioServico.h"

// Machine faults and exceptions below the service object, raised by a file system that faults on demand: while the lock
// of the vehicle file is held, in the middle of its write.

namespace {

using namespace apoiocom;

constexpr int kRepeticoes = 100;

// What every kind of exception comes to the translator's own test says.
constexpr Falha kExcecoes[] = {
    {[] { throw _com_error(E_ACCESSDENIED); }, 0x80070005},
    {[] { throw CodigoResultado(0); }, 0},
};

/// The next write to the vehicle file ends in `falha` when half of it is on disk.
apoio::PlanoFalha NaGravacao(const Falha &falha) {
  return {.operacoes = apoio::kOpGrava,
          .trecho = "DFVEIC.DAT",
          .gravaAntes = sizeof(RegVeiculo) / 2,
          .aoFalhar = falha.executa};
}

}  // namespace

TEST(FalhaSobTrava, UmaChamadaFalhaEOsOutrosContinuam) {
  const Empresa empresa;
  apoio::ArquivosComFalha arquivos(plataforma::ArquivosDoSistema());
  apoio::ColetorRastro rastro;
  std::size_t uiGravados = 0;
  {
    const apoio::ServicosTrocados servicos(&arquivos);
    const Veiculos spOutro = ServicoPara(empresa);
    ASSERT_TRUE(spOutro);
    OutroChamador outro;
    for (int i = 0; i < kRepeticoes; ++i) {
      SCOPED_TRACE(i);
      const Falha &falha = kFalhasDeMaquina[i % 2];
      Veiculos spVeiculos = ServicoPara(empresa);
      ASSERT_TRUE(spVeiculos);
      rastro.Toma();
      arquivos.Arma(NaGravacao(falha));
      LONG lPos = 0;
      ASSERT_EQ(Bits(spVeiculos->Grava(&lPos, Veiculo("PERDIDO"))), falha.hr);
      EXPECT_EQ(lPos, 0);
      EXPECT_EQ(rastro.Toma(), std::vector<std::string>{"CQZDF_Veiculos::Grava|QZDF_Veiculos.cpp|pfInSEHFuncao()"});
      ASSERT_EQ(plataforma::LivroDaThread::Marca(), 0U);

      // The other object first, while the file still bears the half-written record.
      tagREG_VEICULOPS veiculo;
      ASSERT_EQ(outro.EmUmSegundo([&] {
        const HRESULT hr = spOutro->Grava(&lPos, Veiculo("BOM"));
        return SUCCEEDED(hr) ? spOutro->Le(lPos, &veiculo) : hr;
      }),
                S_OK);
      ASSERT_EQ(static_cast<std::size_t>(lPos), ++uiGravados);
      ASSERT_EQ(CodigoDe(veiculo), "BOM");

      EXPECT_EQ(Bits(spVeiculos->Le(1, &veiculo)), 0x8004EAC5U);
      spVeiculos.reset();
      ASSERT_EQ(arquivos.Abertos(), apoio::CabecalhosLigados() ? 2 : 1) << "the other object's, and its companion";
    }
  }
  EXPECT_EQ(arquivos.Abertos(), 0);
  // Nobody holds the file any more, and it has what was written and nothing of what was not.
  EXPECT_EQ(Registros(empresa).size(), uiGravados * sizeof(RegVeiculo));
}

// Unlike a machine fault an exception costs the object nothing: the very next write goes through.
TEST(FalhaSobTrava, ExcecaoDeixaOObjetoUtilizavel) {
  const Empresa empresa;
  apoio::ArquivosComFalha arquivos(plataforma::ArquivosDoSistema());
  apoio::ColetorRastro rastro;
  LONG lGravados = 0;
  {
    const apoio::ServicosTrocados servicos(&arquivos);
    const Veiculos spVeiculos = ServicoPara(empresa);
    ASSERT_TRUE(spVeiculos);
    for (const Falha &falha : kExcecoes) {
      SCOPED_TRACE(falha.hr);
      arquivos.Arma(NaGravacao(falha));
      LONG lPos = 0;
      EXPECT_EQ(Bits(spVeiculos->Grava(&lPos, Veiculo("PERDIDO"))), falha.hr);
      EXPECT_EQ(lPos, 0);
      std::vector<std::string> esperadas{
          "CQZDF_Veiculos::Grava|QZDF_Veiculos.cpp|QZTranslateThrownExceptionToHresult()"};
      esperadas.resize(falha.hr != 0 ? 1 : 0);
      EXPECT_EQ(rastro.Toma(), esperadas);
      EXPECT_EQ(spVeiculos->Grava(&lPos, Veiculo("BOM")), S_OK);
      EXPECT_EQ(lPos, ++lGravados);
    }
  }
  EXPECT_EQ(Registros(empresa).size(), static_cast<std::size_t>(lGravados) * sizeof(RegVeiculo));
}
