#include "core/qzdatabase/disco/Insistencia.h"

using plataforma::FalhaArquivo;

FalhaArquivo ApagaInsistindo(const CString &sCaminho) {
  FalhaArquivo falha;
  Insiste(kTentativasInsistencia, [&](bool) {
    falha = plataforma::Arquivos().Apaga(sCaminho);
    if (falha.NaoEsta()) {
      falha = plataforma::kSemFalha;
    }
    return falha ? Veredito::OutraVez : Veredito::Acabou;
  });
  return falha;
}

FalhaArquivo MoveInsistindo(const CString &sOrigem, const CString &sDestino,
                            const AntesDeMoverDeNovo &antesDeMoverDeNovo) {
  FalhaArquivo falha;
  Insiste(kTentativasInsistencia, [&](bool) {
    const Movimento eMovimento = falha && antesDeMoverDeNovo ? antesDeMoverDeNovo() : Movimento::Tenta;
    if (eMovimento == Movimento::Tenta) {
      falha = plataforma::Arquivos().MoveSubstituindo(sOrigem, sDestino);
    }
    return falha && !falha.NaoEsta() && eMovimento != Movimento::Desiste ? Veredito::OutraVez : Veredito::Acabou;
  });
  return falha;
}
