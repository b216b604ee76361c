#include "fuzz/Referencia.h"

#include "core/qzdatabase/disco/CabecalhoArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"
#include "fuzz/Entrada.h"

namespace fuzz {
namespace {

/// A number of `sizeof(T)` bytes, lowest first.
template <typename T>
T Numero(std::string_view sBytes, std::size_t uiOnde) {
  return CEntrada(sBytes.substr(uiOnde)).Valor<T>();
}

std::uint64_t Crc(std::string_view sBytes) {
  return CalculaCrc64(sBytes.data(), sBytes.size());
}

bool TemVersao(std::string_view sBytes) {
  return sBytes.size() >= kPosicaoRegCabecalho && Numero<std::uint16_t>(sBytes, 0) != 0 &&
         Numero<std::uint64_t>(sBytes, 8) == Crc(sBytes.substr(0, 2)) &&
         Numero<std::uint64_t>(sBytes, 16) == Crc(sBytes.substr(8, 8));
}

HRESULT CodigoDoCabecalho(const std::string &sNome, std::string_view sBytes) {
  if (Numero<std::uint16_t>(sBytes, 0) != 1) {
    return codigos::kCabecalhoVersaoDesconhecida;
  }
  if (sBytes.size() < kTamanhoCabecalho || Numero<std::uint64_t>(sBytes, 84) != Crc(sBytes.substr(24, 60))) {
    return codigos::kCabecalhoDanificado;
  }
  if (AteOZero(sBytes.substr(30, 40)) != sNome.substr(0, 40)) {
    return codigos::kCabecalhoDeOutroArquivo;
  }
  return Numero<std::uint64_t>(sBytes, 76) == Crc(sBytes.substr(kTamanhoCabecalho)) ? codigos::kOk
                                                                                    : codigos::kDadosNaoConferem;
}

}  // namespace

std::string Cabecalho(const std::string &sNome, std::string_view sDados, std::uint16_t iVersao) {
  std::string sVersao(BytesDe(iVersao));
  sVersao.resize(8);
  sVersao += BytesDe(Crc(BytesDe(iVersao)));
  sVersao += BytesDe(Crc(sVersao.substr(8)));
  std::string sCabecalho = std::string(6, '\0') + sNome.substr(0, 40);
  sCabecalho.resize(52);
  sCabecalho += BytesDe(Crc(sDados));
  sCabecalho += BytesDe(Crc(sCabecalho));
  return sVersao + sCabecalho;
}

ArquivoExaminado Examina(const std::string &sNome, const std::string &sBytes, bool bCabecalhos) {
  ArquivoExaminado exame;
  exame.bTemCabecalho = TemVersao(sBytes);
  exame.sDados = sBytes;
  if (bCabecalhos && exame.bTemCabecalho) {
    exame.hr = CodigoDoCabecalho(sNome, sBytes);
    exame.sDados.erase(0, kTamanhoCabecalho);
  }
  return exame;
}

std::vector<std::string> LinhasInteiras(std::string_view sDados) {
  std::vector<std::string> textos;
  while (sDados.size() >= sizeof(std::uint32_t)) {
    textos.emplace_back(sDados.substr(sizeof(std::uint32_t), Numero<std::uint32_t>(sDados, 0)));
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
