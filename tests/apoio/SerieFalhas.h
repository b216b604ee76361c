#ifndef KALVO_TESTS_APOIO_SERIEFALHAS_H
#define KALVO_TESTS_APOIO_SERIEFALHAS_H

#include <gtest/gtest.h>

#include <optional>
#include <utility>

#include "tests/apoio/ArquivosDecorado.h"

namespace apoio {

/// Which of the failures of a series last: that one operation, that one and all after it, or first the one and then the
/// other.
enum class Duracao { Passageira, Persistente, Ambas };

/// A call with its N-th file operation failing, for N = 1, 2, ... until there are no more operations:
///
///   for (SerieFalhas serie(falhas, plano); serie.Proxima();) {
///     (prepare)
///     const HRESULT hr = serie.Roda([&] { return (the call); });
///     (check what it left)
///   }
class SerieFalhas {
public:
  /// Of the plan everything counts but `enesima` and `bPersistente`.
  SerieFalhas(ArquivosComFalha &falhas, PlanoFalha plano, Duracao eDuracao = Duracao::Passageira)
      : m_falhas(falhas), m_plano(std::move(plano)), m_eDuracao(eDuracao) {
    m_plano.bPersistente = eDuracao == Duracao::Persistente;
    m_plano.enesima = 0;
  }

  /// False when the series is over.
  bool Proxima() {
    if (m_plano.enesima != 0 && !m_bDisparou) {
      EXPECT_GT(m_plano.enesima, 1U) << "nothing that could fail";
      if (m_eDuracao != Duracao::Ambas || m_plano.bPersistente) {
        return false;
      }
      m_plano.bPersistente = true;
      m_plano.enesima = 0;
    }
    m_bDisparou = false;
    ++m_plano.enesima;
    m_rastro.emplace(
        __FILE__, __LINE__,
        testing::Message() << "fault " << m_plano.enesima << (m_plano.bPersistente ? " and all after" : ""));
    return true;
  }

  template <class Chamada>
  auto Roda(Chamada chama) {
    m_falhas.Arma(m_plano);
    auto resultado = chama();
    m_bDisparou = m_falhas.Disparou();
    m_falhas.Desarma();
    return resultado;
  }

  bool Disparou() const { return m_bDisparou; }
  bool Persistente() const { return m_plano.bPersistente; }

private:
  ArquivosComFalha &m_falhas;
  PlanoFalha m_plano;
  Duracao m_eDuracao;
  bool m_bDisparou = false;
  std::optional<testing::ScopedTrace> m_rastro;
};

}  // namespace apoio

#endif
