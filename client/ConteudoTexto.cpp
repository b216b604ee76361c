#include "client/ConteudoTexto.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "client/Codificacao.h"

namespace {

using namespace std::string_view_literals;

constexpr char32_t kSubstituto = 0xFFFD;

struct CMarca {
  std::string_view sBytes;
  ECodificacao eQual;
};
constexpr std::array kMarcas{CMarca{"\xEF\xBB\xBF"sv, ECodificacao::Utf8}, CMarca{"\xFF\xFE"sv, ECodificacao::Utf16le},
                             CMarca{"\xFE\xFF"sv, ECodificacao::Utf16be}};

struct CNome {
  std::string_view sNome;
  ECodificacao eQual;
};
constexpr std::array kNomes{CNome{"windows-1252", ECodificacao::Windows1252}, CNome{"utf-8", ECodificacao::Utf8},
                            CNome{"utf-16", ECodificacao::Utf16le}, CNome{"utf-16le", ECodificacao::Utf16le},
                            CNome{"utf-16be", ECodificacao::Utf16be}};

std::string NomeDa(ECodificacao eQual) {
  const auto it = std::find_if(kNomes.begin(), kNomes.end(), [&](const CNome &nome) { return nome.eQual == eQual; });
  return std::string(it->sNome);
}

bool EhUtf16(ECodificacao eQual) {
  return eQual == ECodificacao::Utf16le || eQual == ECodificacao::Utf16be;
}

std::string De16Para8(std::string_view sBytes, bool bMaiorPrimeiro) {
  if (sBytes.size() % 2 != 0) {
    throw CErroCodificacao("o arquivo UTF-16 termina no meio de um caractere"_pt);
  }
  const auto unidade = [&](std::size_t i) {
    const auto uiUm = static_cast<std::uint8_t>(sBytes[i]);
    const auto uiDois = static_cast<std::uint8_t>(sBytes[i + 1]);
    return static_cast<char32_t>(bMaiorPrimeiro ? uiUm << 8 | uiDois : uiDois << 8 | uiUm);
  };
  std::string sUtf8;
  for (std::size_t i = 0; i < sBytes.size(); i += 2) {
    char32_t uiCaractere = unidade(i);
    if (uiCaractere >= 0xD800 && uiCaractere < 0xE000) {
      const char32_t uiSegunda = uiCaractere < 0xDC00 && i + 2 < sBytes.size() ? unidade(i + 2) : 0;
      const bool bPar = uiSegunda >= 0xDC00 && uiSegunda < 0xE000;
      uiCaractere = bPar ? 0x10000 + ((uiCaractere - 0xD800) << 10) + (uiSegunda - 0xDC00) : kSubstituto;
      i += bPar ? 2 : 0;
    }
    AcrescentaCaractere(sUtf8, uiCaractere);
  }
  return sUtf8;
}

/// How much of a text is UTF-8: characters of several bytes, the line of the first of them, bytes that belong to none.
struct CIndicios {
  std::size_t uiCompostos = 0;
  std::size_t uiPrimeiraLinha = 0;
  std::size_t uiSoltos = 0;
};

CIndicios ProcuraUtf8(std::string_view sResto) {
  CIndicios indicios;
  std::size_t uiLinha = 1;
  while (!sResto.empty()) {
    const std::optional<char32_t> uiCaractere = TiraCaractere(sResto);
    if (!uiCaractere) {
      ++indicios.uiSoltos;
      sResto.remove_prefix(1);
    } else if (*uiCaractere >= 0x80) {
      indicios.uiPrimeiraLinha = indicios.uiCompostos++ == 0 ? uiLinha : indicios.uiPrimeiraLinha;
    } else if (*uiCaractere == '\n') {
      ++uiLinha;
    }
  }
  return indicios;
}

struct CPalpite {
  bool bUtf8;
  std::string sAviso;
};

CPalpite Adivinha(std::string_view sBytes) {
  // What a file of columns begins with is ASCII.
  if (sBytes.size() >= 2 && (sBytes[0] == '\0') != (sBytes[1] == '\0')) {
    throw CErroCodificacao("o arquivo parece UTF-16 sem marca de codificação; se é, use --codificacao "_pt +
                           NomeDa(sBytes[0] == '\0' ? ECodificacao::Utf16be : ECodificacao::Utf16le));
  }
  const CIndicios indicios = ProcuraUtf8(sBytes);
  if (indicios.uiCompostos == 0) {
    return {false, ""};
  }
  const std::string sOnde = " (o primeiro acento, na linha " + std::to_string(indicios.uiPrimeiraLinha) + ")";
  if (indicios.uiSoltos == 0) {
    return {true, "aviso: o arquivo não tem marca de codificação e foi lido como UTF-8, o que os seus bytes são"_pt +
                      sOnde + "; se for outra, use --codificacao windows-1252"};
  }
  return {false, "aviso: o arquivo foi lido como Windows-1252, mas parte dos seus bytes é UTF-8"_pt + sOnde +
                     "; confira os acentos"};
}

}  // namespace

