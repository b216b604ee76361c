#include "core/env/BibliotecaSuite.h"

#include "core/platform/Caminhos.h"
#include "core/platform/Plataforma.h"

std::unique_ptr<plataforma::IBiblioteca> CarregaBibliotecaSuite(ModuloQZ eModulo, const CString &sNomeArquivo) {
  const CString sDiretorio = CQZPath::DiretorioInstalacao(eModulo);
  if (!plataforma::EhCaminhoAbsoluto(sDiretorio)) {
    return nullptr;
  }
  return plataforma::Bibliotecas().Carrega(CQZPath::Junta(CQZPath::Junta(sDiretorio, "x64"), sNomeArquivo));
}
