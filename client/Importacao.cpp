#include "client/Importacao.h"

#include <optional>

#include "client/QZVeiculosCampos.h"

bool CCodigosConhecidos::Acrescenta(const tagREG_VEICULOPS &veiculo) {
  const std::string sCodigo = LeCampo(veiculo.szCodigo);
  return sCodigo.empty() || m_codigos.insert(sCodigo).second;
}

void ImportaCsv(CLeitorCsv leitor, std::size_t uiDesdeLinha, CCodigosConhecidos *pConhecidos,
                const CPassosImportacao &passos, CResultadoImportacao &resultado) {
  while (const std::optional<CLinhaCsv> linha = leitor.Proxima()) {
    if (linha->uiLinha < uiDesdeLinha) {
      continue;
    }
    resultado.uiProximaLinha = linha->uiLinha;
    if (passos.Parar()) {
      resultado.bParada = true;
      return;
    }
    if (!linha->sErro.empty()) {
      passos.Recusa(*linha);
      ++resultado.uiRecusados;
    } else if (pConhecidos != nullptr && !pConhecidos->Acrescenta(linha->veiculo)) {
      ++resultado.uiRepetidos;
    } else {
      passos.Grava(linha->veiculo);
      ++resultado.uiGravados;
      resultado.uiUltimaGravada = linha->uiLinha;
    }
    passos.MostraProgresso(leitor.Lidos(), leitor.Tamanho());
  }
}
