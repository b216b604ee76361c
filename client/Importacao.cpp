#include "client/Importacao.h"

std::size_t ValidaCsv(CLeitorCsv leitor, const std::function<void(const CLinhaCsv &)> &Recusa) {
  std::size_t uiRecusados = 0;
  while (const std::optional<CLinhaCsv> linha = leitor.Proxima()) {
    if (!linha->sErro.empty()) {
      Recusa(*linha);
      ++uiRecusados;
    }
  }
  return uiRecusados;
}

void ImportaCsv(CLeitorCsv leitor, const CPassosImportacao &passos, CResultadoImportacao &resultado) {
  while (const std::optional<CLinhaCsv> linha = leitor.Proxima()) {
    resultado.uiLinha = linha->uiLinha;
    if (linha->sErro.empty()) {
      passos.Grava(linha->veiculo);
      ++resultado.uiGravados;
    } else {
      passos.Recusa(*linha);
      ++resultado.uiRecusados;
    }
    passos.MostraProgresso(leitor.Lidos(), leitor.Tamanho());
  }
}
