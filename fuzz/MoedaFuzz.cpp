// Currency values and their texts.
//
// Property: a text that is taken gives the value that exact decimal arithmetic gives, and one that is refused leaves
// the value alone; the text of any value is taken back as that value, and no shorter text of the same form would be.

#include "client/QZVeiculosMoeda.h"

#include <optional>

#include "fuzz/Entrada.h"
#include "fuzz/Exige.h"

namespace {

using fuzz::Exige;

/// The meaning of a text in wide arithmetic; nothing when it is none of the permitted form or out of range.
std::optional<std::int64_t> Referencia(std::string sTexto) {
  const bool bNegativo = !sTexto.empty() && sTexto[0] == '-';
  sTexto.erase(0, bNegativo ? 1 : 0);
  const std::size_t uiInteiros = sTexto.find_first_not_of("0123456789");
  std::size_t uiDecimais = 0;
  if (uiInteiros != std::string::npos) {
    uiDecimais = sTexto.size() - uiInteiros - 1;
    if ((sTexto[uiInteiros] != ',' && sTexto[uiInteiros] != '.') || uiInteiros == 0 || uiDecimais < 1 ||
        uiDecimais > 4) {
      return std::nullopt;
    }
    sTexto.erase(uiInteiros, 1);
  }
  if (sTexto.empty() || sTexto.find_first_not_of("0123456789") != std::string::npos) {
    return std::nullopt;
  }
  sTexto.append(4 - uiDecimais, '0');
  sTexto.erase(0, sTexto.find_first_not_of('0'));
  if (sTexto.size() > 19) {
    return std::nullopt;
  }
  // Nineteen digits fit into 64 bits without a sign.
  std::uint64_t uiValor = 0;
  for (const char c : sTexto) {
    uiValor = uiValor * 10 + static_cast<std::uint64_t>(c - '0');
  }
  constexpr std::uint64_t kLimite = std::uint64_t{1} << 63;
  if (bNegativo ? uiValor > kLimite : uiValor >= kLimite) {
    return std::nullopt;
  }
  return static_cast<std::int64_t>(bNegativo ? 0 - uiValor : uiValor);
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

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *pBytes, std::size_t qtd) {
  fuzz::CEntrada entrada(pBytes, qtd);
  switch (entrada.Ate(3)) {
    case 0:
      ConfereValor(entrada.Valor<std::int64_t>());
      break;
    case 1:
      ConfereFimDaFaixa(&entrada);
      break;
    default:
      ConfereTexto(entrada.Resto());
      break;
  }
  return 0;
}
