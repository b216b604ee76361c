#ifndef KALVO_TESTS_CAMPANHA_CLIENTES_H
#define KALVO_TESTS_CAMPANHA_CLIENTES_H

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/apoio/ProcessoFilho.h"
#include "tests/campanha/Livro.h"

namespace campanha {

/// Client programs, each a process with an object of its own. What they are told is kept as they are told it.

/// A client that has an object, and does nothing with it, for as long as it lives: its server does not end by itself.
class CSeguraServidor {
public:
  CSeguraServidor();

private:
  apoio::ProcessoFilho m_cliente{"campanha-segura"};
};

/// The vehicles of a company as a new client reads them.
struct Leitura {
  HRESULT hr = E_FAIL;                 ///< first result that is no success
  std::vector<std::uint32_t> numeros;  ///< of its vehicles; 0: one that is not whole
};
Leitura LeEmpresa(const std::string &sEmpresa);

/// Processes that write to one company at once, appending and writing over, each in positions of its own.
class CEscritores {
public:
  /// How they work.
  struct Modo {
    unsigned uiQtd = 1;
    unsigned uiGravacoesPorObjeto = 0;  ///< after about so many a client goes to a new object; 0: it keeps the first
    unsigned uiMaiorPosicao = 1000;     ///< a client that has got this position appends no more
  };

  /// Starts them; each has an object on return, which works for no company yet. The book is the company's.
  CEscritores(const std::string &sEmpresa, const Modo &modo, const CLivro &livro, std::mt19937 &gerador);
  ~CEscritores();
  CEscritores(const CEscritores &) = delete;
  CEscritores &operator=(const CEscritores &) = delete;

  /// Lets them open the company and write.
  void Comeca();
  /// Waits until they have told so much, together: two lines for each write. Earlier when all have ended.
  void EsperaLinhas(unsigned uiLinhas);
  /// Asks them to stop.
  void Para();
  /// Waits until they have stopped or the server is gone, and enters what they did.
  void Termina(CLivro *pLivro);

  /// Result codes other than success that they were given, and how often; those that a server that is gone gives are
  /// none. Once they have ended.
  const std::map<HRESULT, unsigned> &Recusas() const { return m_recusas; }

private:
  struct Cliente {
    Cliente(const std::vector<std::string> &argumentos) : processo("campanha-grava", argumentos) {}

    apoio::ProcessoFilho processo;
    std::thread leitor;
    std::vector<std::string> linhas;
  };

  void Escuta(Cliente &cliente);

  std::deque<Cliente> m_clientes;
  std::mutex m_trava;
  std::condition_variable m_linhaNova;
  unsigned m_uiLinhas = 0;
  unsigned m_uiEscutados = 0;  ///< clients that may still tell something
  std::map<HRESULT, unsigned> m_recusas;
};

}  // namespace campanha

#endif
