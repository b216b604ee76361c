#ifndef KALVO_SERVER_MODULO_H
#define KALVO_SERVER_MODULO_H

#include "core/platform/Tipos.h"
#include "server/ClasseVeiculos.h"
#include "server/ContagemModulo.h"

/// The process from start to end: component platform, command line, registration or service.
class CKalvoModule {
public:
  /// Runs on the main thread; returns the process's exit code: the result code of the registration asked for on the
  /// command line, else of the run. Says failures to the caller's console.
  int Executa(const char *lpLinhaComando);

private:
  HRESULT Serve();
  HRESULT Atende();

  CContagemModulo &m_contagem = CContagemModulo::DoProcesso();
  CClasseVeiculos m_classe;
  DWORD m_msPrimeiroUso = 0;  ///< how long the process waits for its first object
};

#endif
