#ifndef KALVO_TESTS_CAMPANHA_ESCRITORES_H
#define KALVO_TESTS_CAMPANHA_ESCRITORES_H

#include <windows.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/campanha/Livro.h"
#include "tests/com/Cliente.h"

namespace campanha {

/// Clients that write to one company at once, appending and writing over, each in positions of its own, until the
/// server is gone or their time is over. What they are told goes into the company's book.
class CEscritores {
public:
  /// How they work.
  struct Modo {
    unsigned uiQtd = 1;
    unsigned uiGravacoesPorObjeto = 0;  ///< after about so many a client goes to a new object; 0: it keeps the first
    unsigned uiSegundos = 3600;
  };

  /// Starts them; each has an object on return, which works for no company yet.
  CEscritores(const std::string &sEmpresa, const Modo &modo, CLivro &livro, std::mt19937 &gerador);

  /// Lets them open the company and write.
  void Comeca();
  /// Waits until so many writes have come to an end. Earlier when a client has ended.
  void EsperaGravacoes(unsigned uiQtd);
  /// Waits until they have ended.
  void Termina();

private:
  struct Escritor {
    apoiocom::CCliente cliente;
    std::mt19937 gerador;
    std::vector<LONG> posicoes;  ///< its own
    std::jthread trabalho;
  };

  void Trabalha(Escritor &escritor);
  HRESULT Grava(Escritor &escritor);
  void Anota(const Gravacao &gravacao);

  const std::string m_sEmpresa;
  const Modo m_modo;
  CLivro &m_livro;
  std::mutex m_mutex;  ///< of the book and of what follows
  std::condition_variable m_mudou;
  unsigned m_uiGravacoes = 0;
  bool m_bTerminou = false;  ///< one of them
  std::deque<Escritor> m_escritores;
};

}  // namespace campanha

#endif
