#ifndef KALVO_CORE_QZDATABASE_DISCO_CODIGOSARQUIVO_H
#define KALVO_CORE_QZDATABASE_DISCO_CODIGOSARQUIVO_H

#include "core/errors/CodigosResultado.h"
#include "core/platform/Arquivos.h"

/// Result code of a failed file operation; 0 for none.
HRESULT CodigoDaFalha(const plataforma::FalhaArquivo &falha);

/// True for the file codes after which a writer stops trying.
bool EhCodigoFatal(HRESULT hr);

#endif
