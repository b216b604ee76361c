#ifndef KALVO_CORE_PLATFORM_MASCARA_H
#define KALVO_CORE_PLATFORM_MASCARA_H

#include <string_view>

namespace plataforma {

/// Whole-text wildcard match byte by byte: '*' any run (also an empty one), '?' exactly one character, nothing else
/// special. For a match without regard to letter case fold both texts first. Time is bounded by the product of the two
/// lengths.
bool CasaMascara(std::string_view texto, std::string_view mascara);

}  // namespace plataforma

#endif
