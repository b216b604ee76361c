#include "core/qzdatabase/arquivo/QZFileCopia.h"

#include "core/platform/Textos.h"
#include "core/qzdatabase/banco/QZBancoTemporario.h"
#include "core/qzdatabase/banco/QZDataBaseUtil.h"
#include "core/qzdatabase/disco/PercorreArquivo.h"

using plataforma::CQZTrava;
using plataforma::FalhaArquivo;

namespace {

constexpr char kFonte[] = "QZFileCopia.cpp";

}  // namespace

CQZFileCopia::CQZFileCopia(const CString &sNomeArquivo, CQZDataBase *pDataBase) : CQZFileBase(sNomeArquivo, pDataBase) {
  const CQZEscopoProfiler escopo(this, {"CQZFileCopia::CQZFileCopia"}, [&] {
    return ParametrosEscopo{{"sNomeArquivo", sNomeArquivo}};
  });
}

/// Does not call the base: no file is opened, no header managed.
HRESULT CQZFileCopia::OnInicializa() {
  const CQZOperacao rastro(this, {"CQZFileCopia::OnInicializa"}, kFonte);
  QZ_VERIFICA(rastro, "CQZDataBaseUtil::DeletaArquivo(GetEmpresa(), m_eModulo, m_sNomeArquivo)",
              CQZDataBaseUtil::DeletaArquivo(GetEmpresa(), GetModulo(), GetNomeArquivo()));
  return codigos::kOk;
}

HRESULT CQZFileBase::CopiaArquivoPara(const CString &sEmpresa, ModuloQZ qzModulo) {
  const CQZOperacao rastro(this, {"CQZFileBase::CopiaArquivoPara"}, kFonte);
  // Initialising the destination would delete the source.
  const CString sDestino = CQZPath::CaminhoArquivo(qzModulo, sEmpresa, m_sNomeArquivo);
  if (plataforma::Maiusculas(sDestino) == plataforma::Maiusculas(CaminhoCompleto())) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoApagado);
  }
  CQZBancoTemporario<CQZFileCopia> copia(qzModulo, m_sNomeArquivo);
  CQZFileCopia &qzFileDestino = copia.Arquivo();
  qzFileDestino.DesabilitaControleCriacaoArquivos();
  QZ_VERIFICA(rastro, "qzDB.Inicializa(sEmpresa, ( 0xffff ), 0)",
              copia.Banco().Inicializa(sEmpresa, kUsuarioInterno, 0));

  const CQZTrava trava(m_secao);
  std::uint64_t uiTamanho = 0;
  FalhaArquivo falha = ExisteArquivo() ? m_arquivo->Tamanho(&uiTamanho) : plataforma::kSemFalha;
  if (!falha && uiTamanho == 0) {
    return codigos::kOk;
  }
  if (!falha) {
    // Of this file's own module, whatever the destination's is: what the suite's programs rely on.
    QZ_VERIFICA(rastro, "CQZDataBaseUtil::DeletaArquivo(sEmpresa, m_eModulo, m_sNomeArquivo)",
                CQZDataBaseUtil::DeletaArquivo(sEmpresa, m_eModulo, m_sNomeArquivo));
    QZ_VERIFICA(rastro, "qzFileDestino.AbreArquivo(eModoLeituraGravacao)",
                qzFileDestino.AbreArquivo(eModoLeituraGravacao));
    falha = PercorreArquivo(*m_arquivo, 0, [&](std::uint64_t uiPosicao, const char *pBytes, std::size_t qtd) {
      return qzFileDestino.Arquivo().Grava(uiPosicao, pBytes, qtd);
    });
  }
  if (falha) {
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CatchInicializacao(falha));
  }
  return codigos::kOk;
}
