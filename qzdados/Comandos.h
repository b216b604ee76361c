#ifndef KALVO_QZDADOS_COMANDOS_H
#define KALVO_QZDADOS_COMANDOS_H

#include <span>
#include <string>

#include "qzdados/Tela.h"

/// Exit codes of the program: those of EEstado, and this one.
inline constexpr int kUsoErrado = 4;

/// Runs the command line (without the program's name) and answers the exit code. Failures are told on the screen; only
/// what is no failure of a file or of usage, such as memory running out, is raised.
int ExecutaQzdados(std::span<const std::string> aTextos, ITela &tela);

#endif
