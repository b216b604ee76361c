#ifndef KALVO_TESTS_APOIO_SERIEFALHAS_H
#define KALVO_TESTS_APOIO_SERIEFALHAS_H

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

#include "tests/apoio/ArquivosDecorado.h"

namespace apoio {

/// From one point of a series to the next. The host build tries every one; where a run takes fifty times as long, a
/// sample of them shows that the system's own file layer makes no difference.
#ifdef _WIN32
inline constexpr std::size_t kPasso = 5;
#else
inline constexpr std::size_t kPasso = 1;
#endif

/// Which of the failures of a series last: that one operation, or that one and all after it; Ambas is first the one and
/// then the other, Todas after these two operations soon after each other, such as a write and its undoing.
enum class Duracao { Passageira, Persistente, Ambas, Todas };

/// A call with its N-th file operation failing, for N = 1, 2, ... until there are no more operations:
///
///   for (SerieFalhas serie(falhas, plano); serie.Proxima();) {
///     (prepare)
///     const HRESULT hr = serie.Roda([&] { return (the call); });
///     (check what it left)
///   }
class SerieFalhas {
public:
  /// Of the plan everything counts but `enesima`, `outra` and `bPersistente`.
  SerieFalhas(ArquivosComFalha &falhas, PlanoFalha plano, Duracao eDuracao = Duracao::Passageira)
      : m_falhas(falhas), m_plano(std::move(plano)), m_eDuracao(eDuracao) {
    m_plano.bPersistente = eDuracao == Duracao::Persistente;
    m_plano.enesima = 0;
  }

  /// False when the series is over.
  bool Proxima() {
    if (m_plano.enesima != 0 && m_disparos == 0) {
      EXPECT_GT(m_plano.enesima, 1U) << "nothing that could fail";
      const bool bFaltaPersistente = m_eDuracao >= Duracao::Ambas && !m_plano.bPersistente && !m_bDuas;
      const bool bFaltaDuas = m_eDuracao == Duracao::Todas && !m_bDuas;
      if (!bFaltaPersistente && !bFaltaDuas) {
        return false;
      }
      m_plano.bPersistente = bFaltaPersistente;
      m_bDuas = !bFaltaPersistente;
      m_plano.enesima = 0;
    }
    if (m_bDuas && m_plano.enesima != 0 && m_disparos == 2 && m_plano.outra < m_plano.enesima + kAlcance) {
      ++m_plano.outra;
    } else {
      m_plano.enesima += m_plano.enesima == 0 ? 1 : kPasso;
      m_plano.outra = m_bDuas ? m_plano.enesima + 1 : 0;
    }
    m_disparos = 0;
    m_rastro.emplace(__FILE__, __LINE__,
                     testing::Message() << "fault " << m_plano.enesima << (m_plano.bPersistente ? " and all after" : "")
                                        << (m_bDuas ? " and " + std::to_string(m_plano.outra) : ""));
    return true;
  }

  template <class Chamada>
  auto Roda(Chamada chama) {
    m_falhas.Arma(m_plano);
    auto resultado = chama();
    m_disparos = m_falhas.Disparos();
    m_falhas.Desarma();
    return resultado;
  }

  bool Disparou() const { return m_disparos != 0; }
  bool Persistente() const { return m_plano.bPersistente; }
  /// One failure and no more.
  bool Passageira() const { return !m_plano.bPersistente && !m_bDuas; }

private:
  /// How far apart two failures are: a write, its undoing, and a look whether the file's handle has died.
  static constexpr std::size_t kAlcance = 7;

  ArquivosComFalha &m_falhas;
  PlanoFalha m_plano;
  Duracao m_eDuracao;
  bool m_bDuas = false;
  std::size_t m_disparos = 0;
  std::optional<testing::ScopedTrace> m_rastro;
};

}  // namespace apoio

#endif
