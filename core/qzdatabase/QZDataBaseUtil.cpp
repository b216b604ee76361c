#include "core/qzdatabase/QZDataBaseUtil.h"

#include <algorithm>
#include <vector>

#include "core/platform/Plataforma.h"

namespace {

constexpr char kFonte[] = "QZDataBaseUtil.cpp";
constexpr std::uint32_t kPausaMs = 10;

/// Repeats `acao` until `feito` holds, at most 50 times with 10 ms after each try. The outcome is judged by the look of
/// the disk alone, whatever the action reported.
template <typename A, typename F>
bool RepeteAte(A &&acao, F &&feito) {
  for (int i = 0; i < kTentativasGravacao && !feito(); ++i) {
    if (acao()) {
      plataforma::Relogio().Espera(kPausaMs);
    }
  }
  return feito();
}

bool Existe(const CString &sCaminho) {
  return plataforma::Arquivos().Existe(sCaminho);
}

bool ApagaInsistindo(const CString &sCaminho) {
  return RepeteAte([&] { return static_cast<bool>(plataforma::Arquivos().Apaga(sCaminho)); },
                   [&] { return !Existe(sCaminho); });
}

bool MoveInsistindo(const CString &sOrigem, const CString &sDestino) {
  return RepeteAte([&] { return static_cast<bool>(plataforma::Arquivos().MoveSubstituindo(sOrigem, sDestino)); },
                   [&] { return !Existe(sOrigem); });
}

/// True when `sNome` has the mask's length and only digits, at least one, from the mask's first '?' up to its first
/// '.'.
bool AtendeMascara(const CString &sNome, const CString &sMascara) {
  const std::size_t inicio = sMascara.find('?');
  const std::size_t fim = std::min(sMascara.find('.'), sMascara.size());
  return sNome.size() == sMascara.size() && fim > inicio &&
         sNome.substr(inicio, fim - inicio).find_first_not_of("0123456789") == CString::npos;
}

}  // namespace

HRESULT CQZDataBaseUtil::RenomeiaArquivoTRA(const CString &sEmpresa, ModuloQZ eModulo, const CString &sNomeArquivo) {
  const CQZProfilerEmpresa profiler(sEmpresa, kUsuarioInterno, 0);
  const CQZRastro rastro(&profiler, {"CQZDataBaseUtil::RenomeiaArquivoTRA"}, kFonte);
  const CString sCaminho = CQZPath::CaminhoArquivo(eModulo, sEmpresa, sNomeArquivo);
  const CString sCaminhoTRA = CQZPath::ChangeExtension(sCaminho, "TRA");
  if (Existe(sCaminhoTRA)) {
    if (!MoveInsistindo(sCaminhoTRA, sCaminho)) {
      QZ_RETORNA_CODIGO(rastro, codigos::kTraNaoRenomeado);
    }
  } else if (!ApagaInsistindo(sCaminho)) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoApagado);
  }
  return codigos::kOk;
}

HRESULT CQZDataBaseUtil::MoveTRA(const CString &sEmpresa, ModuloQZ eModulo, const CString &sNomeArquivo) {
  const CQZProfilerEmpresa profiler(sEmpresa, kUsuarioInterno, 0);
  const CQZRastro rastro(&profiler, {"CQZDataBaseUtil::RenomeiaArquivoTRA"}, kFonte);
  const CString sCaminho = CQZPath::CaminhoArquivo(eModulo, sEmpresa, sNomeArquivo);
  const CString sCaminhoTRA = CQZPath::ChangeExtension(sCaminho, "TRA");
  if (!Existe(sCaminhoTRA) || !MoveInsistindo(sCaminhoTRA, sCaminho)) {
    QZ_RETORNA_CODIGO(rastro, codigos::kTraNaoRenomeado);
  }
  return codigos::kOk;
}

HRESULT CQZDataBaseUtil::DeletaArquivo(const CString &sEmpresa, ModuloQZ eModulo, const CString &sNomeArquivo) {
  const CQZProfilerEmpresa profiler(sEmpresa, kUsuarioInterno, 0);
  const CQZRastro rastro(&profiler, {"CQZDataBaseUtil::DeletaArquivo"}, kFonte);
  if (!ApagaInsistindo(CQZPath::CaminhoArquivo(eModulo, sEmpresa, sNomeArquivo))) {
    QZ_RETORNA_CODIGO(rastro, codigos::kArquivoNaoApagado);
  }
  return codigos::kOk;
}

HRESULT CQZDataBaseUtil::ResolveTRAEsquecido(const IQZDF_Profiler *pOwner, ModuloQZ eModulo,
                                             const CString &sNomeArquivo, std::size_t cbRegistro, bool *pbAdotado) {
  const CQZRastro rastro(pOwner, {"CQZDataBaseUtil::RemoveRegistroZero"}, kFonte);
  const CString sEmpresa = pOwner->GetEmpresa();
  const CString sNomeTRA = CQZPath::ChangeExtension(sNomeArquivo, "TRA");
  const CString sCaminhoTRA = CQZPath::CaminhoArquivo(eModulo, sEmpresa, sNomeTRA);
  *pbAdotado = false;
  if (!Existe(sCaminhoTRA)) {
    return codigos::kOk;
  }
  if (Existe(CQZPath::CaminhoArquivo(eModulo, sEmpresa, sNomeArquivo))) {
    QZ_VERIFICA(rastro, "DeletaArquivo(pOwner->GetEmpresa(), eModulo, sNomeTRA)",
                DeletaArquivo(sEmpresa, eModulo, sNomeTRA));
    return codigos::kOk;
  }
  std::uint64_t uiTamanho = 0;
  if (const plataforma::FalhaArquivo falha = plataforma::Arquivos().TamanhoDe(sCaminhoTRA, &uiTamanho)) {
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CQZFileBase::CatchInicializacao(falha));
  }
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
  const CQZRastro rastro(pOwner, {"CQZDataBaseUtil::RemoveRegistroZero"}, kFonte);
  psNome->clear();
  const std::size_t inicio = sMascara.find('?');
  if (inicio == CString::npos) {
    QZ_RETORNA_CODIGO(rastro, codigos::kMascaraSemCuringa);
  }
  std::vector<CString> nomes;
  const CString sListagem = sMascara.substr(0, inicio) + "*." + CQZPath::Extensao(sMascara);
  const plataforma::FalhaArquivo falha =
      plataforma::Arquivos().Lista(CQZPath::DiretorioModulo(eModulo, pOwner->GetEmpresa()), sListagem, &nomes);
  if (falha.causa != plataforma::CausaArquivo::Nenhuma && falha.causa != plataforma::CausaArquivo::CaminhoInvalido) {
    QZ_VERIFICA(rastro, "CatchInicializacao(pEx)", CQZFileBase::CatchInicializacao(falha));
  }
  const auto achado =
      std::find_if(nomes.begin(), nomes.end(), [&](const CString &sNome) { return AtendeMascara(sNome, sMascara); });
  if (achado != nomes.end()) {
    *psNome = *achado;
  }
  return codigos::kOk;
}
