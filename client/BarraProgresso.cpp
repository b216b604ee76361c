#include "client/BarraProgresso.h"

#include <algorithm>
#include <cstdio>

#include "client/Console.h"

namespace {

constexpr std::size_t kLargura = 50;
constexpr std::chrono::milliseconds kIntervalo{100};

}  // namespace

std::string LinhaProgresso(std::size_t uiFeito, std::size_t uiTotal) {
  const double dParte =
      uiTotal == 0 ? 1.0 : static_cast<double>(std::min(uiFeito, uiTotal)) / static_cast<double>(uiTotal);
  const auto uiCheios = static_cast<std::size_t>(dParte * static_cast<double>(kLargura));
  const std::string sPorcento = std::to_string(static_cast<int>(dParte * 100.0));
  std::string sLinha = "[";
  sLinha.append(uiCheios, '#').append(kLargura - uiCheios, ' ').append("] ");
  return sLinha.append(3 - sPorcento.size(), ' ').append(sPorcento).append("%");
}

CBarraProgresso::CBarraProgresso() : m_bConsole(EhConsole(stderr)) {}

void CBarraProgresso::Mostra(std::size_t uiFeito, std::size_t uiTotal) {
  const auto tAgora = std::chrono::steady_clock::now();
  if (!m_bConsole || tAgora < m_tProximo) {
    return;
  }
  m_tProximo = tAgora + kIntervalo;
  const std::string sLinha = LinhaProgresso(uiFeito, uiTotal);
  m_uiDesenhados = sLinha.size();
  std::fprintf(stderr, "\r%s", sLinha.c_str());
  std::fflush(stderr);
}

void CBarraProgresso::Limpa() {
  if (m_uiDesenhados != 0) {
    std::fprintf(stderr, "\r%s\r", std::string(m_uiDesenhados, ' ').c_str());
    std::fflush(stderr);
    m_uiDesenhados = 0;
  }
}
