#ifndef KALVO_TESTS_CAMPANHA_SERVIDORES_H
#define KALVO_TESTS_CAMPANHA_SERVIDORES_H

#include <windows.h>

#include <cstddef>
#include <vector>

namespace campanha {

/// Process numbers of the servers that run.
std::vector<DWORD> IdsDosServidores();

/// Ends a server as a crash would; it is gone on return.
void MataServidor(DWORD idProcesso);
void MataServidores();

/// Lets the component platform forget servers that were ended by force: under Wine every activation fails otherwise.
/// Objects that clients hold stay, but the servers they are of are found by no activation any more.
void EsqueceServidores();

/// What a server uses.
struct Recursos {
  double dMemoriaMB = 0;  ///< in memory
  std::size_t uiHandles = 0;
  std::size_t uiThreads = 0;
};
Recursos RecursosDe(DWORD idProcesso);

}  // namespace campanha

#endif
