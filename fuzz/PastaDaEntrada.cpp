#include "fuzz/PastaDaEntrada.h"

#include "core/qzdatabase/disco/CabecalhoArquivo.h"
#include "fuzz/Referencia.h"
#include "vehicles/RegVeiculo.h"

namespace fuzz {
namespace {

std::string Conteudo(CEntrada *pEntrada, const std::string &sNome) {
  const unsigned uiForma = pEntrada->Byte();
  const std::uint8_t uiTroca = (uiForma & 8) != 0 ? pEntrada->Byte() : std::uint8_t{0};
  const auto uiOnde = pEntrada->Valor<std::uint16_t>();
  const auto iVersao = (uiForma & 48) == 48 ? pEntrada->Valor<std::uint16_t>() : std::uint16_t{1};
  std::string sDados = pEntrada->Resto();
  if ((uiForma & 1) != 0) {
    const std::size_t uiUnidade = sNome == kVersao ? kTamanhoVersao : sizeof(RegVeiculo);
    sDados.resize((sDados.size() + uiUnidade - 1) / uiUnidade * uiUnidade);
  }
  if ((uiForma & 2) != 0) {
    const std::string sCabecalho = Cabecalho((uiForma & 128) != 0 ? kControle : sNome, sDados, iVersao);
    sDados.insert(0, sCabecalho.substr(0, (uiForma & 4) != 0 ? kPosicaoRegCabecalho : kTamanhoCabecalho));
  }
  if (!sDados.empty()) {
    sDados[uiOnde % sDados.size()] = static_cast<char>(sDados[uiOnde % sDados.size()] ^ uiTroca);
  }
  return sDados;
}

}  // namespace

std::string VersaoUm() {
  return '\1' + std::string(kTamanhoVersao - 1, '\0');
}

Pasta PastaDaEntrada(unsigned uiEscolha, CEntrada *pEntrada) {
  const std::string sNome = kArquivos[(uiEscolha >> 1) % kArquivos.size()];
  Pasta pasta;
  if ((uiEscolha & 16) != 0) {
    pasta[kVersao] = VersaoUm();
  }
  if ((uiEscolha & 32) != 0) {
    pasta[kVeiculos] = std::string(pEntrada->Ate(3) * sizeof(RegVeiculo), 'v');
  }
  if ((uiEscolha & 64) != 0) {
    pasta[kControle] = BytesDasLinhas({kVersao, kVeiculos});
  }
  pasta[sNome] = Conteudo(pEntrada, sNome);
  return pasta;
}

}  // namespace fuzz
