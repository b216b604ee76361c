// The process ends, or the power fails, while a file is created by its first write or deleted on purpose.

#include <functional>

#include "core/qzdatabase/arquivo/QZFileBase.h"
#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "tests/apoio/ArquivosComQuedaDeForca.h"
#include "tests/apoio/ChaveCabecalho.h"
#include "tests/qzdatabase/BancoTeste.h"

namespace {

class Forca : public ComBanco {
protected:
  static HRESULT Acrescenta(const apoio::EmpresaComBase &empresa, std::uint32_t uiNumero) {
    BancoTeste banco;
    const HRESULT hr = banco.Inicializa(empresa.Dono());
    std::uint64_t uiPosicao = 0;
    return Falhou(hr) ? hr : banco.m_Registros.Grava(uiPosicao, Registro(uiNumero));
  }

  /// A new start is refused nothing, except that with headers data and header of a file may disagree.
  static void Recomeca(const apoio::EmpresaComBase &empresa) {
    const HRESULT hr = Acrescenta(empresa, 2);
    if (hr != codigos::kDadosNaoConferem || !apoio::CabecalhosLigados()) {
      ASSERT_EQ(hr, codigos::kOk) << std::hex << BitsResultado(hr);
    }
  }
};

/// The entry in the list stands before the file; only a power cut must not leave it alone.
TEST_F(Forca, NaCriacaoPelaPrimeiraGravacao) {
  for (const bool bListaExiste : {false, true}) {
    for (apoio::SerieQuedas serie(apoio::Queda::TamanhoMantido); serie.Proxima();) {
      const apoio::EmpresaComBase empresa;
      if (bListaExiste) {
        empresa.Escreve(kArquivoControle, std::string("\x09\0\0\0OUTRO.DAT", 13));
      }
      serie.Roda([&] { static_cast<void>(Acrescenta(empresa, 1)); });
      Recomeca(empresa);
    }
  }
}

TEST_F(Forca, NaDelecaoDeProposito) {
  const std::function<HRESULT(const CQZProfilerEmpresa &)> formas[] = {
      [](const auto &dono) { return CQZDataBaseUtil::DeletaArquivo(dono.GetEmpresa(), QZ_DF, "TESTE.DAT"); },
      [](const auto &dono) { return CQZDataBaseUtil::RemoveRegistroZero<RegTeste>(&dono, QZ_DF, "TESTE.DAT"); }};
  for (const auto &apaga : formas) {
    for (apoio::SerieQuedas serie; serie.Proxima();) {
      const apoio::EmpresaComBase empresa;
      const CQZProfilerEmpresa dono = empresa.Dono();
      ASSERT_EQ(Acrescenta(empresa, 1), codigos::kOk);
      ASSERT_EQ(CQZDataBaseUtil::GravaSingleReg(&dono, QZ_DF, Registro(1), "UNICO.DAT"), codigos::kOk);
      serie.Roda([&] { static_cast<void>(apaga(dono)); });
      EXPECT_TRUE(!empresa.Existe("TESTE.DAT") || empresa.Le("TESTE.DAT") == Bytes(1, 1));
      Recomeca(empresa);
    }
  }
}

}  // namespace
