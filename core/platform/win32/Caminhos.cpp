#include "core/platform/Caminhos.h"

namespace {

constexpr bool Separador(char c) {
  return c == '\\' || c == '/';
}

constexpr bool LetraDeUnidade(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

}  // namespace

// "C:\..." or "\\server\...". Neither "C:name" nor "\name": they depend on the current directory or drive.
bool plataforma::EhCaminhoAbsoluto(const CString &caminho) {
  if (caminho.size() < 3) {
    return false;
  }
  const bool bUnidade = LetraDeUnidade(caminho[0]) && caminho[1] == ':' && Separador(caminho[2]);
  const bool bRede = Separador(caminho[0]) && Separador(caminho[1]) && !Separador(caminho[2]);
  return bUnidade || bRede;
}
