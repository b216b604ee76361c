// Vehicles from CSV text of any bytes, and the texts of fields.
//
// Property: the reader takes and refuses the header and the lines that a plain reading letter by letter takes and
// refuses, and gives the same vehicles; what it has read it takes back from the program's own CSV, in both character
// sets. The text of any field of any record sets the field again; UTF-8 is taken exactly when it is that of some
// Windows-1252 text.

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <optional>
#include <vector>

#include "client/Campos.h"
#include "client/Codificacao.h"
#include "client/ConteudoTexto.h"
#include "client/LeitorCsv.h"
#include "client/QZVeiculosMoeda.h"
#include "client/Saida.h"
#include "fuzz/Entrada.h"
#include "fuzz/Exige.h"

namespace {

using fuzz::CEntrada;
using fuzz::Exige;
using Veiculo = tagREG_VEICULOPS;
using Partes = std::vector<std::string>;

constexpr std::string_view kMarca = "\xEF\xBB\xBF";
constexpr std::size_t kPosicao = 15;  ///< in kColunas, taken and not used
constexpr std::array kColunas = {"codigo", "placa", "uf", "descricao", "ano",     "antt",    "carroceria", "rodado",
                                 "tipo",   "tara",  "kg", "m3",        "renavam", "cliente", "transporte", "posicao"};

std::string_view Bytes(const Veiculo &v) {
  return {reinterpret_cast<const char *>(&v), sizeof(v)};
}

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

/// The fields of the line at a place, which moves behind it; several lines where quotes hold their ends. Nothing when
/// the quotes are wrong: the first line alone is passed over then. Quotes that hold a line end close within 512 bytes.
std::optional<Partes> Separa(std::string_view sTexto, std::size_t *puiLugar) {
  enum class Onde { Inicio, Livre, EntreAspas, AposAspas } eOnde = Onde::Inicio;
  Partes partes(1);
  bool bBom = true;
  bool bVariasLinhas = false;
  std::size_t i = *puiLugar;
  for (; bBom && (eOnde == Onde::EntreAspas || !FimDeLinha(sTexto, i)); ++i) {
    if (i == sTexto.size()) {
      bBom = false;
      break;
    }
    const char c = sTexto[i];
    const bool bDobradas = c == '"' && eOnde == Onde::AposAspas;
    if (c == '"' && eOnde != Onde::Livre && !bDobradas) {
      eOnde = eOnde == Onde::EntreAspas ? Onde::AposAspas : Onde::EntreAspas;
    } else if (c == ';' && eOnde != Onde::EntreAspas) {
      partes.emplace_back();
      eOnde = Onde::Inicio;
    } else if ((c == '"' && !bDobradas) || (eOnde == Onde::AposAspas && !bDobradas)) {
      bBom = false;
    } else {
      bBom = !bVariasLinhas || partes.back().size() <= 512 || (eOnde != Onde::EntreAspas && !bDobradas);
      partes.back() += c;
      bVariasLinhas = bVariasLinhas || (eOnde == Onde::EntreAspas && c == '\n');
      eOnde = bDobradas ? Onde::EntreAspas : eOnde == Onde::Inicio ? Onde::Livre : eOnde;
    }
    bVariasLinhas = bVariasLinhas && (eOnde == Onde::EntreAspas || eOnde == Onde::AposAspas);
  }
  if (!bBom) {
    *puiLugar = std::min(sTexto.find('\n', *puiLugar), sTexto.size() - 1) + 1;
    return std::nullopt;
  }
  i += i < sTexto.size() && sTexto[i] == '\r' ? 1 : 0;
  *puiLugar = std::min(i + 1, sTexto.size());
  return partes;
}

template <std::size_t N>
bool Define(const std::string &sValor, char (&campo)[N]) {
  if (sValor.size() > N || sValor.find('\0') != std::string::npos) {
    return false;
  }
  std::memset(campo, 0, N);
  sValor.copy(campo, N);
  return true;
}
bool Define(const std::string &sValor, std::int64_t &vCampo) {
  return MoedaDeTexto(sValor, vCampo);
}
template <typename T>
bool Define(const std::string &sValor, T &campo) {
  std::uint64_t uiValor = 0;
  for (const char c : sValor) {
    uiValor = uiValor * 10 + static_cast<unsigned>(c - '0');
    if (c < '0' || c > '9' || uiValor > std::numeric_limits<T>::max()) {
      return false;
    }
  }
  campo = static_cast<T>(uiValor);
  return !sValor.empty();
}

bool DefineColuna(std::size_t uiColuna, const std::string &sValor, Veiculo *pVeiculo) {
  switch (uiColuna) {
    case 0:
      return Define(sValor, pVeiculo->szCodigo);
    case 1:
      return Define(sValor, pVeiculo->szPlaca);
    case 2:
      return Define(sValor, pVeiculo->szUF);
    case 3:
      return Define(sValor, pVeiculo->szDescricao);
    case 4:
      return Define(sValor, pVeiculo->iAno);
    case 5:
      return Define(sValor, pVeiculo->szCodigoANTT);
    case 6:
      return Define(sValor, pVeiculo->iTipoCarroceria);
    case 7:
      return Define(sValor, pVeiculo->iTipoRodado);
    case 8:
      return Define(sValor, pVeiculo->iTipoVeiculo);
    case 9:
      return Define(sValor, pVeiculo->vTara);
    case 10:
      return Define(sValor, pVeiculo->vCapacidadeKg);
    case 11:
      return Define(sValor, pVeiculo->vCapacidadeM3);
    case 12:
      return Define(sValor, pVeiculo->szRENAVAM);
    case 13:
      return Define(sValor, pVeiculo->iPonteiroCliente);
    case 14:
      return Define(sValor, pVeiculo->iTipoTransporte);
    default:
      return true;
  }
}

/// The lines that are not empty, with their numbers.
class Linhas {
public:
  explicit Linhas(const CConteudoTexto &conteudo) : m_bUtf8(conteudo.bUtf8) {
    const std::string_view sTexto = conteudo.sTexto;
    for (std::size_t i = 0; i < sTexto.size();) {
      const std::size_t uiAntes = i;
      if (FimDeLinha(sTexto, i)) {
        i += sTexto[i] == '\r' ? 1 : 0;
        i = std::min(i + 1, sTexto.size());
        continue;
      }
      const auto uiNumero = static_cast<std::size_t>(std::count(sTexto.begin(), sTexto.begin() + uiAntes, '\n') + 1);
      m_linhas.emplace_back(uiNumero, Separa(sTexto, &i));
    }
  }

