#include "core/qzdatabase/disco/CodigosArquivo.h"

using plataforma::CausaArquivo;

HRESULT CodigoDaFalha(const plataforma::FalhaArquivo &falha) {
  switch (falha.causa) {
    case CausaArquivo::Nenhuma:
      return codigos::kOk;
    case CausaArquivo::NaoEncontrado:
      return codigos::kArqNaoEncontrado;
    case CausaArquivo::CaminhoInvalido:
      return codigos::kArqCaminhoInvalido;
    case CausaArquivo::AcessoNegado:
      return codigos::kArqAcessoNegado;
    case CausaArquivo::ArquivoInvalido:
      return codigos::kArqInvalido;
    case CausaArquivo::PosicaoInvalida:
      return codigos::kArqPosicaoInvalida;
    case CausaArquivo::ErroFisico:
      return codigos::kArqErroFisico;
    case CausaArquivo::ViolacaoCompartilhamento:
      return codigos::kArqCompartilhamento;
    case CausaArquivo::ViolacaoBloqueio:
      return codigos::kArqBloqueio;
    case CausaArquivo::DiscoCheio:
      return codigos::kArqDiscoCheio;
    case CausaArquivo::FimDeArquivo:
      return codigos::kArqFimDeArquivo;
    default:
      return codigos::kArqOutra;
  }
}

bool EhCodigoFatal(HRESULT hr) {
  switch (BitsResultado(hr) & 0xFFFF) {
    case BitsResultado(codigos::kArqPosicaoInvalida) & 0xFFFF:
    case BitsResultado(codigos::kArqFimDeArquivo) & 0xFFFF:
    case BitsResultado(codigos::kArqErroFisico) & 0xFFFF:
    case BitsResultado(codigos::kArqNaoEncontrado) & 0xFFFF:
    case BitsResultado(codigos::kArqCaminhoInvalido) & 0xFFFF:
      return true;
    default:
      return false;
  }
}
