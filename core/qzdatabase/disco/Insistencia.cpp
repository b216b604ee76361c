#include "core/qzdatabase/disco/Insistencia.h"

using plataforma::FalhaArquivo;

FalhaArquivo ApagaInsistindo(const CString &sCaminho) {
  FalhaArquivo falha;
  Insiste(kTentativasInsistencia, [&](bool) {
    falha = plataforma::Arquivos().Apaga(sCaminho);
    if (falha.NaoEsta()) {
      falha = plataforma::kSemFalha;
    }
    return falha ? EVeredito::OutraVez : EVeredito::Acabou;
  });
  return falha;
}

FalhaArquivo MoveInsistindo(const CString &sOrigem, const CString &sDestino,
                            const AntesDeMoverDeNovo &antesDeMoverDeNovo) {
  FalhaArquivo falha;
  Insiste(kTentativasInsistencia, [&](bool) {
    const EMovimento eMovimento = falha && antesDeMoverDeNovo ? antesDeMoverDeNovo() : EMovimento::Tenta;
    if (eMovimento == EMovimento::Tenta) {
      falha = plataforma::Arquivos().MoveSubstituindo(sOrigem, sDestino);
    }
    return falha && !falha.NaoEsta() && eMovimento != EMovimento::Desiste ? EVeredito::OutraVez : EVeredito::Acabou;
  });
  return falha;
}
