// Vehicles from CSV text, currency texts among them, and the texts of fields.
//
// Property: lines of any fields, however they are quoted and ended, are taken and refused as their fields are, and give
// the same vehicles; in any bytes the reader moves on from line to line to the end; what it has read it takes back from
// the program's own CSV, in both character sets. A currency text gives the value that exact decimal arithmetic gives,
// and one that is refused leaves the value alone. The text of any field of any record sets the field again; UTF-8 is
// taken exactly when it is that of some Windows-1252 text.

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

constexpr std::string_view kMarca = "\xEF\xBB\xBF";

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

/// A CSV text that is made line by line, and what is to be read from it.
class TextoFeito {
public:
  explicit TextoFeito(CEntrada *pEntrada) : m_entrada(*pEntrada), m_bUtf8(pEntrada->ConsumeBool()) {
    std::vector<std::string> nomes(1 + m_entrada.Ate(4));
    for (std::string &sNome : nomes) {
      const std::size_t uiQual = m_entrada.Ate(CamposVeiculo().size());
      m_colunas.push_back(uiQual < CamposVeiculo().size() ? &CamposVeiculo()[uiQual] : nullptr);
      sNome = m_colunas.back() != nullptr ? m_colunas.back()->sNome : "posicao";
      m_bRepetida = m_bRepetida || std::count(m_colunas.begin(), m_colunas.end(), m_colunas.back()) > 1;
    }
    Acrescenta(nomes);
    while (m_entrada.remaining_bytes() > 0) {
      AcrescentaLinha();
    }
  }

  void Confere() const {
    const CConteudoTexto conteudo{m_sTexto, m_bUtf8, ""};
    std::optional<CLeitorCsv> leitor;
    try {
      leitor.emplace(conteudo);
    } catch (const CErroCsv &) {
    }
    Exige(leitor.has_value() == !m_bRepetida, "a header is taken unless it has a column twice");
    for (const auto &[uiLinha, esperado] : m_bRepetida ? Linhas() : m_linhas) {
      const std::optional<CLinhaCsv> linha = leitor->Proxima();
      Exige(linha && linha->uiLinha == uiLinha, "the number of a line");
      Exige(linha->sErro.empty() == esperado.has_value(), "a line that is taken or refused");
      Exige(!esperado || BytesDe(linha->veiculo) == BytesDe(*esperado), "the vehicle of a line");
    }
    Exige(m_bRepetida || !leitor->Proxima(), "the end");
  }

private:
  using Linhas = std::vector<std::pair<std::size_t, std::optional<Veiculo>>>;

  void Acrescenta(const std::vector<std::string> &partes) {
    for (const std::string &sParte : partes) {
      const std::string sTexto = m_bUtf8 ? De1252Para8(sParte) : sParte;
      const bool bAspas = sTexto.empty() || sTexto.find_first_of("\";\r\n") != std::string::npos;
      m_sTexto += &sParte == &partes[0] ? "" : ";";
      m_sTexto +=
          bAspas || m_entrada.ConsumeBool() ? '"' + std::regex_replace(sTexto, std::regex("\""), "\"\"") + '"' : sTexto;
    }
    m_sTexto += m_entrada.PickValueInArray({"\n", "\r\n", "\n\r\n\n"});
  }

  /// With a field too many or too few now and then.
  void AcrescentaLinha() {
    const auto uiAntes = static_cast<std::size_t>(std::count(m_sTexto.begin(), m_sTexto.end(), '\n'));
    std::vector<std::string> partes(m_entrada.Ate(7) != 7 ? m_colunas.size() : 1 + m_entrada.Ate(5));
    std::optional<Veiculo> veiculo{partes.size() == m_colunas.size() ? std::optional(Veiculo{}) : std::nullopt};
    for (std::size_t i = 0; i < partes.size(); ++i) {
      partes[i] = m_entrada.ConsumeRandomLengthString(60);
      ConfereMoeda(partes[i]);
      try {
        if (veiculo && m_colunas[i] != nullptr && !partes[i].empty()) {
          DefineCampo(*m_colunas[i], partes[i], &*veiculo);
        }
      } catch (const CErroCampo &) {
        veiculo.reset();
      }
    }
    m_linhas.emplace_back(uiAntes + 1, veiculo);
    Acrescenta(partes);
  }

  CEntrada &m_entrada;
  bool m_bUtf8;
  std::vector<const CCampo *> m_colunas;  ///< null for the one that is taken and not used
  bool m_bRepetida = false;
  std::string m_sTexto;
  Linhas m_linhas;
};

void ConfereQualquer(const std::string &sTexto) {
  const CConteudoTexto conteudo{sTexto, sTexto.size() % 2 == 0, ""};
  try {
    CLeitorCsv leitor(conteudo);
    std::size_t uiLidos = leitor.Lidos();
    for (std::size_t uiLinha = 1; const std::optional<CLinhaCsv> linha = leitor.Proxima(); uiLinha = linha->uiLinha) {
      Exige(linha->uiLinha > uiLinha, "the number of a line");
      Exige(leitor.Lidos() > uiLidos, "the progress of the reading");
      uiLidos = leitor.Lidos();
      if (linha->sErro.empty()) {
        ConfereVolta(linha->veiculo);
      }
    }
    Exige(leitor.Lidos() == sTexto.size(), "the end");
  } catch (const CErroCsv &) {
  }
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
  const std::optional<std::string> s1252 = De8Para1252(sTexto);
  Exige(!s1252 || De1252Para8(*s1252) == sTexto, "UTF-8 that is taken is that of its text");
  const std::string sUtf16 = Codifica(sTexto, ECodificacao::Utf16le);
  Exige(De8Para1252(Decodifica(sUtf16, ECodificacao::Utf16le).sTexto) == sTexto, "UTF-16 and back");
  Exige(De8Para1252(De1252Para8(sTexto)) == sTexto && De16Para1252(De1252Para16(sTexto)) == sTexto,
        "a text in another character set and back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *pBytes, std::size_t qtd) {
  CEntrada entrada(pBytes, qtd);
  switch (entrada.Ate(7)) {
    case 0:
      ConfereQualquer(entrada.ConsumeRemainingBytesAsString());
      break;
    case 1:
      ConfereCampos(Valor<Veiculo>(entrada.ConsumeRemainingBytesAsString()));
      break;
    case 2:
      ConfereCodificacao(entrada.ConsumeRemainingBytesAsString());
      break;
    default:
      TextoFeito(&entrada).Confere();
  }
  return 0;
}
