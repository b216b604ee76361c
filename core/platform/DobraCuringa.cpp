#include "core/platform/DobraCuringa.h"

#include <optional>

#include "core/platform/Textos.h"

namespace plataforma {
namespace {

bool EhLetraDePadrao(unsigned letra) {
  return letra != 0 && letra != '*' && letra != '?' && letra != ';';
}

/// Whether the match takes `letra` for any of `sOutras`, in one question. The 'A' in front keeps a blank from being
/// skipped as one that leads a pattern.
bool EhUmaDe(unsigned letra, const CString &sOutras) {
  CString sPadroes;
  for (const char outra : sOutras) {
    sPadroes.append({'A', outra, ';'});
  }
  return CasaCuringa((CString("A") + static_cast<char>(letra)).c_str(), sPadroes.c_str());
}

/// True when the match says of every letter of a text and every letter of a pattern what the table says.
bool Confere(const DobraLetras &dobra) {
  for (unsigned letra = 1; letra < dobra.size(); ++letra) {
    CString sOutras;
    for (unsigned b = 1; b < dobra.size(); ++b) {
      if (!EhLetraDePadrao(b)) {
        continue;
      }
      if (dobra[b] != dobra[letra]) {
        sOutras += static_cast<char>(b);
      } else if (!EhUmaDe(letra, CString(1, static_cast<char>(b)))) {
        return false;
      }
    }
    if (EhUmaDe(letra, sOutras)) {
      return false;
    }
  }
  return true;
}

std::optional<DobraLetras> Levanta() {
  if (!PaginaDeUmByte()) {
    return std::nullopt;
  }
  DobraLetras dobra{};
  CString sMenores;  // the smallest of each letter met so far
  for (unsigned letra = 1; letra < dobra.size(); ++letra) {
    dobra[letra] = static_cast<unsigned char>(letra);
    if (!EhLetraDePadrao(letra)) {
      continue;
    }
    if (!EhUmaDe(letra, sMenores)) {
      sMenores += static_cast<char>(letra);
      continue;
    }
    for (const char menor : sMenores) {
      if (EhUmaDe(letra, CString(1, menor))) {
        dobra[letra] = static_cast<unsigned char>(menor);
        break;
      }
    }
  }
  return Confere(dobra) ? std::optional(dobra) : std::nullopt;
}

}  // namespace

const DobraLetras *DobraDoCuringa() {
  static const std::optional<DobraLetras> dobra = Levanta();
  return dobra ? &*dobra : nullptr;
}

}  // namespace plataforma
