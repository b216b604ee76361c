#include "core/env/QZPath.h"

#include "core/platform/Plataforma.h"
#include "core/platform/Textos.h"

namespace {

struct LinhaModulo {
  ModuloQZ eModulo;
  const char *lpCodigo;   ///< two letters; name of the company's registry value
  const char *lpProduto;  ///< name of the product's registry key
};

/// The rows of the suite's module table that this system uses. The electronic-invoice module has no row of its own: its
/// directories derive from module "DF".
constexpr LinhaModulo kModulos[] = {{QZ_DF, "DF", "Miran Empresarial"}};

const LinhaModulo *ProcuraModulo(ModuloQZ eModulo) {
  for (const LinhaModulo &linha : kModulos) {
    if (linha.eModulo == eModulo) {
      return &linha;
    }
  }
  return nullptr;
}

CString ComBarraFinal(CString sDiretorio) {
  if (!sDiretorio.empty() && sDiretorio.back() != '\\') {
    sDiretorio += '\\';
  }
  return sDiretorio;
}

CString LeDiretorio(const CString &sChave, const CString &sNome) {
  return ComBarraFinal(plataforma::Registro().LeTexto(sChave, sNome, false).value_or(CString()));
}

/// Where the file name starts: behind the last separator.
std::size_t InicioNome(const CString &sCaminho) {
  const std::size_t barra = sCaminho.find_last_of("\\/:");
  return barra == CString::npos ? 0 : barra + 1;
}

std::size_t PontoDaExtensao(const CString &sCaminho) {
  const std::size_t ponto = sCaminho.find_last_of('.');
  return ponto == CString::npos || ponto < InicioNome(sCaminho) ? CString::npos : ponto;
}

}  // namespace

CString CQZPath::CaminhoArquivo(ModuloQZ eModulo, const CString &sEmpresa, const CString &sNomeArquivo) {
  return Junta(DiretorioModulo(eModulo, sEmpresa), sNomeArquivo);
}

CString CQZPath::DiretorioModulo(ModuloQZ eModulo, const CString &sEmpresa) {
  switch (eModulo) {
    case kModuloInstalacao:
      return DiretorioInstalacao(QZ_DF);
    case kModuloRelatorios:
      return DiretorioCompartilhado("Relatorios");
    case kModuloMensagens:
      return DiretorioCompartilhado("Mensagens");
    case kModuloCadastros:
      return DiretorioCompartilhado("Cadastros");
    default:
      return DiretorioEmpresa(eModulo, sEmpresa);
  }
}

CString CQZPath::DiretorioEmpresa(ModuloQZ eModulo, const CString &sEmpresa) {
  const bool bNotaEletronica = eModulo == QZ_NFE;
  const LinhaModulo *pLinha = ProcuraModulo(bNotaEletronica ? QZ_DF : eModulo);
  const CString sChave = Junta(Junta(kChaveSuite, "Empresas"), sEmpresa);
  if (pLinha == nullptr || !plataforma::Registro().ExisteChave(sChave)) {
    return {};
  }
  const CString sDiretorio = LeDiretorio(sChave, pLinha->lpCodigo);
  return bNotaEletronica && !sDiretorio.empty() ? sDiretorio + "NFe\\" : sDiretorio;
}

CString CQZPath::DiretorioInstalacao(ModuloQZ eModulo) {
  const LinhaModulo *pLinha = ProcuraModulo(eModulo == QZ_NFE ? QZ_DF : eModulo);
  return pLinha == nullptr ? CString() : LeDiretorio(Junta(kChaveSuite, pLinha->lpProduto), "Path");
}

CString CQZPath::DiretorioCompartilhado(const CString &sNomeValor) {
  return LeDiretorio(kChaveSuite, sNomeValor);
}

CString CQZPath::Junta(const CString &sEsquerda, const CString &sDireita) {
  if (sEsquerda.empty() || sDireita.empty()) {
    return sEsquerda + sDireita;
  }
  const bool bEsquerda = sEsquerda.back() == '\\';
  const bool bDireita = sDireita.front() == '\\';
  if (bEsquerda && bDireita) {
    return sEsquerda + sDireita.substr(1);
  }
  return bEsquerda || bDireita ? sEsquerda + sDireita : sEsquerda + "\\" + sDireita;
}

CString CQZPath::ChangeExtension(const CString &sCaminho, const CString &sExtensao) {
  return sCaminho.substr(0, PontoDaExtensao(sCaminho)) + "." + sExtensao;
}

CString CQZPath::Extensao(const CString &sCaminho) {
  const std::size_t ponto = PontoDaExtensao(sCaminho);
  return ponto == CString::npos ? CString() : sCaminho.substr(ponto + 1);
}

bool CQZPath::TemExtensao(const CString &sCaminho, const char *lpExtensao) {
  return plataforma::Maiusculas(Extensao(sCaminho)) == lpExtensao;
}
