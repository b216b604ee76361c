#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_QZINDICES_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_QZINDICES_H

#include <array>
#include <atomic>
#include <new>

#include "core/qzdatabase/arquivo/QZBlocosRegistros.h"
#include "core/qzdatabase/arquivo/QZIndiceHash.h"

/// A text field of a record.
struct CampoIndexado {
  std::size_t uiDeslocamento;
  std::size_t uiLargura;
};

/// The fields by whose exact texts records of a type are looked for. A type that has any specialises it.
template <typename T>
struct CamposIndexados {
  static constexpr std::array<CampoIndexado, 0> kCampos{};
};

/// What an index says of the records that hold a text.
enum class EResposta : unsigned char {
  NaoSei,      ///< nothing; only looking at all records tells
  FaltaFazer,  ///< nothing before some work is done: Trabalha, and ask again
  Nenhum,      ///< there are none
  SoUm,        ///< the one at the position is the only one, if it holds the text and not another of the same hash
  Varios,      ///< none stands before the position; that one, and any behind it, may hold the text
};

/// The indexes of the records of one file, one for each of CamposIndexados, each built when it is asked for the first
/// time, in steps, and kept in step with the records from then on: what it says holds for the records at that moment.
///
/// A record is entered when the building has come to its position; writes before that place are followed, others are
/// met by the building later. Memory that runs short costs the index, not the operation: its answer is NaoSei until the
/// records are loaded anew. So does a machine fault in the middle of a change, until the index is built anew.
///
/// Not synchronised: the file's lock. Procura changes nothing.
template <typename T>
class CQZIndices {
  static constexpr auto &kCampos = CamposIndexados<T>::kCampos;

public:
  static std::uint64_t Hash(std::size_t uiCampo, const T &reg) {
    const CampoIndexado &campo = kCampos[uiCampo];
    return CQZIndiceHash::Hash(reinterpret_cast<const char *>(&reg) + campo.uiDeslocamento, campo.uiLargura);
  }

  /// Of a text that fits into the field and holds no zero byte.
  static std::uint64_t HashDoTexto(std::size_t uiCampo, std::string_view sTexto) {
    T reg{};
    sTexto.copy(reinterpret_cast<char *>(&reg) + kCampos[uiCampo].uiDeslocamento, kCampos[uiCampo].uiLargura);
    return Hash(uiCampo, reg);
  }

  /// The records with a hash; `*puiPosicao`, from 1 on, is set for SoUm and Varios.
  EResposta Procura(std::size_t uiCampo, std::uint64_t uiHash, const CQZBlocosRegistros<T> &registros,
                    std::uint64_t *puiPosicao) const {
    const Indice &indice = m_indices[uiCampo];
    if (indice.bSemMemoria || registros.GetSize() > CQZIndiceHash::kMaiorPosicao) {
      return EResposta::NaoSei;
    }
    if (Interrompido() || indice.uiFeitos < registros.GetSize()) {
      return EResposta::FaltaFazer;
    }
    const CQZIndiceHash::Achado achado = indice.hashes.Acha(uiHash);
    *puiPosicao = achado.uiPosicao;
    if (achado.uiPosicao == 0) {
      return EResposta::Nenhum;
    }
    if (!achado.bOutros) {
      return EResposta::SoUm;
    }
    // With others behind it the entry is a lower bound; it answers once the record there has the hash.
    const bool bExato = achado.uiPosicao <= registros.GetSize() &&
                        Hash(uiCampo, registros[static_cast<std::size_t>(achado.uiPosicao - 1)]) == uiHash;
    return bExato ? EResposta::Varios : EResposta::FaltaFazer;
  }

  /// One step of what Procura has found missing: the next block of records is entered, or searched for the first that
  /// still has the hash.
  void Trabalha(std::size_t uiCampo, std::uint64_t uiHash, const CQZBlocosRegistros<T> &registros) {
    Comeca();
    Indice &indice = m_indices[uiCampo];
    if (indice.uiFeitos < registros.GetSize()) {
      Entra(uiCampo, registros);
    } else {
      AchaPrimeiro(uiCampo, uiHash, registros);
    }
    Acaba();
  }

  /// Makes room for what Troca will enter of these records.
  void Prepara(const T *pNovos, std::size_t qtd) {
    Comeca();
    for (std::size_t uiCampo = 0; Indice & indice : m_indices) {
      if (indice.uiFeitos != 0) {
        Reserva(&indice, uiCampo, pNovos, qtd);
      }
      ++uiCampo;
    }
    Acaba();
  }

