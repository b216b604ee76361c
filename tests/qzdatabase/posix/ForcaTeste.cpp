// The process ends, or the power fails, while a file is created by its first write, or within a later one.

#include "tests/apoio/SerieFalhas.h"
#include "tests/apoio/ValoresProprios.h"
#include "tests/qzdatabase/Especies.h"

namespace {

using Forca = ComEmpresa;

HRESULT Acrescenta(const apoio::EmpresaComBase &empresa, std::uint32_t uiNumero) {
  BancoTeste banco;
  const HRESULT hr = banco.Inicializa(empresa.Dono());
  std::uint64_t uiPosicao = 0;
  return Falhou(hr) ? hr : banco.m_Registros.Grava(uiPosicao, Registro(uiNumero));
}

/// The entry in the list stands before the file; only a power cut must not leave it alone. A new start is refused
/// nothing, except that after a power cut data and header of a file may disagree, and that without headers nobody knows
/// what half a record was to be.
TEST_F(Forca, NaCriacaoPelaPrimeiraGravacao) {
  for (const bool bListaExiste : {false, true}) {
    for (apoio::SerieQuedas serie; serie.Proxima();) {
      const apoio::EmpresaComBase empresa;
      if (bListaExiste) {
        empresa.Escreve(kArquivoControle, Linhas({"OUTRO.DAT"}));
      }
      serie.Roda(empresa.Caminho(""), [&] { static_cast<void>(Acrescenta(empresa, 1)); });
      const HRESULT hr = Acrescenta(empresa, 2);
      const bool bDanoContado = apoio::CabecalhosLigados() ? hr == codigos::kDadosNaoConferem && !serie.DoProcesso()
                                                           : hr == codigos::kTamanhoNaoMultiplo && serie.DoProcesso();
      if (!bDanoContado) {
        ASSERT_EQ(hr, codigos::kOk) << std::hex << BitsResultado(hr);
      }
    }
  }
}

/// Each kind of write to each kind of file, at each moment of which the process ends: the file opens again, with the
/// write or without it, and with it once it was acknowledged. Without headers half a write cannot be told from a
/// record.
class ForcaNaGravacao : public Forca, public testing::WithParamInterface<std::string> {};

INSTANTIATE_TEST_SUITE_P(Arquivo, ForcaNaGravacao, kEspecies, [](const auto &parametro) { return parametro.param; });

TEST_P(ForcaNaGravacao, VelhoOuNovo) {
  for (std::size_t i = 0;; ++i) {
    for (apoio::SerieQuedas serie; serie.Proxima() && serie.DoProcesso();) {
      CQZDataBase banco(QZ_DF, plataforma::NivelTrava::ArquivoDados);
      const std::unique_ptr<Especie> pEspecie = CriaEspecie(GetParam(), &banco);
      const std::vector<Gravacao> gravacoes = pEspecie->Gravacoes();
      if (i == gravacoes.size()) {
        return;
      }
      const Gravacao &gravacao = gravacoes[i];
      SCOPED_TRACE(gravacao.nome);
      Poe(kArquivoControle, std::nullopt);
      Poe(pEspecie->File().GetNomeArquivo(), gravacao.antes);
      HRESULT hr = codigos::kArqOutra;
      serie.Roda(m_empresa.Caminho(""), [&] {
        hr = banco.Inicializa(m_empresa.Dono());
        hr = Falhou(hr) ? hr : gravacao.grava();
        static_cast<void>(banco.Finaliza());
      });
      const HRESULT hrAbre = banco.Inicializa(m_empresa.Dono());
      if (!apoio::CabecalhosLigados() && Falhou(hr)) {
        ASSERT_TRUE(hrAbre == codigos::kOk || hrAbre == pEspecie->Torto());
        continue;
      }
      ASSERT_EQ(hrAbre, codigos::kOk);
      std::string dados;
      static_cast<void>(pEspecie->Le(&dados));
      ASSERT_TRUE(dados == gravacao.depois || (dados == pEspecie->Carregado(gravacao.antes) && Falhou(hr)));
      if (dados != gravacao.depois) {
        ASSERT_EQ(gravacao.grava(), codigos::kOk);
      }
      ASSERT_EQ(banco.Finaliza(), codigos::kOk);
      ASSERT_EQ(m_empresa.Le(pEspecie->File().GetNomeArquivo()), gravacao.depois);
      ASSERT_EQ(banco.Inicializa(m_empresa.Dono()), codigos::kOk);
      ASSERT_EQ(banco.Finaliza(), codigos::kOk);
    }
  }
}

}  // namespace
