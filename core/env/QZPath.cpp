#include "core/env/QZPath.h"

#include "core/platform/Plataforma.h"
#include "core/platform/Textos.h"

namespace {

struct LinhaModulo {
  ModuloQZ eModulo;
  const char *lpCodigo;   ///< two letters; name of the company's registry value
  const char *lpProduto;  ///< name of the product's registry key
};

// The rows of the suite's module table that this system uses. The electronic-invoice module has no row of its own: its
// directories derive from module "DF".
constexpr LinhaModulo kModulos[] = {{QZ_DF, "DF", "Miran Empresarial"}};

const LinhaModulo *ProcuraModulo(ModuloQZ eModulo) {
  for (const LinhaModulo &linha : kModulos) {
    if (linha.eModulo == eModulo) {
      return &linha;
    }
  }
  return nullptr;
}

CString ComBarraFinal(CString diretorio) {
  if (!diretorio.empty() && diretorio.back() != '\\') {
    diretorio += '\\';
  }
  return diretorio;
}

CString LeDiretorio(const CString &chave, const CString &nome) {
  return ComBarraFinal(plataforma::Registro().LeTexto(chave, nome, false).value_or(CString()));
}

/// Where the file name starts: behind the last separator.
std::size_t InicioNome(const CString &caminho) {
  const std::size_t barra = caminho.find_last_of("\\/:");
  return barra == CString::npos ? 0 : barra + 1;
}

std::size_t PontoDaExtensao(const CString &caminho) {
  const std::size_t ponto = caminho.find_last_of('.');
  return ponto == CString::npos || ponto < InicioNome(caminho) ? CString::npos : ponto;
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
  const CString chave = Junta(Junta(kChaveSuite, "Empresas"), sEmpresa);
  if (pLinha == nullptr || !plataforma::Registro().ExisteChave(chave)) {
    return {};
  }
  const CString diretorio = LeDiretorio(chave, pLinha->lpCodigo);
  return bNotaEletronica && !diretorio.empty() ? diretorio + "NFe\\" : diretorio;
}

CString CQZPath::DiretorioInstalacao(ModuloQZ eModulo) {
  const LinhaModulo *pLinha = ProcuraModulo(eModulo == QZ_NFE ? QZ_DF : eModulo);
  return pLinha == nullptr ? CString() : LeDiretorio(Junta(kChaveSuite, pLinha->lpProduto), "Path");
}

CString CQZPath::DiretorioCompartilhado(const CString &sNomeValor) {
  return LeDiretorio(kChaveSuite, sNomeValor);
}

CString CQZPath::Junta(const CString &esquerda, const CString &direita) {
  if (esquerda.empty() || direita.empty()) {
    return esquerda + direita;
  }
  const bool bEsquerda = esquerda.back() == '\\';
  const bool bDireita = direita.front() == '\\';
  if (bEsquerda && bDireita) {
    return esquerda + direita.substr(1);
  }
  return bEsquerda || bDireita ? esquerda + direita : esquerda + "\\" + direita;
}

CString CQZPath::ChangeExtension(const CString &caminho, const CString &extensao) {
  return caminho.substr(0, PontoDaExtensao(caminho)) + "." + extensao;
}

CString CQZPath::Extensao(const CString &caminho) {
  const std::size_t ponto = PontoDaExtensao(caminho);
  return ponto == CString::npos ? CString() : caminho.substr(ponto + 1);
}

bool CQZPath::TemExtensao(const CString &caminho, const char *extensao) {
  return plataforma::Maiusculas(Extensao(caminho)) == extensao;
}
