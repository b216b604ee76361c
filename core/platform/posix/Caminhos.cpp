#include "core/platform/Caminhos.h"

bool plataforma::CaminhoAbsoluto(const CString &caminho) {
  return !caminho.empty() && (caminho.front() == '/' || caminho.front() == '\\');
}
