#ifndef KALVO_TESTS_APOIO_COLETORRASTRO_H
#define KALVO_TESTS_APOIO_COLETORRASTRO_H

#include <mutex>
#include <string>
#include <vector>

#include "core/log/Rastro.h"

namespace apoio {

/// Collects what the error-check trace reports while it lives. One at a time.
class ColetorRastro {
public:
  ColetorRastro() : m_anterior(DefineSumidouroRastro(&Recebe)) { s_linhas.clear(); }
  ~ColetorRastro() { DefineSumidouroRastro(m_anterior); }
  ColetorRastro(const ColetorRastro &) = delete;
  ColetorRastro &operator=(const ColetorRastro &) = delete;

  /// "function|file|expression" of each failure, oldest first; taking them empties the list.
  std::vector<std::string> Toma() {
    const std::lock_guard<std::mutex> guarda(s_mutex);
    return std::exchange(s_linhas, {});
  }

private:
  static void Recebe(const FalhaRastreada &falha) {
    const std::lock_guard<std::mutex> guarda(s_mutex);
    s_linhas.push_back(falha.funcao.Texto() + "|" + falha.lpArquivo + "|" + falha.lpExpressao);
  }

  inline static std::mutex s_mutex;
  inline static std::vector<std::string> s_linhas;
  SumidouroRastro m_anterior;
};

}  // namespace apoio

#endif
