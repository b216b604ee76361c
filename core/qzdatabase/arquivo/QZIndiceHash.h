#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_QZINDICEHASH_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_QZINDICEHASH_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

/// Where in a file the texts of a field stand, by the texts' hashes: for each hash the first position at which a text
/// of that hash stands, or a lower bound of it, and whether there may be others behind.
///
/// Invariant, for the positions entered: a hash without an entry stands nowhere; one whose entry says "no others"
/// stands at its position and nowhere else; any other stands at no position below its entry's, and perhaps nowhere.
///
/// An entry takes 8 bytes in a table that is never fuller than four fifths. The table has kPartes parts, each of which
/// grows by itself, so that no entry ever waits for a large table to be moved. Not synchronised.
class CQZIndiceHash {
public:
  /// Highest position that an entry can hold.
  static constexpr std::uint32_t kMaiorPosicao = 0x7FFFFFFF;
  static constexpr std::size_t kPartes = 256;

  /// Of a field's text, which ends at its first zero byte or with the field: 40 bits, so that of a million texts hardly
  /// any two share one.
  static std::uint64_t Hash(const char *lpCampo, std::size_t uiLargura);
  static std::size_t ParteDe(std::uint64_t uiHash) { return static_cast<std::size_t>(uiHash >> 32); }

  struct Achado {
    std::uint64_t uiPosicao;  ///< 0: nowhere
    bool bOutros;
  };
  Achado Acha(std::uint64_t uiHash) const;

  /// Makes room for so many more hashes in the part of this one. Throws std::bad_alloc with everything as before.
  void Reserva(std::uint64_t uiHash, std::size_t uiQuantos);

  /// Enters a position, for which there is room. One that is entered already is no matter.
  void Acrescenta(std::uint64_t uiHash, std::uint64_t uiPosicao);
  /// A position that is entered with this hash does not have it any more.
  void Retira(std::uint64_t uiHash, std::uint64_t uiPosicao);
  /// No position below this one has the hash, which has an entry.
  void Avanca(std::uint64_t uiHash, std::uint64_t uiPosicao);
  /// No position has the hash.
  void Apaga(std::uint64_t uiHash);

  /// Removes everything and gives the memory back.
  void Esvazia() { m_partes.clear(); }

private:
  struct Entrada {
    std::uint32_t uiHash;          ///< its lower 32 bits: the part has the others
    std::uint32_t uiPosicao : 31;  ///< 0: no entry
    std::uint32_t bOutros : 1;
  };
  static_assert(sizeof(Entrada) == 8);

  struct Parte {
    std::unique_ptr<Entrada[]> entradas;
    std::uint32_t uiCapacidade = 0;
    std::uint32_t uiUsadas = 0;

    std::uint32_t Lar(std::uint32_t uiHash) const;
    std::uint32_t Depois(std::uint32_t i) const { return i + 1 == uiCapacidade ? 0 : i + 1; }
    std::uint32_t Distancia(std::uint32_t de, std::uint32_t ate) const {
      return ate >= de ? ate - de : ate + uiCapacidade - de;
    }
    Entrada *Lugar(std::uint32_t uiHash) const;
    void Cresce(std::size_t uiMinimo);
    void Apaga(Entrada *pEntrada);
  };

  Entrada *Procura(std::uint64_t uiHash) const;

  std::vector<Parte> m_partes;  ///< kPartes of them, or none yet
};

#endif
