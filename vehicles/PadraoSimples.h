#ifndef KALVO_VEHICLES_PADRAOSIMPLES_H
#define KALVO_VEHICLES_PADRAOSIMPLES_H

#include <array>
#include <cstddef>
#include <string_view>

/// A wildcard pattern whose meaning is the same on every system, prepared for many texts: 7-bit letters, digits, '*',
/// '?' and blanks other than leading ones. On such a pattern and a text of 7-bit characters it answers as the system's
/// own match does, without its cost; everything else is left to that one. Immutable; any thread may use it.
class CPadraoSimples {
public:
  /// Longest text that Casa takes.
  static constexpr std::size_t kMaiorTexto = 64;

  enum class Resposta { Casa, NaoCasa, TextoAlheio };

  CPadraoSimples() = default;

  /// Takes the pattern over; false when it is none of this kind.
  bool Define(std::string_view sPadrao);

  /// Matches a text of at most kMaiorTexto bytes, letter case ignored; TextoAlheio when it holds other than 7-bit
  /// characters.
  Resposta Casa(std::string_view sTexto) const;

private:
  bool CasaTrechos(std::string_view sTexto) const;
  bool CasaComInterrogacao(std::string_view sTexto) const;

  std::array<char, kMaiorTexto> m_padrao{};  ///< upper case
  std::size_t m_uiTamanho = 0;
  bool m_bTemInterrogacao = false;
};

#endif
