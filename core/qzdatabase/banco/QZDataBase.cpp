#include "core/qzdatabase/banco/QZDataBase.h"

#include <vector>

#include "core/platform/Plataforma.h"
#include "core/platform/Textos.h"
#include "core/qzdatabase/arquivo/QZFileBase.h"

namespace {

constexpr char kFonteDataBase[] = "QZDataBase.cpp";

/// True when the name is the mask with a digit for each '?', letter case aside.
bool PertenceAoGrupo(const CString &sNome, const CString &sMascara) {
  const CString sMaiusculo = plataforma::Maiusculas(sNome);
  const CString sMascaraMaiuscula = plataforma::Maiusculas(sMascara);
  if (sMaiusculo.size() != sMascaraMaiuscula.size()) {
    return false;
  }
  for (std::size_t i = 0; i < sMaiusculo.size(); ++i) {
    const bool bDigito = sMaiusculo[i] >= '0' && sMaiusculo[i] <= '9';
    if (sMascaraMaiuscula[i] == '?' ? !bDigito : sMaiusculo[i] != sMascaraMaiuscula[i]) {
      return false;
    }
  }
  return true;
}

}  // namespace

CQZDataBase::CQZDataBase(ModuloQZ eModulo, plataforma::NivelTrava eNivelArquivos)
    : m_eModulo(eModulo), m_eNivelArquivos(eNivelArquivos), m_secao(plataforma::NivelTrava::ContagemBanco) {}

CQZDataBase::~CQZDataBase() {
  FinalizaNoDestrutor();
  for (std::size_t idx = 0; idx < m_aFiles.GetSize(); ++idx) {
    m_aFiles.GetData()[idx]->Desliga();
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
  const CQZOperacao rastro(this, {"CQZDataBase::OnInicializa"}, kFonteDataBase);
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
  const CQZOperacao rastro(this, {"CQZDataBase::OnFinaliza"}, kFonteDataBase);
  HRESULT hr = codigos::kOk;
  for (std::size_t idx = 0; idx < m_aFiles.GetSize(); ++idx) {
    static_cast<void>(QZ_FALHOU(rastro, hr, "m_aFiles[idx]->Finaliza()", m_aFiles[idx]->Finaliza()));
  }
  return hr;
}

/// All names are collected before the first move: moving changes what a listing finds.
HRESULT CQZDataBase::RenomeiaGroup(const CString &sFileName) {
  const CQZOperacao rastro(this, {"CQZDataBase::RenomeiaGroup"}, kFonteDataBase);
  const CString sExtension = CQZPath::Extensao(sFileName);
  const CString sMascaraTRA = CQZPath::ChangeExtension(sFileName, "TRA");
  std::vector<CString> nomes;
  const plataforma::FalhaArquivo falha =
      plataforma::Arquivos().Lista(CQZPath::DiretorioModulo(GetModulo(), GetEmpresa()), &nomes);
  if (!falha.NaoEsta()) {
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CQZFileBase::CatchInicializacao(falha));
  }
  for (const CString &sNome : nomes) {
    if (PertenceAoGrupo(sNome, sMascaraTRA)) {
      QZ_VERIFICA(
          rastro,
          "CQZDataBaseUtil::RenomeiaArquivoTRA(GetEmpresa(), GetModulo(), "
          "CQZPath::ChangeExtension(finder.GetFileName(), sExtension))",
          ServicosDeArquivo().MoveTRA(GetEmpresa(), GetModulo(), CQZPath::ChangeExtension(sNome, sExtension), {}));
    }
  }
  return codigos::kOk;
}
