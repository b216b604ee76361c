#ifndef KALVO_QZDADOS_ERROARQUIVO_H
#define KALVO_QZDADOS_ERROARQUIVO_H

#include <stdexcept>

#include "core/platform/Arquivos.h"

/// A file that could not be opened, read or written; the text (Windows-1252, without the file's name) is for the user.
class CErroArquivo : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// What a failed file operation means to the user.
CString TextoDaFalha(const plataforma::FalhaArquivo &falha);
/// The same for a file code of the record files' layer.
CString TextoDoCodigo(HRESULT hr);

/// Raises CErroArquivo for a failure.
void Exige(const plataforma::FalhaArquivo &falha);

#endif
