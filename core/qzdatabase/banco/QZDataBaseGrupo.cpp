// A group of files: those whose names differ in a run of digits.

#include <vector>

#include "core/platform/Plataforma.h"
#include "core/platform/Textos.h"
#include "core/qzdatabase/banco/QZDataBaseUtil.h"

namespace {

constexpr char kFonte[] = "QZDataBaseGrupo.cpp";

/// The pattern of a group: its name with a '*' before the first '.' in place of the '?'s. Only the name is edited, a
/// directory may hold either character.
CString PadraoDoGrupo(CString sNome) {
  std::erase(sNome, '?');
  const std::size_t ponto = sNome.find('.');
  return sNome.insert(ponto != CString::npos ? ponto : sNome.size(), "*");
}

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

HRESULT CQZDataBase::RenomeiaGroup(const CString &sFileName) {
  const CQZOperacao rastro(this, {"CQZDataBase::RenomeiaGroup"}, kFonte);
  const CString sExtension = CQZPath::Extensao(sFileName);
  const CString sMascaraTRA = CQZPath::ChangeExtension(sFileName, "TRA");
  std::vector<CString> nomes;
  const plataforma::FalhaArquivo falha = plataforma::Arquivos().Lista(
      CQZPath::DiretorioModulo(GetModulo(), GetEmpresa()), PadraoDoGrupo(sMascaraTRA), &nomes);
  if (falha.causa != plataforma::CausaArquivo::Nenhuma && falha.causa != plataforma::CausaArquivo::CaminhoInvalido) {
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CQZFileBase::CatchInicializacao(falha));
  }
  for (const CString &sNome : nomes) {
    if (PertenceAoGrupo(sNome, sMascaraTRA)) {
      QZ_VERIFICA(rastro,
                  "CQZDataBaseUtil::RenomeiaArquivoTRA(GetEmpresa(), GetModulo(), "
                  "CQZPath::ChangeExtension(finder.GetFileName(), sExtension))",
                  CQZDataBaseUtil::MoveTRA(GetEmpresa(), GetModulo(), CQZPath::ChangeExtension(sNome, sExtension)));
    }
  }
  return codigos::kOk;
}
