#include "core/platform/CaixaMensagem.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "core/platform/ServicosSistema.h"
#include "tests/apoio/ProcessoFilho.h"

namespace {

/// What a service is: its window station is not the one that somebody sits before. The exit code is the box's answer.
int MostraSemEspectador(const std::vector<std::string> &) {
  const HWINSTA estacao = CreateWindowStationA(nullptr, 0, WINSTA_ALL_ACCESS, nullptr);
  if (estacao == nullptr || !SetProcessWindowStation(estacao)) {
    return 100;
  }
  return plataforma::CaixaMensagemDoSistema().Mostra("texto", "titulo", 0x30, plataforma::DonoCaixa::JanelaDaThread);
}

const apoio::RegistraFilha g_mostra("mostra_sem_espectador", MostraSemEspectador);

TEST(CaixaMensagem, SemEspectadorRespondeZeroSemEsperar) {
  EXPECT_EQ(apoio::ProcessoFilho("mostra_sem_espectador").Espera(), 0);
}

}  // namespace
