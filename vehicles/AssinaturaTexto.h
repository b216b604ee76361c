#ifndef KALVO_VEHICLES_ASSINATURATEXTO_H
#define KALVO_VEHICLES_ASSINATURATEXTO_H

#include <cstddef>
#include <cstdint>
#include <string_view>

/// What pairs of neighbouring letters a text has, in 64 bits: each pair has a bit, which it shares with others. Letters
/// that the wildcard match takes for one another (DobraDoCuringa) count as one, so a text that a pattern matches has
/// all bits of the pattern. Equal texts have equal signatures. All bits are set where no table says which letters count
/// as one. Any thread.
class CAssinaturaTexto {
public:
  /// Makes ready what the other members need. Before the first of them; may throw.
  static void Prepara();

  /// Of a field of `uiLargura` bytes, up to its first zero byte.
  static std::uint64_t DoCampo(const char *lpCampo, std::size_t uiLargura) noexcept;

  /// The bits that every text has which the pattern matches, one that CPadraoCuringa takes.
  static std::uint64_t DoPadrao(std::string_view sPadrao) noexcept;
};

#endif
