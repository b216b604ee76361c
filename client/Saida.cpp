#include "client/Saida.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "client/Campos.h"
#include "client/Codificacao.h"
#include "client/Json.h"

namespace {

struct CColunaLista {
  std::string_view sNome;  ///< of CamposVeiculo; also the title
  std::size_t uiLargura;
  bool bADireita;
};

constexpr std::size_t kLarguraPosicao = 8;
constexpr std::array kColunasLista{
    CColunaLista{"codigo", 13, false}, CColunaLista{"placa", 9, false},     CColunaLista{"uf", 3, false},
    CColunaLista{"ano", 4, true},      CColunaLista{"tara", 10, true},      CColunaLista{"kg", 10, true},
    CColunaLista{"m3", 8, true},       CColunaLista{"descricao", 0, false},
};

constexpr std::size_t kLarguraRotulo = 20;

std::string LinhaFicha(std::string_view sRotuloUtf8, const std::string &sValor) {
  const std::string sRotulo = Pt(sRotuloUtf8) + " ";
  return sRotulo + std::string(kLarguraRotulo - sRotulo.size(), '.') + ": " + sValor + "\n";
}

template <typename F>
std::string LinhaDaLista(const std::string &sPosicao, F TextoDaColuna) {
  std::string sLinha = Ajusta(sPosicao, kLarguraPosicao, true);
  for (const CColunaLista &coluna : kColunasLista) {
    sLinha += "  " + Ajusta(TextoDaColuna(coluna.sNome), coluna.uiLargura, coluna.bADireita);
  }
  return sLinha;
}

}  // namespace

std::string Ajusta(const std::string &sTexto, std::size_t uiLargura, bool bADireita) {
  const std::string sBrancos(uiLargura > sTexto.size() ? uiLargura - sTexto.size() : 0, ' ');
  return bADireita ? sBrancos + sTexto : sTexto + sBrancos;
}

std::string Visivel(std::string sTexto) {
  std::replace_if(
      sTexto.begin(), sTexto.end(),
      [](char c) {
        const auto uiByte = static_cast<unsigned char>(c);
        return uiByte < 0x20 || uiByte == 0x7F;
      },
      '.');
  return sTexto;
}

std::string CampoCsv(const std::string &sTexto) {
  if (sTexto.find_first_of(";\"\r\n") == std::string::npos) {
    return sTexto;
  }
  std::string sAspas = "\"";
  for (const char c : sTexto) {
    sAspas += c == '"' ? "\"\"" : std::string(1, c);
  }
  return sAspas + '"';
}

std::string FichaVeiculo(std::int64_t iPosicao, const tagREG_VEICULOPS &veiculo) {
  std::string sFicha = LinhaFicha("Posição", std::to_string(iPosicao));
  for (const CCampo &campo : CamposVeiculo()) {
    sFicha += LinhaFicha(campo.sRotulo, Visivel(TextoCampo(campo, &veiculo)));
  }
  return sFicha;
}

std::string TituloLista() {
  return LinhaDaLista("posicao", [](std::string_view sNome) { return std::string(sNome); });
}

std::string LinhaLista(std::int64_t iPosicao, const tagREG_VEICULOPS &veiculo) {
  return LinhaDaLista(std::to_string(iPosicao), [&](std::string_view sNome) {
    return Visivel(TextoCampo(*ProcuraCampo(CamposVeiculo(), sNome), &veiculo));
  });
}

std::string TituloCsv() {
  std::string sLinha = "posicao";
  for (const CCampo &campo : CamposVeiculo()) {
    sLinha += ';';
    sLinha += campo.sNome;
  }
  return sLinha;
}

std::string LinhaCsv(std::int64_t iPosicao, const tagREG_VEICULOPS &veiculo) {
  std::string sLinha = std::to_string(iPosicao);
  for (const CCampo &campo : CamposVeiculo()) {
    sLinha += ';';
    sLinha += CampoCsv(TextoCampo(campo, &veiculo));
  }
  return sLinha;
}

std::string JsonVeiculo(std::int64_t iPosicao, const tagREG_VEICULOPS &veiculo) {
  std::string sJson = "{\"posicao\":" + std::to_string(iPosicao);
  for (const CCampo &campo : CamposVeiculo()) {
    std::string sValor = TextoCampo(campo, &veiculo);
    if (campo.eTipo == ECampo::Moeda) {
      std::replace(sValor.begin(), sValor.end(), ',', '.');
    }
    sJson += ",\"" + std::string(campo.sNome) + "\":" + (campo.eTipo == ECampo::Texto ? TextoJson(sValor) : sValor);
  }
  return sJson + "}";
}
