#include "core/platform/Caminhos.h"

bool plataforma::EhCaminhoAbsoluto(const CString &sCaminho) {
  return !sCaminho.empty() && (sCaminho.front() == '/' || sCaminho.front() == '\\');
}
