#include "core/platform/Caminhos.h"

bool plataforma::EhCaminhoAbsoluto(const CString &caminho) {
  return !caminho.empty() && (caminho.front() == '/' || caminho.front() == '\\');
}
