#ifndef KALVO_TESTS_QZDADOS_APOIOQZDADOS_H
#define KALVO_TESTS_QZDADOS_APOIOQZDADOS_H

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "qzdados/Comandos.h"

/// What a command wrote, in Windows-1252.
class TelaLida final : public ITela {
public:
  void Escreve(std::string_view sTexto) override { m_sSaida += sTexto; }
  void SaidaEmBytes() override {}
  void EscreveErro(std::string_view sTexto) override { m_sErros += sTexto; }
  bool SaidaVisivel() const override { return false; }
  void Progresso(std::uint64_t uiFeito, std::uint64_t uiTotal) override {
    m_bChegouAoFim = uiFeito == uiTotal;
    if (m_aoLer) {
      m_aoLer();
    }
  }

  std::string m_sSaida;
  std::string m_sErros;
  bool m_bChegouAoFim = false;
  std::function<void()> m_aoLer;  ///< called while the file is held, after each reading
};

/// One run of the program.
struct Rodada {
  explicit Rodada(const std::vector<std::string> &aTextos, std::function<void()> aoLer = {}) {
    tela.m_aoLer = std::move(aoLer);
    iCodigo = ExecutaQzdados(aTextos, tela);
  }

  TelaLida tela;
  int iCodigo = -1;
  const std::string &Saida() const { return tela.m_sSaida; }
  const std::string &Erros() const { return tela.m_sErros; }
};

inline bool Contem(const std::string &sTexto, const std::string &sTrecho) {
  return sTexto.find(sTrecho) != std::string::npos;
}

#endif
