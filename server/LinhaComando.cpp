#include "server/LinhaComando.h"

#include <cstring>
#include <string_view>

namespace {

struct Chave {
  std::string_view palavra;  // lower case
  Comando comando;
};

constexpr Chave kChaves[] = {
    {"regserver", Comando::Registra},
    {"unregserver", Comando::Desregistra},
    {"regserverperuser", Comando::RegistraPorUsuario},
    {"unregserverperuser", Comando::DesregistraPorUsuario},
};

char Minuscula(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool MesmaPalavra(std::string_view palavra, std::string_view minuscula) {
  if (palavra.size() != minuscula.size()) {
    return false;
  }
  for (std::size_t i = 0; i < palavra.size(); ++i) {
    if (Minuscula(palavra[i]) != minuscula[i]) {
      return false;
    }
  }
  return true;
}

}  // namespace

Comando LeLinhaComando(const char *lpLinha) {
  const char *lp = lpLinha == nullptr ? "" : lpLinha;
  while ((lp = std::strpbrk(lp, "-/")) != nullptr) {
    ++lp;
    // A quote ends a word too: some launchers quote every argument.
    const std::string_view palavra(lp, std::strcspn(lp, " \t\""));
    for (const Chave &chave : kChaves) {
      if (MesmaPalavra(palavra, chave.palavra)) {
        return chave.comando;
      }
    }
  }
  return Comando::Serve;
}
