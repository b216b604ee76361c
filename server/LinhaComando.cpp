#include "server/LinhaComando.h"

#include <cstring>
#include <optional>
#include <string_view>

namespace {

struct Chave {
  std::string_view palavra;  ///< lower case
  EComando comando;
};

constexpr Chave kChaves[] = {
    {"regserver", EComando::Registra},
    {"unregserver", EComando::Desregistra},
    {"regserverperuser", EComando::RegistraPorUsuario},
    {"unregserverperuser", EComando::DesregistraPorUsuario},
};

char Minuscula(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool MesmaPalavra(std::string_view sPalavra, std::string_view sMinuscula) {
  if (sPalavra.size() != sMinuscula.size()) {
    return false;
  }
  for (std::size_t i = 0; i < sPalavra.size(); ++i) {
    if (Minuscula(sPalavra[i]) != sMinuscula[i]) {
      return false;
    }
  }
  return true;
}

/// The first word behind a '-' or '/' for which `casa` answers something; what it answers, or `senao`.
template <class Resposta, class Casa>
Resposta Procura(const char *lpLinha, Resposta senao, Casa casa) {
  const char *lp = lpLinha == nullptr ? "" : lpLinha;
  while ((lp = std::strpbrk(lp, "-/")) != nullptr) {
    ++lp;
    // A quote ends a word too: some launchers quote every argument.
    if (const std::optional<Resposta> resposta = casa(std::string_view(lp, std::strcspn(lp, " \t\"")))) {
      return *resposta;
    }
  }
  return senao;
}

}  // namespace

EComando LeLinhaComando(const char *lpLinha) {
  return Procura(lpLinha, EComando::Serve, [](std::string_view sPalavra) -> std::optional<EComando> {
    for (const Chave &chave : kChaves) {
      if (MesmaPalavra(sPalavra, chave.palavra)) {
        return chave.comando;
      }
    }
    return std::nullopt;
  });
}

bool IniciadoParaCliente(const char *lpLinha) {
  return Procura(lpLinha, false, [](std::string_view sPalavra) {
    return MesmaPalavra(sPalavra, "embedding") ? std::optional(true) : std::nullopt;
  });
}
