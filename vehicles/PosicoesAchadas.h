#ifndef KALVO_VEHICLES_POSICOESACHADAS_H
#define KALVO_VEHICLES_POSICOESACHADAS_H

#include <algorithm>
#include <cstddef>
#include <memory>
#include <numeric>
#include <vector>

#include "core/platform/Tipos.h"

/// The positions that a search finds, in the order in which they are added, kept so that none is moved before they are
/// copied to where they are wanted. Not synchronised.
class CPosicoesAchadas {
public:
  void Acrescenta(LONG lPosicao) {
    if (m_uiNoUltimo == kPorBloco || m_blocos.empty()) {
      m_blocos.push_back(std::make_unique_for_overwrite<LONG[]>(kPorBloco));
      m_uiNoUltimo = 0;
    }
    m_blocos.back()[m_uiNoUltimo++] = lPosicao;
  }

  /// 1 to `uiQtd`, and nothing else.
  void DefineTodas(std::size_t uiQtd) {
    m_blocos.clear();
    m_uiTodas = uiQtd;
  }

  std::size_t GetSize() const {
    return m_blocos.empty() ? m_uiTodas : (m_blocos.size() - 1) * kPorBloco + m_uiNoUltimo;
  }

  /// Writes all of them, GetSize in number.
  void Copia(LONG *pDestino) const {
    if (m_blocos.empty()) {
      std::iota(pDestino, pDestino + m_uiTodas, 1);
      return;
    }
    for (std::size_t i = 0; i < m_blocos.size(); ++i) {
      const std::size_t uiQtd = i + 1 < m_blocos.size() ? kPorBloco : m_uiNoUltimo;
      pDestino = std::copy_n(m_blocos[i].get(), uiQtd, pDestino);
    }
  }

private:
  static constexpr std::size_t kPorBloco = 4096;

  std::vector<std::unique_ptr<LONG[]>> m_blocos;
  std::size_t m_uiNoUltimo = 0;
  std::size_t m_uiTodas = 0;
};

#endif
