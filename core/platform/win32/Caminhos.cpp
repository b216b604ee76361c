#include "core/platform/Caminhos.h"

namespace {

constexpr bool Separador(char c) {
  return c == '\\' || c == '/';
}

constexpr bool LetraDeUnidade(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

}  // namespace

/// "C:\..." or "\\server\...". Neither "C:name" nor "\name": they depend on the current directory or drive.
bool plataforma::EhCaminhoAbsoluto(const CString &sCaminho) {
  if (sCaminho.size() < 3) {
    return false;
  }
  const bool bUnidade = LetraDeUnidade(sCaminho[0]) && sCaminho[1] == ':' && Separador(sCaminho[2]);
  const bool bRede = Separador(sCaminho[0]) && Separador(sCaminho[1]) && !Separador(sCaminho[2]);
  return bUnidade || bRede;
}
