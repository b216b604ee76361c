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

/// The fields of a line; nothing when its quotes are wrong.
std::optional<Partes> Separa(std::string_view sLinha) {
  enum class Onde { Inicio, Livre, EntreAspas, AposAspas } eOnde = Onde::Inicio;
  Partes partes(1);
  for (const char c : sLinha) {
    if (c == '"') {
      if (eOnde == Onde::Livre) {
        return std::nullopt;
      }
      if (eOnde == Onde::AposAspas) {
        partes.back() += c;
      }
      eOnde = eOnde == Onde::EntreAspas ? Onde::AposAspas : Onde::EntreAspas;
    } else if (c == ';' && eOnde != Onde::EntreAspas) {
      partes.emplace_back();
      eOnde = Onde::Inicio;
    } else if (eOnde == Onde::AposAspas) {
      return std::nullopt;
    } else {
      partes.back() += c;
      eOnde = eOnde == Onde::Inicio ? Onde::Livre : eOnde;
    }
  }
  return eOnde == Onde::EntreAspas ? std::nullopt : std::optional(partes);
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
  return MoedaDeTexto(sValor, vCampo) && vCampo >= 0;
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

/// The lines that are not empty, with their numbers, and whether they are UTF-8.
class Linhas {
public:
  explicit Linhas(std::string_view sTexto) : m_bUtf8(sTexto.starts_with(kMarca)) {
    std::string sLinha;
    std::size_t uiNumero = 1;
    const auto junta = [&] {
      if (!sLinha.empty() && sLinha.back() == '\r') {
        sLinha.pop_back();
      }
      if (!sLinha.empty()) {
        m_linhas.emplace_back(uiNumero, sLinha);
      }
      sLinha.clear();
      ++uiNumero;
    };
    for (const char c : sTexto.substr(m_bUtf8 ? kMarca.size() : 0)) {
      if (c == '\n') {
        junta();
      } else {
        sLinha += c;
      }
    }
    junta();
  }

  std::size_t Quantas() const { return m_linhas.size(); }
  std::size_t Numero(std::size_t i) const { return m_linhas[i].first; }
  std::optional<Partes> PartesDe(std::size_t i) const {
    const std::optional<std::string> sLinha = m_bUtf8 ? De8(m_linhas[i].second) : m_linhas[i].second;
    return sLinha ? Separa(*sLinha) : std::nullopt;
  }

private:
  bool m_bUtf8;
  std::vector<std::pair<std::size_t, std::string>> m_linhas;
};

/// Places in kColunas; nothing for a header that cannot be used.
std::optional<std::vector<std::size_t>> Colunas(const Linhas &linhas) {
  const std::optional<Partes> nomes = linhas.Quantas() != 0 ? linhas.PartesDe(0) : std::nullopt;
  std::vector<std::size_t> colunas;
  for (const std::string &sNome : nomes.value_or(Partes())) {
    const auto uiColuna =
        static_cast<std::size_t>(std::find(kColunas.begin(), kColunas.end(), sNome) - kColunas.begin());
    if (uiColuna == kColunas.size() || std::find(colunas.begin(), colunas.end(), uiColuna) != colunas.end()) {
      return std::nullopt;
    }
    colunas.push_back(uiColuna);
  }
  return nomes ? std::optional(colunas) : std::nullopt;
}

std::optional<Veiculo> VeiculoDe(const std::optional<Partes> &partes, const std::vector<std::size_t> &colunas) {
  Veiculo v{};
  if (!partes || partes->size() != colunas.size()) {
    return std::nullopt;
  }
  for (std::size_t i = 0; i < colunas.size(); ++i) {
    if (!(*partes)[i].empty() && !DefineColuna(colunas[i], (*partes)[i], &v)) {
      return std::nullopt;
    }
  }
  return v;
}

// What is checked.

void ConfereVolta(const Veiculo &v) {
  const std::string sCsv = TituloCsv() + LinhaCsv(7, v);
  for (const std::string &sTexto : {sCsv, std::string(kMarca) + De1252Para8(sCsv)}) {
    CLeitorCsv leitor(sTexto);
    const std::optional<CLinhaCsv> linha = leitor.Proxima();
    Exige(linha && linha->sErro.empty() && Bytes(linha->veiculo) == Bytes(v), "the program's own CSV");
    Exige(!leitor.Proxima(), "one vehicle, one line");
  }
}

void ConfereTexto(const std::string &sTexto) {
  const Linhas linhas(sTexto);
  const std::optional<std::vector<std::size_t>> colunas = Colunas(linhas);
  std::optional<CLeitorCsv> leitor;
  try {
    leitor.emplace(sTexto);
  } catch (const CErroCsv &) {
    return Exige(!colunas, "a header that is refused");
  }
  Exige(colunas.has_value(), "a header that is taken");
  for (std::size_t i = 1; i < linhas.Quantas(); ++i) {
    const std::size_t uiAntes = leitor->Lidos();
    const std::optional<CLinhaCsv> linha = leitor->Proxima();
    Exige(linha && linha->uiLinha == linhas.Numero(i), "the number of a line");
    Exige(leitor->Lidos() > uiAntes && leitor->Lidos() <= leitor->Tamanho(), "the progress of the reading");
    const std::optional<Veiculo> esperado = VeiculoDe(linhas.PartesDe(i), *colunas);
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
    const bool bAceita = DefineColuna(uiColuna, sTexto, &esperado);
    Exige(bAceita || campo.eTipo == eCampo::moeda, "only a negative value has no text that its field takes");
    try {
      DefineCampo(campo, sTexto, &lido);
      Exige(bAceita && Bytes(lido) == Bytes(esperado), "the text of a field");
      Exige(TextoCampo(campo, &lido) == sTexto, "the text of what was set by it");
    } catch (const CErroCampo &) {
      Exige(!bAceita && Bytes(lido) == Bytes(Veiculo{}), "a refusal sets nothing");
    }
  }
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
