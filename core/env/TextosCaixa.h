#ifndef KALVO_CORE_ENV_TEXTOSCAIXA_H
#define KALVO_CORE_ENV_TEXTOSCAIXA_H

#include "core/platform/Tipos.h"

// What the message boxes of the system have in common.

/// Name of a product of the suite, the title of its boxes; empty for a number without one.
CString NomeProduto(std::uint32_t uiSistema);

/// Short code of a product, part of its catalogue's file name; empty for a number without one.
CString CodigoProduto(std::uint32_t uiSistema);

/// Text of a box: `sTexto`, or where that is empty one that names the message number; then a line with the operating
/// system's error and its text `sTextoSO`, when there was an error.
CString TextoDaCaixa(const CString &sTexto, std::uint32_t uiMensagem, std::uint32_t uiErroSO, const CString &sTextoSO);

#endif
