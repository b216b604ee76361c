#ifndef KALVO_TESTS_COM_RODADAATIVACAO_H
#define KALVO_TESTS_COM_RODADAATIVACAO_H

#include <random>
#include <string>

#include "tests/com/ApoioCom.h"

namespace apoiocom {

/// How long a server may live after its last object, in milliseconds.
inline constexpr long kMaximoSemObjeto = 10000;

/// What one activation met that was aimed at the end of the server.
struct ResultadoRodada {
  std::string sFalha;            ///< what broke a promise; empty when all were kept
  bool bServidorNovo = false;    ///< served by another process than the one that was about to end
  bool bRespostaDoWine = false;  ///< the first attempt was answered by Wine, not by a server
  long lAtivacao = 0;            ///< duration of the successful creation, in milliseconds
  long lVidaSemObjeto = 0;       ///< at most so long, in milliseconds, the old process lived on without an object
};

/// Lets the only server become idle and creates an object again a given time later.
class RodadaAtivacao {
public:
  /// Opens the company with the first object.
  explicit RodadaAtivacao(const Empresa &empresa);

  bool Pronta() const { return m_spVeiculos != nullptr; }

  /// Releases the object, waits `dwAtraso` milliseconds or until the server is gone, creates the next object and works
  /// with it. At the end one server runs, which has the new object.
  ResultadoRodada Roda(DWORD dwAtraso);

private:
  const Empresa &m_empresa;
  Veiculos m_spVeiculos;
};

/// A delay near one of the moments that matter: the decision to end, the revocation of the class, the end.
DWORD AtrasoMirado(std::mt19937 &gerador);

}  // namespace apoiocom

#endif