  /// The records from `uiIndice` (from 0, at most one behind the last) on are about to become these, for which Prepara
  /// has made room. Cannot fail.
  void Troca(const CQZBlocosRegistros<T> &registros, std::size_t uiIndice, const T *pNovos, std::size_t qtd) noexcept {
    Comeca();
    for (std::size_t uiCampo = 0; Indice & indice : m_indices) {
      // Without an entry there is no room either: it will be built later.
      for (std::size_t i = 0; i < qtd && indice.uiFeitos != 0; ++i) {
        TrocaUm(&indice, uiCampo, registros, uiIndice + i, pNovos[i]);
      }
      ++uiCampo;
    }
    Acaba();
  }

  /// Forgets everything: the records are others now.
  void Esvazia() {
    for (Indice &indice : m_indices) {
      indice = Indice{};
    }
    Acaba();
  }

private:
  struct Indice {
    CQZIndiceHash hashes;
    std::size_t uiFeitos = 0;  ///< so many records are entered, the first ones of the file
    bool bSemMemoria = false;
  };

  /// Left on by a machine fault in the middle of a change.
  bool Interrompido() const { return m_bMexendo.load(std::memory_order_relaxed); }
  void Comeca() {
    if (Interrompido()) {
      Esvazia();
    }
    m_bMexendo.store(true, std::memory_order_relaxed);
    std::atomic_signal_fence(std::memory_order_seq_cst);
  }
  void Acaba() {
    std::atomic_signal_fence(std::memory_order_seq_cst);
    m_bMexendo.store(false, std::memory_order_relaxed);
  }

  static void Desiste(Indice *pIndice) {
    *pIndice = Indice{};
    pIndice->bSemMemoria = true;
  }

  void Entra(std::size_t uiCampo, const CQZBlocosRegistros<T> &registros) {
    Indice &indice = m_indices[uiCampo];
    const auto trecho = registros.TrechoEm(indice.uiFeitos, registros.GetSize());
    try {
      for (std::size_t i = 0; i < trecho.qtd; ++i) {
        const std::uint64_t uiHash = Hash(uiCampo, trecho.pRegistros[i]);
        indice.hashes.Reserva(uiHash, 1);
        indice.hashes.Acrescenta(uiHash, ++indice.uiFeitos);
      }
    } catch (const std::bad_alloc &) {
      Desiste(&indice);
    }
  }

  void AchaPrimeiro(std::size_t uiCampo, std::uint64_t uiHash, const CQZBlocosRegistros<T> &registros) {
    CQZIndiceHash &hashes = m_indices[uiCampo].hashes;
    std::uint64_t uiPosicao = hashes.Acha(uiHash).uiPosicao;
    if (uiPosicao == 0) {
      return;
    }
    if (uiPosicao > registros.GetSize()) {
      hashes.Apaga(uiHash);
      return;
    }
    const auto trecho = registros.TrechoEm(static_cast<std::size_t>(uiPosicao - 1), registros.GetSize());
    for (std::size_t i = 0; i < trecho.qtd && Hash(uiCampo, trecho.pRegistros[i]) != uiHash; ++i) {
      ++uiPosicao;
    }
    hashes.Avanca(uiHash, uiPosicao);
  }

  static void Reserva(Indice *pIndice, std::size_t uiCampo, const T *pNovos, std::size_t qtd) {
    try {
      if (qtd == 1) {
        pIndice->hashes.Reserva(Hash(uiCampo, *pNovos), 1);
        return;
      }
      std::array<std::uint32_t, CQZIndiceHash::kPartes> novos{};
      for (std::size_t i = 0; i < qtd; ++i) {
        const std::uint64_t uiHash = Hash(uiCampo, pNovos[i]);
        pIndice->hashes.Reserva(uiHash, ++novos[CQZIndiceHash::ParteDe(uiHash)]);
      }
    } catch (const std::bad_alloc &) {
      Desiste(pIndice);
    }
  }

  static void TrocaUm(Indice *pIndice, std::size_t uiCampo, const CQZBlocosRegistros<T> &registros,
                      std::size_t uiIndice, const T &novo) {
    const std::uint64_t uiHash = Hash(uiCampo, novo);
    // Entered already: the position changes its hash. What the building has not come to it will meet as it is then;
    // only the record right behind the last one entered is entered at once, so that a finished index stays finished.
    if (uiIndice < pIndice->uiFeitos && uiIndice < registros.GetSize()) {
      const std::uint64_t uiAntigo = Hash(uiCampo, registros[uiIndice]);
      if (uiAntigo != uiHash) {
        pIndice->hashes.Retira(uiAntigo, uiIndice + 1);
        pIndice->hashes.Acrescenta(uiHash, uiIndice + 1);
      }
    } else if (uiIndice == pIndice->uiFeitos && uiIndice >= registros.GetSize()) {
      pIndice->hashes.Acrescenta(uiHash, ++pIndice->uiFeitos);
    }
  }

  std::array<Indice, kCampos.size()> m_indices;
  std::atomic<bool> m_bMexendo{false};
};

#endif
