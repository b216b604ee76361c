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
  ColetorRastro() : m_anterior(DefineSumidouroRastro(&Recebe)) { Linhas().clear(); }
  ~ColetorRastro() { DefineSumidouroRastro(m_anterior); }
  ColetorRastro(const ColetorRastro &) = delete;
  ColetorRastro &operator=(const ColetorRastro &) = delete;

  /// "function|file|expression" of each failure, oldest first; taking them empties the list.
  std::vector<std::string> Toma() {
    const std::lock_guard<std::mutex> guarda(Mutex());
    return std::exchange(Linhas(), {});
  }

private:
  static std::mutex &Mutex() {
    static std::mutex mutex;
    return mutex;
  }
  static std::vector<std::string> &Linhas() {
    static std::vector<std::string> linhas;
    return linhas;
  }
  static void Recebe(const FalhaRastreada &falha) {
    const std::lock_guard<std::mutex> guarda(Mutex());
    Linhas().push_back(falha.funcao.Texto() + "|" + falha.lpArquivo + "|" + falha.lpExpressao);
  }

  SumidouroRastro m_anterior;
};

}  // namespace apoio

#endif
