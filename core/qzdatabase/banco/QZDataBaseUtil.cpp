#include "core/qzdatabase/banco/QZDataBaseUtil.h"

#include <algorithm>
#include <vector>

#include "core/platform/Plataforma.h"
#include "core/platform/Textos.h"

namespace {

constexpr char kFonteDataBaseUtil[] = "QZDataBaseUtil.cpp";

/// True when `sNome` has the mask's length, what stands before the mask's first '?' and its extension, letter case
/// aside, and digits, at least one, from that '?' up to the mask's first '.'.
bool AtendeMascara(const CString &sNome, const CString &sMascara) {
  const std::size_t inicio = sMascara.find('?');
  const std::size_t fim = sMascara.find('.');
  if (sNome.size() != sMascara.size() || fim == CString::npos || fim <= inicio) {
    return false;
  }
  const CString sMaiusculo = plataforma::Maiusculas(sNome);
  const CString sMascaraMaiuscula = plataforma::Maiusculas(sMascara);
  const CString sExtensao = CQZPath::Extensao(sMaiusculo);
  const CString sExtensaoDaMascara = CQZPath::Extensao(sMascaraMaiuscula);
  return sMaiusculo.compare(0, inicio, sMascaraMaiuscula, 0, inicio) == 0 &&
         sNome.substr(inicio, fim - inicio).find_first_not_of("0123456789") == CString::npos &&
         std::equal(sExtensaoDaMascara.begin(), sExtensaoDaMascara.end(), sExtensao.begin(), sExtensao.end(),
                    [](char daMascara, char letra) { return daMascara == '?' || daMascara == letra; });
}

/// Takes the file out of the list of created files, then deletes it. In this order an interruption leaves a file that
/// is not listed, which harms nobody; a listed file that is gone would lock the company out. A file that stays is
/// listed again.
HRESULT ApagaDeProposito(const CQZRastro &rastro, const IQZDF_Profiler &dono, ModuloQZ eModulo,
                         const CString &sNomeArquivo) {
  bool bEstavaNaLista = false;
  HRESULT hr = codigos::kOk;
  const bool bPode =
      !CQZFileBase::Controlado(sNomeArquivo) ||
      !QZ_FALHOU(rastro, hr, "RemoveControleCriacaoArquivos()",
                 CQZFileBase::RemoveControleCriacaoArquivos(dono, eModulo, sNomeArquivo, &bEstavaNaLista));
  if (bPode && !ApagaInsistindo(CQZPath::CaminhoArquivo(eModulo, dono.GetEmpresa(), sNomeArquivo))) {
    return codigos::kOk;
  }
  if (bEstavaNaLista) {
    static_cast<void>(CQZFileBase::CriaControleCriacaoArquivos(dono, eModulo, sNomeArquivo));
  }
  if (!bPode) {
    return hr;
  }
  QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoApagado);
}

}  // namespace

HRESULT CQZDataBaseUtil::RenomeiaArquivoTRA(const CString &sEmpresa, ModuloQZ eModulo, const CString &sNomeArquivo) {
  const CQZProfilerEmpresa profiler(sEmpresa, kUsuarioInterno, 0);
  const CQZRastro rastro(&profiler, {"CQZDataBaseUtil::RenomeiaArquivoTRA"}, kFonteDataBaseUtil);
  const CString sNomeTRA = CQZPath::ChangeExtension(sNomeArquivo, "TRA");
  bool bTemCompanheiro = false;
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)",
              CQZFileBase::CatchInicializacao(plataforma::Arquivos().Existe(
                  CQZPath::CaminhoArquivo(eModulo, sEmpresa, sNomeTRA), &bTemCompanheiro)));
  return bTemCompanheiro ? MoveTRA(sEmpresa, eModulo, sNomeArquivo)
                         : ApagaDeProposito(rastro, profiler, eModulo, sNomeArquivo);
}

HRESULT CQZDataBaseUtil::MoveTRA(const CString &sEmpresa, ModuloQZ eModulo, const CString &sNomeArquivo,
                                 const AntesDeMoverDeNovo &antesDeMoverDeNovo) {
  const CQZProfilerEmpresa profiler(sEmpresa, kUsuarioInterno, 0);
  const CQZRastro rastro(&profiler, {"CQZDataBaseUtil::RenomeiaArquivoTRA"}, kFonteDataBaseUtil);
  const CString sCaminho = CQZPath::CaminhoArquivo(eModulo, sEmpresa, sNomeArquivo);
  if (MoveInsistindo(CQZPath::ChangeExtension(sCaminho, "TRA"), sCaminho, antesDeMoverDeNovo)) {
    QZ_RETORNA_CODIGO(rastro, codigos::kTraNaoRenomeado);
  }
  return codigos::kOk;
}

