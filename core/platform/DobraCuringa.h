#ifndef KALVO_CORE_PLATFORM_DOBRACURINGA_H
#define KALVO_CORE_PLATFORM_DOBRACURINGA_H

#include <array>

namespace plataforma {

/// For each byte the smallest of those that count as the same letter.
using DobraLetras = std::array<unsigned char, 256>;

/// Which letters the system's wildcard match (CasaCuringa) takes for one another, found by asking that match itself, on
/// the first call. Null where a table cannot say it: where a letter may take more than one byte, and where the match is
/// not one of letter by letter. '*', '?' and ';' stand in texts only, and count as letters of their own. Any thread.
const DobraLetras *DobraDoCuringa();

}  // namespace plataforma

#endif
