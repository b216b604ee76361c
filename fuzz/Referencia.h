#ifndef KALVO_FUZZ_REFERENCIA_H
#define KALVO_FUZZ_REFERENCIA_H

// The data files as their description has them: the order in which they are examined, and the lines of texts. Single
// records are checked by the functions that the unit tests hold against bytes.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/qzdatabase/disco/CabecalhoArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"
#include "fuzz/Entrada.h"

namespace fuzz {

inline std::uint64_t Crc(std::string_view sBytes) {
  return CalculaCrc64(sBytes.data(), sBytes.size());
}

/// A header for a file of this name and these data, 92 bytes. Any version but the present one is a foreign one.
inline std::string Cabecalho(const std::string &sNome, std::string_view sDados, std::uint16_t iVersao = 1) {
  RegVersaoArquivo versao{
      .iVersao = iVersao, .cReservado = {}, .uiCrcVersao = Crc(BytesDe(iVersao)), .uiCrcCrcVersao = 0};
  versao.uiCrcCrcVersao = Crc(BytesDe(std::uint64_t{versao.uiCrcVersao}));
  return std::string(BytesDe(versao)) + std::string(BytesDe(MontaRegCabecalho(0, sNome, Crc(sDados))));
}

/// A data file as it should be taken when it is opened.
struct ArquivoExaminado {
  HRESULT hr = codigos::kOk;   ///< of the header
  bool bTemCabecalho = false;  ///< begins with a version record that holds
  std::string sDados;          ///< behind the header when headers are on and there is one
};

inline ArquivoExaminado Examina(const std::string &sNome, const std::string &sBytes, bool bCabecalhos) {
  const auto versao = Valor<RegVersaoArquivo>(sBytes);
  ArquivoExaminado exame{.bTemCabecalho = RegVersaoConfere(versao), .sDados = sBytes};
  if (!bCabecalhos || !exame.bTemCabecalho) {
    return exame;
  }
  exame.sDados.erase(0, kTamanhoCabecalho);
  const auto reg = Valor<RegCabecalhoArquivo>(std::string_view(sBytes).substr(kPosicaoRegCabecalho));
  const bool bInteiro = sBytes.size() >= kTamanhoCabecalho && RegCabecalhoConfere(reg);
  exame.hr = versao.iVersao != kVersaoCabecalho    ? codigos::kCabecalhoVersaoDesconhecida
             : !bInteiro                           ? codigos::kCabecalhoDanificado
             : !NomeConfere(reg, sNome)            ? codigos::kCabecalhoDeOutroArquivo
             : reg.uiCrcDados != Crc(exame.sDados) ? codigos::kDadosNaoConferem
                                                   : codigos::kOk;
  return exame;
}

/// The bytes of lines on disk.
inline std::string BytesDasLinhas(const std::vector<std::string> &textos) {
  std::string sBytes;
  for (const std::string &sTexto : textos) {
    sBytes += BytesDe(static_cast<std::uint32_t>(sTexto.size()));
    sBytes += sTexto;
  }
  return sBytes;
}

}  // namespace fuzz

#endif
