#ifndef KALVO_CLIENT_AJUDA_H
#define KALVO_CLIENT_AJUDA_H

// How to use a program, from the table that its parser reads. Texts are Windows-1252.

#include <optional>
#include <span>
#include <string>

#include "client/Argumentos.h"

/// The commands, a line each, and what holds for all of them.
std::string TextoAjuda(const CProgramaConhecido &programa);

/// One command with its options and examples.
std::string TextoAjuda(const CProgramaConhecido &programa, const CComandoConhecido &comando);

/// What a command line with --ajuda, -h, /? or --versao anywhere in it asks to be shown instead of any work; the help
/// is that of the command when it names one. Nothing for any other line.
std::optional<std::string> TextoPedido(std::span<const std::string> aTextos, const CProgramaConhecido &programa);

#endif