  std::size_t Quantas() const { return m_linhas.size(); }
  std::size_t Numero(std::size_t i) const { return m_linhas[i].first; }

  /// Places in kColunas; nothing for a header that cannot be used.
  std::optional<std::vector<std::size_t>> Colunas() const {
    if (m_linhas.empty() || !m_linhas[0].second) {
      return std::nullopt;
    }
    std::vector<std::size_t> colunas;
    for (const std::string &sNome : *m_linhas[0].second) {
      const auto uiColuna =
          static_cast<std::size_t>(std::find(kColunas.begin(), kColunas.end(), sNome) - kColunas.begin());
      if (uiColuna == kColunas.size() || std::find(colunas.begin(), colunas.end(), uiColuna) != colunas.end()) {
        return std::nullopt;
      }
      colunas.push_back(uiColuna);
    }
    return colunas;
  }

  std::optional<Veiculo> VeiculoDe(std::size_t uiLinha, const std::vector<std::size_t> &colunas) const {
    const std::optional<Partes> &partes = m_linhas[uiLinha].second;
    Veiculo v{};
    if (!partes || partes->size() != colunas.size()) {
      return std::nullopt;
    }
    for (std::size_t i = 0; i < colunas.size(); ++i) {
      const bool bUsada = colunas[i] != kPosicao && !(*partes)[i].empty();
      const std::optional<std::string> sValor = bUsada && m_bUtf8 ? De8((*partes)[i]) : (*partes)[i];
      if (bUsada && (!sValor || !DefineColuna(colunas[i], *sValor, &v))) {
        return std::nullopt;
      }
    }
    return v;
  }

private:
  bool m_bUtf8;
  std::vector<std::pair<std::size_t, std::optional<Partes>>> m_linhas;
};

// What is checked.

void ConfereVolta(const Veiculo &v) {
  const std::string sCsv = TituloCsv() + "\r\n" + LinhaCsv(7, v) + "\r\n";
  for (const CConteudoTexto &conteudo :
       {CConteudoTexto{sCsv, false, ""}, Decodifica(std::string(kMarca) + De1252Para8(sCsv), std::nullopt)}) {
    CLeitorCsv leitor(conteudo);
    const std::optional<CLinhaCsv> linha = leitor.Proxima();
    Exige(linha && linha->sErro.empty() && Bytes(linha->veiculo) == Bytes(v), "the program's own CSV");
    Exige(!leitor.Proxima(), "one vehicle, one line");
  }
}

void ConfereTexto(const std::string &sTexto) {
  const bool bMarca = sTexto.starts_with(kMarca);
  const CConteudoTexto conteudo{sTexto.substr(bMarca ? kMarca.size() : 0), bMarca, ""};
  const Linhas linhas(conteudo);
  const std::optional<std::vector<std::size_t>> colunas = linhas.Colunas();
  std::optional<CLeitorCsv> leitor;
  try {
    leitor.emplace(conteudo);
  } catch (const CErroCsv &) {
    return Exige(!colunas, "a header that is refused");
  }
  Exige(colunas.has_value(), "a header that is taken");
  for (std::size_t i = 1; i < linhas.Quantas(); ++i) {
    const std::size_t uiAntes = leitor->Lidos();
    const std::optional<CLinhaCsv> linha = leitor->Proxima();
    Exige(linha && linha->uiLinha == linhas.Numero(i), "the number of a line");
    Exige(leitor->Lidos() > uiAntes && leitor->Lidos() <= leitor->Tamanho(), "the progress of the reading");
    const std::optional<Veiculo> esperado = linhas.VeiculoDe(i, *colunas);
    Exige(linha->sErro.empty() == esperado.has_value(), "a line that is taken or refused");
    if (esperado) {
      Exige(Bytes(linha->veiculo) == Bytes(*esperado), "the vehicle of a line");
      ConfereVolta(*esperado);
    }
  }
  Exige(!leitor->Proxima() && leitor->Lidos() == leitor->Tamanho(), "the end");
}

/// A record of any bytes, through the texts of its fields.
void ConfereCampos(const Veiculo &v) {
  for (const CCampo &campo : CamposVeiculo()) {
    const std::string sTexto = TextoCampo(campo, &v);
    Veiculo lido{};
    const auto uiColuna =
        static_cast<std::size_t>(std::find(kColunas.begin(), kColunas.end(), campo.sNome) - kColunas.begin());
    Veiculo esperado{};
    Exige(DefineColuna(uiColuna, sTexto, &esperado), "a text that its field takes");
    DefineCampo(campo, sTexto, &lido);
    Exige(Bytes(lido) == Bytes(esperado), "the text of a field");
    Exige(TextoCampo(campo, &lido) == sTexto, "the text of what was set by it");
  }
}

/// Any file is text or refused; what a mark says of one is so.
void ConfereCodificacao(const std::string &sTexto) {
  const CConteudoTexto marcado = Decodifica(std::string(kMarca) + sTexto, std::nullopt);
  Exige(marcado.bUtf8 && marcado.sTexto == sTexto && marcado.sAviso.empty(), "a text with a mark");
  try {
    const CConteudoTexto conteudo = Decodifica(sTexto, std::nullopt);
    Exige(!conteudo.bUtf8 || De8Para1252(conteudo.sTexto) || !conteudo.sAviso.empty() || sTexto != conteudo.sTexto,
          "what is taken for UTF-8 without a mark is told");
  } catch (const CErroCodificacao &) {
    Exige(sTexto.size() >= 2, "a refusal of what has no beginning");
  }
  const std::string sUtf16 = Codifica(sTexto, ECodificacao::Utf16le);
  Exige(De8Para1252(Decodifica(sUtf16, ECodificacao::Utf16le).sTexto) == sTexto, "UTF-16 and back");
}

/// A header of known columns in any order, one of them perhaps twice.
std::string Cabecalho(CEntrada *pEntrada) {
  std::string sLinha = pEntrada->Ate(3) == 0 ? std::string(kMarca) : "";
  for (std::size_t colunas = pEntrada->Ate(4); colunas > 0; --colunas) {
    sLinha += kColunas[pEntrada->Ate(kColunas.size() - 1)] + std::string(";");
  }
  return sLinha + kColunas[pEntrada->Ate(kColunas.size() - 1)] + "\n";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *pBytes, std::size_t qtd) {
  CEntrada entrada(pBytes, qtd);
  switch (entrada.Ate(7)) {
    case 0:
      ConfereTexto(entrada.Resto());
      break;
    case 1:
      ConfereCampos(entrada.Valor<Veiculo>());
      break;
    case 2: {
      const std::string sTexto = entrada.Resto();
      ConfereCodificacao(sTexto);
      Exige(De8Para1252(sTexto) == De8(sTexto), "Windows-1252 of UTF-8");
      Exige(De8Para1252(De1252Para8(sTexto)) == sTexto && De16Para1252(De1252Para16(sTexto)) == sTexto,
            "a text in another character set and back");
      break;
    }
    default:
      const std::string sCabecalho = Cabecalho(&entrada);
      ConfereTexto(sCabecalho + entrada.Resto());
      break;
  }
  return 0;
}
