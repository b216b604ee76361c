#include "fuzz/Referencia.h"

#include "core/qzdatabase/disco/CabecalhoArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"
#include "fuzz/Entrada.h"

namespace fuzz {
namespace {

HRESULT CodigoDoCabecalho(const std::string &sNome, const RegVersaoArquivo &versao, std::string_view sBytes) {
  const auto reg = CEntrada(sBytes.substr(kPosicaoRegCabecalho)).Valor<RegCabecalhoArquivo>();
  if (versao.iVersao != kVersaoCabecalho) {
    return codigos::kCabecalhoVersaoDesconhecida;
  }
  if (sBytes.size() < kTamanhoCabecalho || !RegCabecalhoConfere(reg)) {
    return codigos::kCabecalhoDanificado;
  }
  if (!NomeConfere(reg, sNome)) {
    return codigos::kCabecalhoDeOutroArquivo;
  }
  return reg.uiCrcDados == Crc(sBytes.substr(kTamanhoCabecalho)) ? codigos::kOk : codigos::kDadosNaoConferem;
}

}  // namespace

std::uint64_t Crc(std::string_view sBytes) {
  return CalculaCrc64(sBytes.data(), sBytes.size());
}

std::string Cabecalho(const std::string &sNome, std::string_view sDados, std::uint16_t iVersao) {
  RegVersaoArquivo versao{
      .iVersao = iVersao, .cReservado = {}, .uiCrcVersao = Crc(BytesDe(iVersao)), .uiCrcCrcVersao = 0};
  versao.uiCrcCrcVersao = Crc(BytesDe(std::uint64_t{versao.uiCrcVersao}));
  return std::string(BytesDe(versao)) + std::string(BytesDe(MontaRegCabecalho(0, sNome, Crc(sDados))));
}

ArquivoExaminado Examina(const std::string &sNome, const std::string &sBytes, bool bCabecalhos) {
  ArquivoExaminado exame;
  const auto versao = CEntrada(sBytes).Valor<RegVersaoArquivo>();
  exame.bTemCabecalho = RegVersaoConfere(versao);
  exame.sDados = sBytes;
  if (bCabecalhos && exame.bTemCabecalho) {
    exame.hr = CodigoDoCabecalho(sNome, versao, sBytes);
    exame.sDados.erase(0, kTamanhoCabecalho);
  }
  return exame;
}

std::vector<std::string> LinhasInteiras(std::string_view sDados) {
  std::vector<std::string> textos;
  while (sDados.size() >= sizeof(std::uint32_t)) {
    textos.emplace_back(sDados.substr(sizeof(std::uint32_t), CEntrada(sDados).Valor<std::uint32_t>()));
    sDados.remove_prefix(sizeof(std::uint32_t) + textos.back().size());
  }
  return textos;
}

std::vector<std::string> LinhasDoTexto(std::string_view sDados) {
  std::vector<std::string> textos = LinhasInteiras(sDados);
  std::transform(textos.begin(), textos.end(), textos.begin(), AteOZero);
  return textos;
}

std::string BytesDasLinhas(const std::vector<std::string> &textos) {
  std::string sBytes;
  for (const std::string &sTexto : textos) {
    sBytes += BytesDe(static_cast<std::uint32_t>(sTexto.size()));
    sBytes += sTexto;
  }
  return sBytes;
}

}  // namespace fuzz
