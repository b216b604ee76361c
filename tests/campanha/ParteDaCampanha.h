#ifndef KALVO_TESTS_CAMPANHA_PARTEDACAMPANHA_H
#define KALVO_TESTS_CAMPANHA_PARTEDACAMPANHA_H

#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <random>
#include <string>
#include <vector>

#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/RegistroTeste.h"
#include "tests/com/ApoioCom.h"

namespace campanha {

/// One part of the campaign: begins without a server, and with logs of its own. What depends on chance follows from a
/// number that is printed, and that the environment's KALVO_SEMENTE gives again. After a failure the directories of the
/// companies and of the installation are kept, and named.
class ParteDaCampanha : public testing::Test {
protected:
  ParteDaCampanha();
  void SetUp() override;
  void TearDown() override;

  /// Servers that start from here on write entry and exit records.
  void LigaLogs();

  /// A company in place of the earlier ones, or beside them.
  apoiocom::Empresa &OutraEmpresa();
  apoiocom::Empresa &MaisUmaEmpresa();

  /// The names of the files of a folder that end so.
  static std::vector<std::string> Sobras(const CString &sPasta, const char *lpFim);

  /// A time up to so many milliseconds.
  std::chrono::microseconds Sorteia(unsigned uiMilissegundos);

  /// Waits so long, to some microseconds.
  static void Espera(std::chrono::microseconds tempo);

  /// What the part's last line says of what was acknowledged.
  static const char *Veredito() { return HasFailure() ? "NOT ALL AS IT MUST BE" : "nothing lost"; }

  /// A number of seconds from the environment's KALVO_SEGUNDOS, or the one given.
  static unsigned Segundos(unsigned uiSenao);

  std::mt19937 m_gerador;

private:
  void Guarda() const;

  unsigned m_uiSemente;
  apoio::PastaTemporaria m_instalacao;
  apoio::RegistroTeste m_registro;
  std::deque<apoiocom::Empresa> m_empresas;
};

}  // namespace campanha

#endif