std::optional<ECodificacao> CodificacaoDoNome(std::string_view sNome) {
  std::string sMinusculas(sNome);
  std::transform(sMinusculas.begin(), sMinusculas.end(), sMinusculas.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  const auto it = std::find_if(kNomes.begin(), kNomes.end(), [&](const CNome &n) { return n.sNome == sMinusculas; });
  return it == kNomes.end() ? std::nullopt : std::optional(it->eQual);
}

std::string_view MarcaDaCodificacao(ECodificacao eQual) {
  const auto it = std::find_if(kMarcas.begin(), kMarcas.end(), [&](const CMarca &m) { return m.eQual == eQual; });
  return it == kMarcas.end() ? std::string_view() : it->sBytes;
}

std::string Codifica(std::string_view sTexto, ECodificacao eQual) {
  if (eQual == ECodificacao::Windows1252) {
    return std::string(sTexto);
  }
  if (eQual == ECodificacao::Utf8) {
    return De1252Para8(sTexto);
  }
  std::string sUnidades;
  for (const char c : sTexto) {
    const char16_t uiUnidade = De1252ParaUnicode(c);
    const std::array<char, 2> aBytes{static_cast<char>(uiUnidade >> 8), static_cast<char>(uiUnidade & 0xFF)};
    const bool bMaiorPrimeiro = eQual == ECodificacao::Utf16be;
    sUnidades += {aBytes[bMaiorPrimeiro ? 0 : 1], aBytes[bMaiorPrimeiro ? 1 : 0]};
  }
  return sUnidades;
}

CConteudoTexto Decodifica(std::string sBytes, std::optional<ECodificacao> eDada) {
  if (sBytes.starts_with("\xFF\xFE\0\0"sv) || sBytes.starts_with("\0\0\xFE\xFF"sv)) {
    throw CErroCodificacao("o arquivo é UTF-32, que não é lido; grave-o em UTF-8"_pt);
  }
  const auto marca =
      std::find_if(kMarcas.begin(), kMarcas.end(), [&](const CMarca &m) { return sBytes.starts_with(m.sBytes); });
  if (marca != kMarcas.end()) {
    if (eDada && *eDada != marca->eQual && !(EhUtf16(*eDada) && EhUtf16(marca->eQual))) {
      throw CErroCodificacao("a marca no começo do arquivo é de "_pt + NomeDa(marca->eQual) + ", e --codificacao diz " +
                             NomeDa(*eDada));
    }
    sBytes.erase(0, marca->sBytes.size());
    eDada = marca->eQual;
  }
  if (!eDada) {
    CPalpite palpite = Adivinha(sBytes);
    return {std::move(sBytes), palpite.bUtf8, std::move(palpite.sAviso)};
  }
  if (EhUtf16(*eDada)) {
    return {De16Para8(sBytes, *eDada == ECodificacao::Utf16be), true, ""};
  }
  return {std::move(sBytes), *eDada == ECodificacao::Utf8, ""};
}
