#include "qzdados/Cabecalhos.h"

#include <algorithm>
#include <cstring>

using plataforma::FalhaArquivo;

namespace {

/// Nothing where no header stands at the place.
FalhaArquivo LeUm(plataforma::IArquivoAberto &arquivo, std::uint64_t uiOnde, std::uint64_t uiTamanho,
                  const CString &sNome, std::optional<CabecalhoLido> *pLido) {
  char bytes[kTamanhoCabecalho] = {};
  const std::uint64_t uiRestam = uiTamanho - uiOnde;
  if (uiRestam < kPosicaoRegCabecalho) {
    return plataforma::kSemFalha;
  }
  CabecalhoLido lido;
  lido.bInteiro = uiRestam >= sizeof(bytes);
  const std::size_t qtd = lido.bInteiro ? sizeof(bytes) : kPosicaoRegCabecalho;
  if (const FalhaArquivo falha = arquivo.Le(uiOnde, bytes, qtd)) {
    return falha;
  }
  std::memcpy(&lido.versao, bytes, sizeof(lido.versao));
  std::memcpy(&lido.registro, bytes + kPosicaoRegCabecalho, sizeof(lido.registro));
  lido.bVersaoConfere = RegVersaoConfere(lido.versao);
  // A range of zeros has the CRC zero: without a name it is none.
  lido.bRegistroConfere = lido.bInteiro && lido.registro.szNome[0] != '\0' && RegCabecalhoConfere(lido.registro);
  lido.bNomeConfere = lido.bInteiro && NomeConfere(lido.registro, sNome);
  if (lido.bVersaoConfere || lido.bRegistroConfere || lido.bNomeConfere) {
    *pLido = lido;
  }
  return plataforma::kSemFalha;
}

}  // namespace

FalhaArquivo LeCabecalhos(plataforma::IArquivoAberto &arquivo, const CString &sNome, CabecalhosLidos *pCabecalhos) {
  *pCabecalhos = {};
  std::uint64_t uiTamanho = 0;
  FalhaArquivo falha = arquivo.Tamanho(&uiTamanho);
  while (!falha && pCabecalhos->uiInicioDados < uiTamanho) {
    std::optional<CabecalhoLido> lido;
    falha = LeUm(arquivo, pCabecalhos->uiInicioDados, uiTamanho, sNome, &lido);
    if (!lido) {
      break;
    }
    if (pCabecalhos->uiQuantos++ == 0) {
      pCabecalhos->primeiro = *lido;
    }
    pCabecalhos->ultimo = *lido;
    pCabecalhos->uiInicioDados = std::min<std::uint64_t>(pCabecalhos->uiInicioDados + kTamanhoCabecalho, uiTamanho);
  }
  return falha;
}

CString NomeNoCabecalho(const RegCabecalhoArquivo &registro) {
  return {registro.szNome, std::find(registro.szNome, registro.szNome + sizeof(registro.szNome), '\0')};
}
