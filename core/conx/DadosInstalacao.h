#ifndef KALVO_CORE_CONX_DADOSINSTALACAO_H
#define KALVO_CORE_CONX_DADOSINSTALACAO_H

#include "core/conx/QZBaseParaRotinas.h"

/// What the suite's business data tells of this installation.
struct CQZDadosInstalacao {
  std::uint32_t uiCodigo = 0;  ///< goes into the header of every data file
};

/// Reads the data of the installation on behalf of a routine. Without a reader in place success and code 0.
[[nodiscard]] HRESULT LeDadosInstalacao(const CQZBaseParaRotinas &rotina, CQZDadosInstalacao *pDados);

/// The suite's way to its business data. Called on any thread, several at once.
using LeitorDadosInstalacao = HRESULT (*)(const CQZBaseParaRotinas &rotina, CQZDadosInstalacao *pDados);

/// Puts a reader in place, null for none; returns the one before. Any thread.
LeitorDadosInstalacao DefineLeitorDadosInstalacao(LeitorDadosInstalacao leitor);

#endif
