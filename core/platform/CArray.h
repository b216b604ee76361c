#ifndef KALVO_CORE_PLATFORM_CARRAY_H
#define KALVO_CORE_PLATFORM_CARRAY_H

#include <algorithm>
#include <cstddef>
#include <vector>

#include "core/platform/CException.h"
#include "core/platform/Tipos.h"

/// Growable array with a checked index. Element type: default-constructible and copyable; new elements are zero.
///
/// Capacity grows by the growth step or by half, whichever is more, so that appending one by one stays linear.
template <typename T>
class CArray {
public:
  std::size_t GetSize() const { return m_itens.size(); }
  bool IsEmpty() const { return m_itens.empty(); }

  /// Sets the number of elements; a `tamanhoCrescimento` above 0 becomes the growth step.
  void SetSize(std::size_t tamanho, std::size_t tamanhoCrescimento = 0) {
    if (tamanhoCrescimento > 0) {
      m_crescimento = tamanhoCrescimento;
    }
    m_itens.resize(tamanho);
  }

  /// Makes room for `tamanho` elements without changing their number, so that growing up to it cannot fail. Throws
  /// std::bad_alloc with everything as before.
  void Reserva(std::size_t tamanho) {
    if (tamanho > m_itens.capacity()) {
      m_itens.reserve(std::max(tamanho, m_itens.size() + std::max(m_crescimento, m_itens.size() / 2)));
    }
  }

  /// Appends an element and returns its index.
  std::size_t Add(const T &item) {
    Reserva(m_itens.size() + 1);
    m_itens.push_back(item);
    return m_itens.size() - 1;
  }

  /// Removes one element; an index past the end raises CInvalidArgException.
  void RemoveAt(std::size_t indice) {
    Verifica(indice);
    m_itens.erase(m_itens.begin() + static_cast<std::ptrdiff_t>(indice));
  }

  /// An index past the end raises CInvalidArgException.
  T &operator[](std::size_t indice) {
    Verifica(indice);
    return m_itens[indice];
  }
  const T &operator[](std::size_t indice) const {
    Verifica(indice);
    return m_itens[indice];
  }

  /// The elements, contiguous; null or not, when there are none.
  T *GetData() { return m_itens.data(); }
  const T *GetData() const { return m_itens.data(); }

private:
  void Verifica(std::size_t indice) const {
    if (indice >= m_itens.size()) {
      LancaArgumentoInvalido();
    }
  }

  std::vector<T> m_itens;
  std::size_t m_crescimento = 1;
};

using CStringArray = CArray<CString>;

#endif
