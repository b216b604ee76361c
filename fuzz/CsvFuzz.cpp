// Vehicles from CSV text of any bytes, currency texts among them, and the texts of fields.
//
// Property: the reader takes and refuses the header and the lines that a plain reading letter by letter takes and
// refuses, and gives the same vehicles; what it has read it takes back from the program's own CSV, in both character
// sets. A currency text gives the value that exact decimal arithmetic gives, and one that is refused leaves the value
// alone. The text of any field of any record sets the field again; UTF-8 is taken exactly when it is that of some
// Windows-1252 text.

#include <algorithm>
#include <charconv>
#include <optional>
#include <regex>
#include <vector>

#include "client/Campos.h"
#include "client/Codificacao.h"
#include "client/ConteudoTexto.h"
#include "client/LeitorCsv.h"
#include "client/QZVeiculosMoeda.h"
#include "client/Saida.h"
#include "fuzz/Entrada.h"

namespace {

using namespace fuzz;
using Veiculo = tagREG_VEICULOPS;
using Partes = std::vector<std::string>;

constexpr std::string_view kMarca = "\xEF\xBB\xBF";
constexpr std::string_view kNaoUsada = "posicao";

// What is expected.

/// Windows-1252 of UTF-8, one character after the other: each is that of the one byte whose UTF-8 stands there.
std::optional<std::string> De8(std::string_view sUtf8) {
  std::string sTexto;
  while (!sUtf8.empty()) {
    int iByte = 0;
    while (iByte < 256 && !sUtf8.starts_with(De1252Para8(std::string(1, static_cast<char>(iByte))))) {
      ++iByte;
    }
    if (iByte == 256) {
      return std::nullopt;
    }
    sTexto += static_cast<char>(iByte);
    sUtf8.remove_prefix(De1252Para8(sTexto.substr(sTexto.size() - 1)).size());
  }
  return sTexto;
}

/// Whether a line ends at a place, or the text does.
bool FimDeLinha(std::string_view sTexto, std::size_t i) {
  const bool bRetorno = i < sTexto.size() && sTexto[i] == '\r';
  return i + (bRetorno ? 1 : 0) == sTexto.size() || sTexto[i + (bRetorno ? 1 : 0)] == '\n';
}

/// The field at a place, which moves behind it. Nothing when its quotes are wrong; those that hold a line end close
/// within 512 bytes.
std::optional<std::string> Parte(std::string_view sTexto, std::size_t *puiLugar) {
  std::size_t &i = *puiLugar;
  std::string sParte;
  if (!sTexto.substr(i).starts_with('"')) {
    for (; !FimDeLinha(sTexto, i) && sTexto[i] != ';'; ++i) {
      sParte += sTexto[i];
    }
    return sParte.find('"') == std::string::npos ? std::optional(sParte) : std::nullopt;
  }
  // Piece by piece, each with the quote before it: that which opens the field, or the second of two.
  do {
    const std::size_t uiFim = sTexto.find('"', i + 1);
    if (uiFim == std::string_view::npos) {
      return std::nullopt;
    }
    sParte += sTexto.substr(i, uiFim - i);
    i = uiFim + 1;
  } while (sTexto.substr(i).starts_with('"'));
  sParte.erase(0, 1);
  const bool bLonga = sParte.size() > 513 && sParte.find('\n') < sParte.size() - 1;
  return bLonga ? std::nullopt : std::optional(sParte);
}

/// The fields of the line at a place, which moves behind them.
std::optional<Partes> Separa(std::string_view sTexto, std::size_t *puiLugar) {
  Partes partes;
  for (;; ++*puiLugar) {
    const std::optional<std::string> sParte = Parte(sTexto, puiLugar);
    const bool bFim = FimDeLinha(sTexto, *puiLugar);
    if (!sParte || (!bFim && sTexto[*puiLugar] != ';')) {
      return std::nullopt;
    }
    partes.push_back(*sParte);
    if (bFim) {
      return partes;
    }
  }
}

struct Linha {
  std::size_t uiNumero;
  std::optional<Partes> partes;  ///< nothing when the quotes are wrong
};

/// The lines that are not empty. Where the quotes are wrong the first line alone is passed over.
std::vector<Linha> LinhasDe(std::string_view sTexto) {
  std::vector<Linha> linhas;
  for (std::size_t i = 0; i < sTexto.size(); i = std::min(sTexto.find('\n', i), sTexto.size() - 1) + 1) {
    if (!FimDeLinha(sTexto, i)) {
      const std::size_t uiInicio = i;
      const auto uiAntes = std::count(sTexto.begin(), sTexto.begin() + uiInicio, '\n');
      linhas.push_back({static_cast<std::size_t>(uiAntes) + 1, Separa(sTexto, &i)});
      i = linhas.back().partes ? i : uiInicio;
    }
  }
  return linhas;
}

/// The value of a currency text: its digits with all four decimals; nothing without the form or out of range.
std::optional<std::int64_t> ValorDe(const std::string &sTexto) {
  static const std::regex forma("(-?[0-9]+)([.,]([0-9]{1,4}))?");
  std::smatch partes;
  if (!std::regex_match(sTexto, partes, forma)) {
    return std::nullopt;
  }
  const std::string sDigitos = partes.str(1) + (partes.str(3) + "0000").substr(0, 4);
  std::int64_t vValor = 0;
  const auto lido = std::from_chars(sDigitos.data(), sDigitos.data() + sDigitos.size(), vValor);
  return lido.ec == std::errc() ? std::optional(vValor) : std::nullopt;
}

void ConfereMoeda(const std::string &sTexto) {
  constexpr std::int64_t kAntes = 77;
  std::int64_t vValor = kAntes;
  const std::optional<std::int64_t> esperado = ValorDe(sTexto);
  Exige(MoedaDeTexto(sTexto, vValor) == esperado.has_value(), "a value is taken when it has the form and the range");
  Exige(vValor == esperado.value_or(kAntes), "the value of a text");
}

/// The fields of the columns, null for the one that is taken and not used.
using Colunas = std::vector<const CCampo *>;

/// Nothing for a header that cannot be used.
std::optional<Colunas> ColunasDe(const std::vector<Linha> &linhas) {
  if (linhas.empty() || !linhas[0].partes) {
    return std::nullopt;
  }
  Colunas colunas;
  for (const std::string &sNome : *linhas[0].partes) {
    const CCampo *const pCampo = ProcuraCampo(CamposVeiculo(), sNome);
    if ((pCampo == nullptr && sNome != kNaoUsada) || std::count(colunas.begin(), colunas.end(), pCampo) != 0) {
      return std::nullopt;
    }
    colunas.push_back(pCampo);
  }
  return colunas;
}

std::optional<Veiculo> VeiculoDe(const std::optional<Partes> &partes, const Colunas &colunas, bool bUtf8) {
  Veiculo v{};
  if (!partes || partes->size() != colunas.size()) {
    return std::nullopt;
  }
  for (std::size_t i = 0; i < colunas.size(); ++i) {
    const std::string &sParte = (*partes)[i];
    ConfereMoeda(sParte);
    const std::optional<std::string> sValor = bUtf8 ? De8(sParte) : sParte;
    try {
      if (colunas[i] != nullptr && !sParte.empty()) {
        DefineCampo(*colunas[i], sValor ? *sValor : throw CErroCampo("no UTF-8"), &v);
      }
    } catch (const CErroCampo &) {
      return std::nullopt;
    }
  }
  return v;
}

// What is checked.

void ConfereVolta(const Veiculo &v) {
  const std::string sCsv = TituloCsv() + "\r\n" + LinhaCsv(7, v) + "\r\n";
  for (const CConteudoTexto &conteudo :
       {CConteudoTexto{sCsv, false, ""}, Decodifica(std::string(kMarca) + De1252Para8(sCsv), std::nullopt)}) {
    CLeitorCsv leitor(conteudo);
    const std::optional<CLinhaCsv> linha = leitor.Proxima();
    Exige(linha && linha->sErro.empty() && BytesDe(linha->veiculo) == BytesDe(v), "the program's own CSV");
    Exige(!leitor.Proxima(), "one vehicle, one line");
  }
}

void ConfereTexto(const std::string &sTexto) {
  const bool bMarca = sTexto.starts_with(kMarca);
  const CConteudoTexto conteudo{sTexto.substr(bMarca ? kMarca.size() : 0), bMarca, ""};
  const std::vector<Linha> linhas = LinhasDe(conteudo.sTexto);
  const std::optional<Colunas> colunas = ColunasDe(linhas);
  std::optional<CLeitorCsv> leitor;
  try {
    leitor.emplace(conteudo);
  } catch (const CErroCsv &) {
    return Exige(!colunas, "a header that is refused");
  }
  Exige(colunas.has_value(), "a header that is taken");
  for (std::size_t i = 1; i < linhas.size(); ++i) {
    const std::size_t uiAntes = leitor->Lidos();
    const std::optional<CLinhaCsv> linha = leitor->Proxima();
    Exige(linha && linha->uiLinha == linhas[i].uiNumero, "the number of a line");
    Exige(leitor->Lidos() > uiAntes && leitor->Lidos() <= leitor->Tamanho(), "the progress of the reading");
    const std::optional<Veiculo> esperado = VeiculoDe(linhas[i].partes, *colunas, bMarca);
    Exige(linha->sErro.empty() == esperado.has_value(), "a line that is taken or refused");
    if (esperado) {
      Exige(BytesDe(linha->veiculo) == BytesDe(*esperado), "the vehicle of a line");
      ConfereVolta(*esperado);
    }
  }
  Exige(!leitor->Proxima() && leitor->Lidos() == leitor->Tamanho(), "the end");
}

/// A record of any bytes, through the texts of its fields.
void ConfereCampos(const Veiculo &v) {
  Veiculo lido{};
  for (const CCampo &campo : CamposVeiculo()) {
    DefineCampo(campo, TextoCampo(campo, &v), &lido);
  }
  for (const CCampo &campo : CamposVeiculo()) {
    Exige(TextoCampo(campo, &lido) == TextoCampo(campo, &v), "the text of what was set by it");
  }
  ConfereVolta(lido);
}

/// What a mark says of a file is so.
void ConfereCodificacao(const std::string &sTexto) {
  const CConteudoTexto marcado = Decodifica(std::string(kMarca) + sTexto, std::nullopt);
  Exige(marcado.bUtf8 && marcado.sTexto == sTexto && marcado.sAviso.empty(), "a text with a mark");
  const std::string sUtf16 = Codifica(sTexto, ECodificacao::Utf16le);
  Exige(De8Para1252(Decodifica(sUtf16, ECodificacao::Utf16le).sTexto) == sTexto, "UTF-16 and back");
  Exige(De8Para1252(sTexto) == De8(sTexto), "Windows-1252 of UTF-8");
  Exige(De8Para1252(De1252Para8(sTexto)) == sTexto && De16Para1252(De1252Para16(sTexto)) == sTexto,
        "a text in another character set and back");
}

/// A header of known columns in any order, one of them perhaps twice.
std::string Cabecalho(CEntrada *pEntrada) {
  const auto nome = [&] {
    const std::size_t uiQual = pEntrada->Ate(CamposVeiculo().size());
    return std::string(uiQual < CamposVeiculo().size() ? CamposVeiculo()[uiQual].sNome : kNaoUsada);
  };
  std::string sLinha = pEntrada->Ate(3) == 0 ? std::string(kMarca) : "";
  for (std::size_t colunas = pEntrada->Ate(4); colunas > 0; --colunas) {
    sLinha += nome() + ";";
  }
  return sLinha + nome() + "\n";
}

}  // namespace

void fuzz::Executa(CEntrada *pEntrada) {
  switch (pEntrada->Ate(7)) {
    case 0:
      return ConfereTexto(pEntrada->Resto());
    case 1:
      return ConfereCampos(pEntrada->Valor<Veiculo>());
    case 2:
      return ConfereCodificacao(pEntrada->Resto());
    default:
      const std::string sCabecalho = Cabecalho(pEntrada);
      return ConfereTexto(sCabecalho + pEntrada->Resto());
  }
}
