#ifndef KALVO_QZDADOS_CABECALHOS_H
#define KALVO_QZDADOS_CABECALHOS_H

#include <optional>

#include "core/platform/Arquivos.h"
#include "core/qzdatabase/disco/CabecalhoArquivo.h"

/// One header as it stands in a file, with what holds of it.
struct CabecalhoLido {
  RegVersaoArquivo versao{};
  RegCabecalhoArquivo registro{};  ///< zero where the file ends within the header
  bool bInteiro = false;           ///< the file does not end within it
  bool bVersaoConfere = false;
  bool bRegistroConfere = false;
  bool bNomeConfere = false;

  /// All of it holds and is of the present version.
  bool Confere() const {
    return bInteiro && bVersaoConfere && versao.iVersao == kVersaoCabecalho && bRegistroConfere && bNomeConfere;
  }
};

/// What stands in front of a file's data: nothing, a header, or several, which happens when a damaged one is not
/// recognised and gets another in front of it.
struct CabecalhosLidos {
  std::uint64_t uiQuantos = 0;
  CabecalhoLido primeiro;           ///< where there is one
  CabecalhoLido ultimo;             ///< of several the one that was made for the data; else the first
  std::uint64_t uiInicioDados = 0;  ///< the file's end where it ends within a header
};

/// Reads the headers of a file of this name. A damaged header counts as one as long as its version record, its header
/// record or the file's name in it holds.
plataforma::FalhaArquivo LeCabecalhos(plataforma::IArquivoAberto &arquivo, const CString &sNome,
                                      CabecalhosLidos *pCabecalhos);

/// The name that a header carries.
CString NomeNoCabecalho(const RegCabecalhoArquivo &registro);

#endif
