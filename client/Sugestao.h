#ifndef KALVO_CLIENT_SUGESTAO_H
#define KALVO_CLIENT_SUGESTAO_H

#include <span>
#include <string>
#include <string_view>

/// What to add to the refusal of an unknown word: "; o mais parecido é \"importa\"" (Windows-1252), or nothing when no
/// candidate is near: at most a third of the letters added, missing, exchanged or swapped with their neighbour, or the
/// word is how the candidate begins.
std::string Sugestao(std::string_view sPalavra, std::span<const std::string_view> aCandidatos);

#endif
