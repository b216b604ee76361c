#ifndef KALVO_TESTS_APOIO_CAIXAFALSA_H
#define KALVO_TESTS_APOIO_CAIXAFALSA_H

#include <utility>
#include <vector>

#include "core/platform/CaixaMensagem.h"

namespace apoio {

/// Notes the boxes instead of showing them; each is answered with 7.
class CaixaFalsa final : public plataforma::ICaixaMensagem {
public:
  static constexpr int kResposta = 7;

  struct Caixa {
    CString texto;
    CString titulo;
    std::uint32_t tipo;
    plataforma::DonoCaixa dono;

    bool operator==(const Caixa &) const = default;
  };

  int Mostra(const CString &texto, const CString &titulo, std::uint32_t tipo, plataforma::DonoCaixa dono) override {
    m_caixas.push_back({texto, titulo, tipo, dono});
    return kResposta;
  }

  /// The boxes so far, oldest first; taking them empties the list.
  std::vector<Caixa> Toma() { return std::exchange(m_caixas, {}); }

private:
  std::vector<Caixa> m_caixas;
};

}  // namespace apoio

#endif
