// The message catalogue, as a file of any bytes.
//
// Property: the text of any number is that of the first line with it, as a reader finds who takes the file character by
// character; a catalogue that is there never shows a box.

#include "core/errors/QZMensagem.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <map>
#include <regex>

#include "core/env/QZPath.h"
#include "fuzz/Entrada.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/ServicosFalsos.h"

namespace {

constexpr std::size_t kMaiorLinha = 1023;

using Textos = std::map<std::uint32_t, std::string>;

/// As the C library reads it, at the nearest end of 32 bits when it is beyond.
std::uint32_t Numero(const std::string &sLinha) {
  using Limites = std::numeric_limits<std::int32_t>;
  const long long iNumero = std::strtoll(sLinha.c_str(), nullptr, 10);
  return static_cast<std::uint32_t>(std::clamp<long long>(iNumero, Limites::min(), Limites::max()));
}

void AnotaLinha(std::string sLinha, Textos *pTextos) {
  const std::uint32_t uiNumero = Numero(sLinha);
  if (sLinha.back() == '\n') {
    sLinha.pop_back();
  }
  static const std::regex quebra(R"(\\n)");
  pTextos->emplace(uiNumero, sLinha.size() > 8 ? std::regex_replace(sLinha.substr(8), quebra, "\n") : "");
}

Textos Referencia(const std::string &sCatalogo) {
  Textos textos;
  std::string sLinha;
  for (std::size_t i = 0; i < sCatalogo.size() && sCatalogo[i] != '\x1A'; ++i) {
    const bool bFimDeLinha = sCatalogo.compare(i, 2, "\r\n") == 0;
    i += bFimDeLinha ? 1 : 0;
    sLinha += sCatalogo[i];
    if (sCatalogo[i] == '\n' || sLinha.size() == kMaiorLinha) {
      AnotaLinha(sLinha, &textos);
      sLinha.clear();
    }
  }
  if (!sLinha.empty()) {
    AnotaLinha(sLinha, &textos);
  }
  return textos;
}

}  // namespace

void fuzz::Executa(CEntrada *pEntrada) {
  static const apoio::PastaTemporaria pasta;
  apoio::RegistroFalso registro;
  registro.m_textos[{kChaveSuite, "Mensagens"}] = pasta.Caminho();
  apoio::CaixaFalsa caixa;
  const apoio::ServicosTrocados servicos(nullptr, &registro, nullptr, nullptr, &caixa);

  const auto uiQualquer = pEntrada->Valor<std::uint32_t>();
  const std::string sCatalogo = pEntrada->Resto();
  apoio::EscreveArquivo(pasta / "QZMEMens.txt", sCatalogo);
  Textos textos = Referencia(sCatalogo);
  textos.try_emplace(uiQualquer);
  for (const auto &[uiNumero, sTexto] : textos) {
    Exige(CQZMensagem::LeMensagem(uiNumero, 1) == sTexto, "the text of a number");
  }
  Exige(caixa.Toma().empty(), "no box");
}
