#include "core/qzdatabase/disco/CabecalhoVigente.h"

#include "core/errors/CodigosResultado.h"
#include "core/qzdatabase/disco/PercorreArquivo.h"
#include "core/qzdatabase/disco/QZCrc64.h"

using plataforma::FalhaArquivo;
using plataforma::IArquivoAberto;

namespace {

/// CRC of a file from a place to its end; 0 for an empty rest.
FalhaArquivo CrcAteOFim(IArquivoAberto &arquivo, std::uint64_t uiInicio, std::uint64_t *puiCrc) {
  *puiCrc = 0;
  return PercorreArquivo(arquivo, uiInicio, [&](std::uint64_t, const char *pBytes, std::size_t qtd) {
    *puiCrc = CalculaCrc64(pBytes, qtd, *puiCrc);
    return plataforma::kSemFalha;
  });
}

}  // namespace

void CQZCabecalhoVigente::Define(bool bTem, const CString &sNomeArquivo, std::uint32_t uiCodigoInstalacao) {
  m_bTem = bTem;
  m_sNomeArquivo = sNomeArquivo;
  m_uiCodigoInstalacao = uiCodigoInstalacao;
  m_bConferido = false;
}

FalhaArquivo CQZCabecalhoVigente::LeVersao(IArquivoAberto &arquivo, bool *pbPossui, std::uint16_t *piVersao) {
  std::uint64_t uiTamanho = 0;
  RegVersaoArquivo reg{};
  FalhaArquivo falha = arquivo.Tamanho(&uiTamanho);
  if (!falha && uiTamanho >= sizeof(reg)) {
    falha = arquivo.Le(0, &reg, sizeof(reg));
  }
  *pbPossui = !falha && RegVersaoConfere(reg);
  *piVersao = reg.iVersao;
  return falha;
}

FalhaArquivo CQZCabecalhoVigente::CrcDosDados(IArquivoAberto &arquivo, std::uint64_t *puiCrc) {
  return CrcAteOFim(arquivo, kTamanhoCabecalho, puiCrc);
}

FalhaArquivo CQZCabecalhoVigente::Examina(IArquivoAberto &arquivo, HRESULT *phr) {
  return Examina(
      arquivo, [&](std::uint64_t *puiCrc) { return CrcDosDados(arquivo, puiCrc); }, phr);
}

FalhaArquivo CQZCabecalhoVigente::Examina(IArquivoAberto &arquivo,
                                          const std::function<FalhaArquivo(std::uint64_t *)> &leCrc, HRESULT *phr) {
  RegCabecalhoArquivo reg{};
  *phr = codigos::kOk;
  const FalhaArquivo falha = arquivo.Le(kPosicaoRegCabecalho, &reg, sizeof(reg));
  // A file that ends within its header has a damaged one.
  if (falha.causa == plataforma::CausaArquivo::FimDeArquivo || (!falha && !RegCabecalhoConfere(reg))) {
    *phr = codigos::kCabecalhoDanificado;
    return plataforma::kSemFalha;
  }
  if (falha) {
    return falha;
  }
  // Before the data are read, which takes seconds for a large file.
  if (!NomeConfere(reg, m_sNomeArquivo)) {
    *phr = codigos::kCabecalhoDeOutroArquivo;
    return plataforma::kSemFalha;
  }
  std::uint64_t uiCrc = 0;
  if (const FalhaArquivo falhaDados = leCrc(&uiCrc)) {
    return falhaDados;
  }
  if (uiCrc != reg.uiCrcDados) {
    *phr = codigos::kDadosNaoConferem;
    return plataforma::kSemFalha;
  }
  // Only a header that holds is taken over; after a failure the last one that held stands.
  m_reg = reg;
  m_bNoDisco = true;
  m_uiCrcDados = uiCrc;
  m_bConferido = true;
  return plataforma::kSemFalha;
}

FalhaArquivo CQZCabecalhoVigente::GeraDados(IArquivoAberto &arquivo, RegVersaoArquivo *pVersao,
                                            RegCabecalhoArquivo *pCabecalho) const {
  std::uint64_t uiCrc = 0;
  const FalhaArquivo falha = CrcAteOFim(arquivo, 0, &uiCrc);
  *pVersao = MontaRegVersao();
  *pCabecalho = MontaRegCabecalho(m_uiCodigoInstalacao, m_sNomeArquivo, uiCrc);
  return falha;
}

FalhaArquivo CQZCabecalhoVigente::GravaCopia(IArquivoAberto &origem, const RegVersaoArquivo &versao,
                                             const RegCabecalhoArquivo &cabecalho, IArquivoAberto &destino) {
  FalhaArquivo falha = destino.Grava(0, &versao, sizeof(versao));
  if (!falha) {
    falha = destino.Grava(kPosicaoRegCabecalho, &cabecalho, sizeof(cabecalho));
  }
  if (!falha) {
    falha = PercorreArquivo(origem, 0, [&](std::uint64_t uiPosicao, const char *pBytes, std::size_t qtd) {
      return destino.Grava(kTamanhoCabecalho + uiPosicao, pBytes, qtd);
    });
  }
  return falha ? falha : destino.Descarrega();
}

FalhaArquivo CQZCabecalhoVigente::Atualiza(IArquivoAberto &arquivo) {
  if (!m_bTem || (m_bNoDisco && m_reg.uiCrcDados == m_uiCrcDados)) {
    return plataforma::kSemFalha;
  }
  DefineCrcDados(m_uiCrcDados, &m_reg);
  m_bNoDisco = false;
  const FalhaArquivo falha = arquivo.Grava(kPosicaoRegCabecalho, &m_reg, sizeof(m_reg));
  m_bNoDisco = !falha;
  return falha;
}
