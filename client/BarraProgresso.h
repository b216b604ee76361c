#ifndef KALVO_CLIENT_BARRAPROGRESSO_H
#define KALVO_CLIENT_BARRAPROGRESSO_H

#include <chrono>
#include <cstddef>
#include <string>

/// "[#####     ]  50%"; a total of zero counts as done.
std::string LinhaProgresso(std::size_t uiFeito, std::size_t uiTotal);

/// A progress bar on standard error, drawn only when that is a console, and at most ten times a second.
class CBarraProgresso {
public:
  CBarraProgresso();
  ~CBarraProgresso() { Limpa(); }
  CBarraProgresso(const CBarraProgresso &) = delete;
  CBarraProgresso &operator=(const CBarraProgresso &) = delete;

  void Mostra(std::size_t uiFeito, std::size_t uiTotal);
  /// Takes the bar off its line so that other text can be written there.
  void Limpa();

private:
  bool m_bConsole;
  std::size_t m_uiDesenhados = 0;  ///< characters on the line
  std::chrono::steady_clock::time_point m_tProximo{};
};

#endif
