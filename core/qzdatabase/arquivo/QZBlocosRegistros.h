#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_QZBLOCOSREGISTROS_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_QZBLOCOSREGISTROS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/platform/CException.h"
#include "core/qzdatabase/arquivo/QZResumos.h"

/// The records of a file in memory, in blocks of fixed size: growing never copies a record, and neighbouring records
/// lie together so that a scan runs at memory speed. Beside each block stand the digests of its records
/// (ResumosDeRegistros). Indices are 0-based. Not synchronised.
template <typename T>
class CQZBlocosRegistros {
  static_assert(std::is_trivially_copyable_v<T>, "records are copied and compared as bytes");

  using Resumos = typename ResumosDeRegistros<T>::Bloco;
  struct Bloco {
    T registros[kRegistrosPorBloco];
    Resumos resumos;
  };

public:
  /// A run of records that lie together.
  template <typename U>
  struct Trecho {
    U *pRegistros;
    std::size_t qtd;
    const Resumos *pResumos;  ///< of the block
    std::size_t uiLugar;      ///< of the first record in the block
  };

  std::size_t GetSize() const { return m_qtd; }

  /// Room that was made beside the records, for Adota.
  class Espaco {
    friend CQZBlocosRegistros;
    std::vector<std::unique_ptr<Bloco>> m_novos;   ///< blocks behind those that there are
    std::vector<std::unique_ptr<Bloco>> m_tabela;  ///< empty, for all of them; unless the present table has room
  };

  /// Makes room for `qtd` records, the present ones included, without touching these. Throws std::bad_alloc.
  Espaco PreparaEspaco(std::size_t qtd) const {
    Resumos::Prepara();
    const std::size_t blocos = (qtd + kRegistrosPorBloco - 1) / kRegistrosPorBloco;
    Espaco espaco;
    if (blocos > m_blocos.capacity()) {
      espaco.m_tabela.reserve(std::max(blocos, m_blocos.capacity() * 2));
    }
    while (m_blocos.size() + espaco.m_novos.size() < blocos) {
      espaco.m_novos.push_back(std::make_unique_for_overwrite<Bloco>());
    }
    return espaco;
  }

  /// Takes room over that was prepared since the last change, so that DefineTamanho up to it cannot fail.
  void Adota(Espaco espaco) noexcept {
    if (espaco.m_tabela.capacity() > m_blocos.capacity()) {
      std::move(m_blocos.begin(), m_blocos.end(), std::back_inserter(espaco.m_tabela));
      m_blocos.swap(espaco.m_tabela);
    }
    std::move(espaco.m_novos.begin(), espaco.m_novos.end(), std::back_inserter(m_blocos));
  }

  /// Makes room for `qtd` records without changing their number. Throws std::bad_alloc with everything as before.
  void Reserva(std::size_t qtd) { Adota(PreparaEspaco(qtd)); }

  /// Sets the number of records; the content of added ones is undefined, that of their digests too.
  void DefineTamanho(std::size_t qtd) {
    Reserva(qtd);
    m_qtd = qtd;
  }

  /// Removes all records and gives their memory back.
  void Esvazia() {
    m_qtd = 0;
    m_blocos.clear();
  }

  void Troca(CQZBlocosRegistros &outros) noexcept {
    m_blocos.swap(outros.m_blocos);
    std::swap(m_qtd, outros.m_qtd);
  }

  /// An index past the end raises CInvalidArgException.
  const T &operator[](std::size_t indice) const {
    if (indice >= m_qtd) {
      LancaArgumentoInvalido();
    }
    return m_blocos[indice / kRegistrosPorBloco]->registros[indice % kRegistrosPorBloco];
  }

  /// The run that starts at `indice` (below `fim`) and ends with its block or before `fim`, whichever comes first.
  Trecho<T> TrechoEm(std::size_t indice, std::size_t fim) {
    const std::size_t uiLugar = indice % kRegistrosPorBloco;
    Bloco &bloco = *m_blocos[indice / kRegistrosPorBloco];
    return {&bloco.registros[uiLugar], std::min(fim - indice, kRegistrosPorBloco - uiLugar), &bloco.resumos, uiLugar};
  }
  Trecho<const T> TrechoEm(std::size_t indice, std::size_t fim) const {
    const Trecho<T> trecho = const_cast<CQZBlocosRegistros *>(this)->TrechoEm(indice, fim);
    return {trecho.pRegistros, trecho.qtd, trecho.pResumos, trecho.uiLugar};
  }

  /// Copies `qtd` records over those from `indice` on, for which there must be room, and computes their digests. Behind
  /// the last record nobody looks at what is copied until DefineTamanho. Abrange is to follow.
  void Copia(std::size_t indice, const T *pOrigem, std::size_t qtd) {
    for (const std::size_t fim = indice + qtd; indice < fim;) {
      const Trecho<T> trecho = TrechoEm(indice, fim);
      std::memcpy(trecho.pRegistros, pOrigem, trecho.qtd * sizeof(T));
      ResumosEm(indice).Define(trecho.uiLugar, pOrigem, trecho.qtd);
      pOrigem += trecho.qtd;
      indice += trecho.qtd;
    }
  }

  /// Lets the blocks' summaries take in `qtd` records from `indice` on, whose digests are computed.
  void Abrange(std::size_t indice, std::size_t qtd) {
    for (const std::size_t fim = indice + qtd; indice < fim;) {
      const Trecho<T> trecho = TrechoEm(indice, fim);
      ResumosEm(indice).Abrange(trecho.uiLugar, trecho.qtd);
      indice += trecho.qtd;
    }
  }

  /// Makes the digests of a run of records from a block's first on that was filled through TrechoEm.
  void Resume(std::size_t indice, const Trecho<T> &trecho) { ResumosEm(indice).Carrega(trecho.pRegistros, trecho.qtd); }

  /// True when the `qtd` records from `indice` on, which must exist, equal the given ones byte for byte.
  bool Iguais(std::size_t indice, const T *pOutros, std::size_t qtd) const {
    for (const std::size_t fim = indice + qtd; indice < fim;) {
      const Trecho<const T> trecho = TrechoEm(indice, fim);
      if (std::memcmp(trecho.pRegistros, pOutros, trecho.qtd * sizeof(T)) != 0) {
        return false;
      }
      pOutros += trecho.qtd;
      indice += trecho.qtd;
    }
    return true;
  }

private:
  Resumos &ResumosEm(std::size_t indice) { return m_blocos[indice / kRegistrosPorBloco]->resumos; }

  std::vector<std::unique_ptr<Bloco>> m_blocos;
  std::size_t m_qtd = 0;
};

#endif
