#ifndef KALVO_TESTS_CAMPANHA_PARTEDACAMPANHA_H
#define KALVO_TESTS_CAMPANHA_PARTEDACAMPANHA_H

#include <gtest/gtest.h>

#include <deque>
#include <random>
#include <string>

#include "tests/apoio/Corrida.h"
#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/RegistroTeste.h"
#include "tests/campanha/Escritores.h"

namespace campanha {

/// Ends a server as a crash would; it is gone on return.
void Mata(HANDLE hServidor);

/// Ends all servers so, and lets the platform forget them.
void MataServidores();

/// The vehicles of a company as a new client reads them.
apoiocom::Resposta LeEmpresa(const std::string &sEmpresa);

/// One part of the campaign: begins without a server, and with logs of its own. What depends on chance follows from a
/// number that is printed, and that the environment's KALVO_SEMENTE gives again. After a failure the directories of the
/// companies and of the installation stay, and are named.
class ParteDaCampanha : public testing::Test {
protected:
  void SetUp() override;
  void TearDown() override;

  /// Servers that start from here on write entry and exit records.
  void LigaLogs() const;

  /// A new client finds in the company what its book says.
  static void Confere(const std::string &sEmpresa, CLivro &livro);

  /// Whether a folder has companions of files that somebody has left half way.
  static bool TemSobras(const CString &sPasta);

  /// Waits for any time up to so many milliseconds.
  void EsperaAte(unsigned uiMilissegundos);

  /// What the part's last line says of what was acknowledged.
  static const char *Veredito() { return HasFailure() ? "NOT ALL AS IT MUST BE" : "nothing lost"; }

  std::mt19937 m_gerador;
  apoio::RegistroTeste m_registro;
  std::deque<apoiocom::Empresa> m_empresas;

private:
  unsigned m_uiSemente = apoio::DoAmbiente("KALVO_SEMENTE", std::random_device()());
  apoio::PastaTemporaria m_instalacao;
};

}  // namespace campanha

#endif
