// Currency values and their texts.
//
// Property: a text that is taken gives the value that exact decimal arithmetic gives, and one that is refused leaves
// the value alone; the text of any value is taken back as that value, and no shorter text of the same form would be.

#include "client/QZVeiculosMoeda.h"

#include <charconv>
#include <optional>
#include <regex>

#include "fuzz/Entrada.h"
#include "fuzz/Exige.h"

namespace {

using fuzz::Exige;

/// The meaning of a text: its digits with all four decimals; nothing when it has not the form or is out of range.
std::optional<std::int64_t> Referencia(const std::string &sTexto) {
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

void ConfereTexto(const std::string &sTexto) {
  constexpr std::int64_t kAntes = 77;
  std::int64_t vValor = kAntes;
  const bool bAceito = MoedaDeTexto(sTexto, vValor);
  const std::optional<std::int64_t> esperado = Referencia(sTexto);
  Exige(bAceito == esperado.has_value(), "a text is taken exactly when it has the form and the range");
  Exige(vValor == esperado.value_or(kAntes), "the value of a text");
}

void ConfereValor(std::int64_t vValor) {
  const std::string sTexto = TextoDeMoeda(vValor);
  std::int64_t vLido = 0;
  Exige(MoedaDeTexto(sTexto, vLido) && vLido == vValor, "a value survives its text");
  const std::optional<std::int64_t> maisCurto = Referencia(sTexto.substr(0, sTexto.size() - 1));
  Exige(maisCurto != vValor, "no digit of the text is idle");
}

/// Texts of up to four decimals around the ends of the range, which any bytes never come to.
void ConfereFimDaFaixa(fuzz::CEntrada *pEntrada) {
  constexpr std::size_t kInteiros = 15;
  const std::size_t uiDecimais = pEntrada->Ate(4);
  std::uint64_t uiUnidade = 1;
  for (std::size_t i = uiDecimais; i < 4; ++i) {
    uiUnidade *= 10;
  }
  const std::uint64_t uiValor = (std::uint64_t{1} << 63) + pEntrada->Byte() * uiUnidade - 128 * uiUnidade;
  std::string sTexto = std::to_string(uiValor).substr(0, kInteiros + uiDecimais);
  if (uiDecimais > 0) {
    sTexto.insert(kInteiros, ",");
  }
  ConfereTexto((pEntrada->Ate(1) == 0 ? "-" : "") + sTexto);
}

}  // namespace

void fuzz::Executa(CEntrada *pEntrada) {
  switch (pEntrada->Ate(3)) {
    case 0:
      return ConfereValor(pEntrada->Valor<std::int64_t>());
    case 1:
      return ConfereFimDaFaixa(pEntrada);
    default:
      return ConfereTexto(pEntrada->Resto());
  }
}
