#include "core/qzdatabase/disco/CabecalhoArquivo.h"

#include <cstring>

#include "core/qzdatabase/disco/QZCrc64.h"

namespace {

std::uint64_t CrcDoCabecalho(const RegCabecalhoArquivo &reg) {
  return CalculaCrc64(&reg, offsetof(RegCabecalhoArquivo, uiCrcCabecalho));
}

std::uint64_t CrcDoCampo(std::uint64_t uiCampo) {
  return CalculaCrc64(&uiCampo, sizeof(uiCampo));
}

}  // namespace

RegVersaoArquivo MontaRegVersao() {
  RegVersaoArquivo reg{};
  const std::uint16_t iVersao = kVersaoCabecalho;
  reg.iVersao = iVersao;
  reg.uiCrcVersao = CalculaCrc64(&iVersao, sizeof(iVersao));
  reg.uiCrcCrcVersao = CrcDoCampo(reg.uiCrcVersao);
  return reg;
}

RegCabecalhoArquivo MontaRegCabecalho(std::uint32_t uiCodigoInstalacao, const CString &sNomeArquivo,
                                      std::uint64_t uiCrcDados) {
  RegCabecalhoArquivo reg{};
  reg.uiCodigoInstalacao = uiCodigoInstalacao;
  sNomeArquivo.copy(reg.szNome, sizeof(reg.szNome));
  DefineCrcDados(uiCrcDados, &reg);
  return reg;
}

void DefineCrcDados(std::uint64_t uiCrcDados, RegCabecalhoArquivo *pReg) {
  pReg->uiCrcDados = uiCrcDados;
  pReg->uiCrcCabecalho = CrcDoCabecalho(*pReg);
}

bool RegVersaoConfere(const RegVersaoArquivo &reg) {
  const std::uint16_t iVersao = reg.iVersao;
  return iVersao != 0 && CalculaCrc64(&iVersao, sizeof(iVersao)) == reg.uiCrcVersao &&
         CrcDoCampo(reg.uiCrcVersao) == reg.uiCrcCrcVersao;
}

bool RegCabecalhoConfere(const RegCabecalhoArquivo &reg) {
  return CrcDoCabecalho(reg) == reg.uiCrcCabecalho;
}

bool NomeConfere(const RegCabecalhoArquivo &reg, const CString &sNomeArquivo) {
  return std::strncmp(reg.szNome, sNomeArquivo.c_str(), sizeof(reg.szNome)) == 0;
}
