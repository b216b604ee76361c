#include "core/qzdatabase/banco/QZDataBase.h"

#include "core/qzdatabase/arquivo/QZFileBase.h"

namespace {

constexpr char kFonte[] = "QZDataBase.cpp";

}  // namespace

CQZDataBase::CQZDataBase(ModuloQZ eModulo, plataforma::NivelTrava eNivelArquivos)
    : m_eModulo(eModulo), m_eNivelArquivos(eNivelArquivos), m_secao(plataforma::NivelTrava::ContagemBanco) {}

CQZDataBase::~CQZDataBase() {
  FinalizaNoDestrutor();
  for (std::size_t idx = 0; idx < m_aFiles.GetSize(); ++idx) {
    m_aFiles.GetData()[idx]->m_pDataBase = nullptr;
  }
}

void CQZDataBase::AddFile(CQZFileBase *pFile) {
  m_aFiles.Add(pFile);
}

void CQZDataBase::RemoveFile(CQZFileBase *pFile) {
  for (std::size_t idx = 0; idx < m_aFiles.GetSize(); ++idx) {
    if (m_aFiles.GetData()[idx] == pFile) {
      m_aFiles.RemoveAt(idx);
      return;
    }
  }
}

HRESULT CQZDataBase::OnInicializa() {
  const CQZOperacao rastro(this, {"CQZDataBase::OnInicializa"}, kFonte);
  HRESULT hr = codigos::kOk;
  for (std::size_t idx = 0; idx < m_aFiles.GetSize(); ++idx) {
    if (QZ_FALHOU(rastro, hr, "m_aFiles[idx]->Inicializa(GetEmpresa(), GetUsuario(), GetNumeroSessao())",
                  m_aFiles[idx]->Inicializa(GetEmpresa(), GetUsuario(), GetNumeroSessao()))) {
      while (idx > 0) {
        static_cast<void>(m_aFiles[--idx]->Finaliza());
      }
      return hr;
    }
  }
  return hr;
}

HRESULT CQZDataBase::OnFinaliza() {
  const CQZOperacao rastro(this, {"CQZDataBase::OnFinaliza"}, kFonte);
  HRESULT hr = codigos::kOk;
  for (std::size_t idx = 0; idx < m_aFiles.GetSize(); ++idx) {
    static_cast<void>(QZ_FALHOU(rastro, hr, "m_aFiles[idx]->Finaliza()", m_aFiles[idx]->Finaliza()));
  }
  return hr;
}
