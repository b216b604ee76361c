#include "core/qzdatabase/banco/ControleCriacao.h"

#include "core/platform/Plataforma.h"
#include "core/qzdatabase/arquivo/QZTextFile.h"
#include "core/qzdatabase/banco/QZBancoTemporario.h"
#include "core/qzdatabase/disco/Insistencia.h"

namespace {

constexpr char kFonte[] = "ControleCriacao.cpp";

/// Position of the line; 0 when there is none.
std::uint64_t ProcuraLinha(CQZTextFile &qzTextFile, const CString &sLinha) {
  const CArray<CQZDataBaseTextPair> &aLinhas = *qzTextFile.GetPtrArrayRegistros();
  for (std::size_t idx = 0; idx < aLinhas.GetSize(); ++idx) {
    if (aLinhas[idx].sTexto == sLinha) {
      return idx + 1;
    }
  }
  return 0;
}

}  // namespace

bool CQZControleCriacao::Controlado(const CString &sNomeArquivo) {
  return !CQZPath::TemExtensao(sNomeArquivo, "TRA") && !CQZPath::TemExtensao(sNomeArquivo, "OFL") &&
         sNomeArquivo != kArquivoControle;
}

HRESULT CQZControleCriacao::Possui(bool *pbPossui) const {
  const CQZRastro rastro(&m_dono, {"CQZFileBase::PossuiControleCriacaoArquivos"}, kFonte);
  *pbPossui = false;
  CQZBancoTemporario<CQZTextFile> lista(m_eModulo, kArquivoControle);
  QZ_VERIFICA(rastro, "qzDB.Inicializa(this)", lista.Banco().Inicializa(m_dono));
  *pbPossui = ProcuraLinha(lista.Arquivo(), m_sNomeArquivo) != 0;
  return codigos::kOk;
}

HRESULT CQZControleCriacao::Cria() const {
  const CQZRastro rastro(&m_dono, {"CQZFileBase::CriaControleCriacaoArquivos"}, kFonte);
  CQZBancoTemporario<CQZTextFile> lista(m_eModulo, kArquivoControle);
  QZ_VERIFICA(rastro, "qzDB.Inicializa(this)", lista.Banco().Inicializa(m_dono));
  std::uint64_t uiPosicao = 0;
  QZ_VERIFICA(rastro, "qzTextFile.Grava(uiPosicao, m_sNomeArquivo)", lista.Arquivo().Grava(uiPosicao, m_sNomeArquivo));
  return codigos::kOk;
}

HRESULT CQZControleCriacao::Remove() const {
  const CQZRastro rastro(&m_dono, {"CQZFileBase::RemoveControleCriacaoArquivos"}, kFonte);
  if (!ExisteNoCaminho(CQZPath::CaminhoArquivo(m_eModulo, m_dono.GetEmpresa(), kArquivoControle))) {
    return codigos::kOk;
  }
  CQZBancoTemporario<CQZTextFile> lista(m_eModulo, kArquivoControle);
  QZ_VERIFICA(rastro, "qzDB.Inicializa(this)", lista.Banco().Inicializa(m_dono));
  std::uint64_t uiPosicao = ProcuraLinha(lista.Arquivo(), m_sNomeArquivo);
  if (uiPosicao == 0) {
    return codigos::kOk;
  }
  // Grava takes an empty line for nothing to write; a collection of one empty line makes the stored one empty.
  CStringArray aVazia;
  aVazia.Add(CString());
  QZ_VERIFICA(rastro, "qzTextFile.Grava(uiPosicao, \"\")", lista.Arquivo().GravaColecao(uiPosicao, aVazia));
  return codigos::kOk;
}
