#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_QZRESUMOS_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_QZRESUMOS_H

#include <cstddef>

/// The records of a file lie in memory in blocks of so many.
inline constexpr std::size_t kRegistrosPorBloco = 1024;

/// What memory keeps beside each block of records of a type, so that a search can pass over most of them without
/// looking at them. A type that has any specialises it, with these members; by default there is nothing. Places are
/// those within the block, from 0.
///
/// Digests of records that nobody may look at yet may be computed beside readers. What is kept for a block as a whole
/// is read with each of its records: it changes only while readers are kept out.
template <typename T>
struct ResumosDeRegistros {
  /// The digests of one block, of no record at first.
  struct Bloco {
    /// Makes ready what Define needs. Before any other use; may throw.
    static void Prepara() {}
    /// Makes the digests of the `qtd` records with which the block begins, which were loaded and are in no use yet.
    /// What only some searches ask for may be left to the first of them. Abrange is done with that.
    void Carrega(const T * /*pRegistros*/, std::size_t /*qtd*/) noexcept {}
    /// Computes the digests of the records that stand, or are about to, at the places from `uiLugar` on.
    void Define(std::size_t /*uiLugar*/, const T * /*pRegistros*/, std::size_t /*qtd*/) noexcept {}
    /// Takes digests that Define has computed into what is kept for the block as a whole. What was taken in before
    /// stays in, whatever stands in its place by now.
    void Abrange(std::size_t /*uiLugar*/, std::size_t /*qtd*/) noexcept {}
  };
};

#endif
