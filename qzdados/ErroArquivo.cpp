#include "qzdados/ErroArquivo.h"

#include <cstdio>

#include "client/Codificacao.h"
#include "core/qzdatabase/disco/CodigosArquivo.h"

CString TextoDaFalha(const plataforma::FalhaArquivo &falha) {
  return TextoDoCodigo(CodigoDaFalha(falha));
}

CString TextoDoCodigo(HRESULT hr) {
  switch (hr) {
    case codigos::kArqCompartilhamento:
    case codigos::kArqBloqueio:
      return "o arquivo está em uso"_pt;
    case codigos::kArqNaoEncontrado:
      return "o arquivo não existe"_pt;
    case codigos::kArqCaminhoInvalido:
      return "o diretório não existe"_pt;
    case codigos::kArqAcessoNegado:
    case codigos::kArqSomenteLeitura:
      return "acesso negado";
    case codigos::kArqDiscoCheio:
    case codigos::kArqDiretorioCheio:
      return "o disco está cheio"_pt;
    case codigos::kArqFimDeArquivo:
      return "o arquivo encolheu enquanto era lido";
    default:
      break;
  }
  char texto[48];
  std::snprintf(texto, sizeof(texto), "falha de disco (0x%08X)", static_cast<unsigned>(BitsResultado(hr)));
  return texto;
}

void Exige(const plataforma::FalhaArquivo &falha) {
  if (falha) {
    throw CErroArquivo(TextoDaFalha(falha));
  }
}
