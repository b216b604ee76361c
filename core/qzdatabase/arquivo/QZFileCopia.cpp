#include "core/qzdatabase/arquivo/QZFileCopia.h"

namespace {

constexpr char kFonteFileCopia[] = "QZFileCopia.cpp";

}  // namespace

CQZFileCopia::CQZFileCopia(const CString &sNomeArquivo, IDonoDeArquivos *pDataBase)
    : CQZFileBase(sNomeArquivo, pDataBase) {
  const CQZEscopoProfiler escopo(this, {"CQZFileCopia::CQZFileCopia"}, [&] {
    return ParametrosEscopo{{"sNomeArquivo", sNomeArquivo}};
  });
}

/// Does not call the base: no file is opened, no header managed.
HRESULT CQZFileCopia::OnInicializa() {
  const CQZOperacao rastro(this, {"CQZFileCopia::OnInicializa"}, kFonteFileCopia);
  QZ_VERIFICA(rastro, "CQZDataBaseUtil::DeletaArquivo(GetEmpresa(), m_eModulo, m_sNomeArquivo)",
              ServicosDeArquivo().DeletaArquivo(GetEmpresa(), GetModulo(), GetNomeArquivo()));
  return codigos::kOk;
}
