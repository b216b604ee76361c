#ifndef KALVO_TESTS_CAMPANHA_SERVIDORES_H
#define KALVO_TESTS_CAMPANHA_SERVIDORES_H

#include <windows.h>

#include <cstddef>
#include <vector>

namespace campanha {

/// Process numbers of the servers that run.
std::vector<DWORD> IdsDosServidores();

/// Ends a server as a crash would; it is gone on return.
void Mata(HANDLE hServidor);
void MataServidores();

/// What a server uses.
struct Recursos {
  double dMemoriaMB = 0;  ///< in memory
  std::size_t uiHandles = 0;
  std::size_t uiThreads = 0;
};
Recursos RecursosDe(HANDLE hServidor);

}  // namespace campanha

#endif
