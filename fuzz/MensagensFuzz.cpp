// The message catalogue, as a file of any bytes.
//
// Property: the text of any number is that of the first line with it, as a reader finds who takes the file character by
// character; a catalogue that is there never shows a box.

#include "core/errors/QZMensagem.h"

#include <algorithm>
#include <limits>
#include <map>

#include "core/env/QZPath.h"
#include "fuzz/Entrada.h"
#include "fuzz/Exige.h"
#include "tests/apoio/CaixaFalsa.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/RegistroFalso.h"
#include "tests/apoio/ServicosTrocados.h"

namespace {

constexpr std::size_t kMaiorLinha = 1023;

using Textos = std::map<std::uint32_t, std::string>;

std::uint32_t Numero(const std::string &sLinha) {
  const char *p = sLinha.c_str();
  while (*p == ' ' || (*p >= '\t' && *p <= '\r')) {
    ++p;
  }
  const bool bNegativo = *p == '-';
  p += bNegativo || *p == '+' ? 1 : 0;
  constexpr std::int64_t kMaior = std::numeric_limits<std::int32_t>::max();
  const std::int64_t iLimite = bNegativo ? kMaior + 1 : kMaior;
  std::int64_t iNumero = 0;
  for (; *p >= '0' && *p <= '9'; ++p) {
    iNumero = std::min(iNumero * 10 + (*p - '0'), iLimite);
  }
  return static_cast<std::uint32_t>(bNegativo ? -iNumero : iNumero);
}

void AnotaLinha(std::string sLinha, Textos *pTextos) {
  const std::uint32_t uiNumero = Numero(sLinha);
  if (sLinha.back() == '\n') {
    sLinha.pop_back();
  }
  std::string sTexto;
  for (std::size_t i = 8; i < sLinha.size(); ++i) {
    const bool bQuebra = sLinha[i] == '\\' && i + 1 < sLinha.size() && sLinha[i + 1] == 'n';
    sTexto += bQuebra ? '\n' : sLinha[i];
    i += bQuebra ? 1 : 0;
  }
  pTextos->emplace(uiNumero, sTexto);
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

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *pBytes, std::size_t qtd) {
  constexpr int kConsultas = 8;
  static const apoio::PastaTemporaria pasta;
  apoio::RegistroFalso registro;
  registro.m_textos[{kChaveSuite, "Mensagens"}] = pasta.Caminho();
  apoio::CaixaFalsa caixa;
  const apoio::ServicosTrocados servicos(nullptr, &registro, nullptr, nullptr, &caixa);

  fuzz::CEntrada entrada(pBytes, qtd);
  const auto uiQualquer = entrada.Valor<std::uint32_t>();
  const std::string sCatalogo = entrada.Resto();
  apoio::EscreveArquivo(pasta / "QZMEMens.txt", sCatalogo);
  Textos textos = Referencia(sCatalogo);
  fuzz::Exige(CQZMensagem::LeMensagem(uiQualquer, 1) == textos[uiQualquer], "the text of any number");
  int iConsultas = 0;
  for (auto it = textos.begin(); it != textos.end() && iConsultas < kConsultas; ++it, ++iConsultas) {
    fuzz::Exige(CQZMensagem::LeMensagem(it->first, 1) == it->second, "the text of a number of the catalogue");
  }
  fuzz::Exige(caixa.Toma().empty(), "no box");
  return 0;
}