HRESULT CQZDataBaseUtil::DeletaArquivo(const CString &sEmpresa, ModuloQZ eModulo, const CString &sNomeArquivo) {
  const CQZProfilerEmpresa profiler(sEmpresa, kUsuarioInterno, 0);
  const CQZRastro rastro(&profiler, {"CQZDataBaseUtil::DeletaArquivo"}, kFonteDataBaseUtil);
  return ApagaDeProposito(rastro, profiler, eModulo, sNomeArquivo);
}

HRESULT CQZDataBaseUtil::ResolveTRAEsquecido(const IQZDF_Profiler *pOwner, ModuloQZ eModulo,
                                             const CString &sNomeArquivo, std::size_t cbRegistro, bool *pbAdotado) {
  const CQZRastro rastro(pOwner, {"CQZDataBaseUtil::RemoveRegistroZero"}, kFonteDataBaseUtil);
  const CString sEmpresa = pOwner->GetEmpresa();
  const CString sNomeTRA = CQZPath::ChangeExtension(sNomeArquivo, "TRA");
  const CString sCaminhoTRA = CQZPath::CaminhoArquivo(eModulo, sEmpresa, sNomeTRA);
  *pbAdotado = false;
  bool bTemCompanheiro = false;
  bool bTemArquivo = false;
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)",
              CQZFileBase::CatchInicializacao(plataforma::Arquivos().Existe(sCaminhoTRA, &bTemCompanheiro)));
  if (!bTemCompanheiro) {
    return codigos::kOk;
  }
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)",
              CQZFileBase::CatchInicializacao(plataforma::Arquivos().Existe(
                  CQZPath::CaminhoArquivo(eModulo, sEmpresa, sNomeArquivo), &bTemArquivo)));
  // The file still has all records: nothing is lost with the companion, which this run makes anew.
  if (bTemArquivo) {
    QZ_VERIFICA(rastro, "DeletaArquivo(pOwner->GetEmpresa(), eModulo, sNomeTRA)",
                DeletaArquivo(sEmpresa, eModulo, sNomeTRA));
    return codigos::kOk;
  }
  std::uint64_t uiTamanho = 0;
  QZ_VERIFICA(rastro, "CatchInicializacao(pEx)",
              CQZFileBase::CatchInicializacao(plataforma::Arquivos().TamanhoDe(sCaminhoTRA, &uiTamanho)));
  // The only copy: where it is torn it is refused, and kept.
  if (uiTamanho % cbRegistro != 0) {
    QZ_RETORNA_CODIGO(rastro, codigos::kTamanhoNaoMultiplo);
  }
  QZ_VERIFICA(rastro, "RenomeiaArquivoTRA(pOwner->GetEmpresa(), eModulo, sNomeArquivo)",
              MoveTRA(sEmpresa, eModulo, sNomeArquivo));
  *pbAdotado = true;
  return codigos::kOk;
}

HRESULT CQZDataBaseUtil::ProcuraPelaMascara(const IQZDF_Profiler *pOwner, ModuloQZ eModulo, const CString &sMascara,
                                            CString *psNome) {
  const CQZRastro rastro(pOwner, {"CQZDataBaseUtil::RemoveRegistroZero"}, kFonteDataBaseUtil);
  psNome->clear();
  if (sMascara.find('?') == CString::npos) {
    QZ_RETORNA_CODIGO(rastro, codigos::kMascaraSemCuringa);
  }
  std::vector<CString> nomes;
  const plataforma::FalhaArquivo falha =
      plataforma::Arquivos().Lista(CQZPath::DiretorioModulo(eModulo, pOwner->GetEmpresa()), &nomes);
  if (!falha.NaoEsta()) {
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CQZFileBase::CatchInicializacao(falha));
  }
  const auto achado =
      std::find_if(nomes.begin(), nomes.end(), [&](const CString &sNome) { return AtendeMascara(sNome, sMascara); });
  if (achado != nomes.end()) {
    *psNome = *achado;
  }
  return codigos::kOk;
}
