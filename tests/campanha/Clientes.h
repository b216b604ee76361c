#ifndef KALVO_TESTS_CAMPANHA_CLIENTES_H
#define KALVO_TESTS_CAMPANHA_CLIENTES_H

#include <windows.h>

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

/// What a client was told.
struct Resposta {
  static constexpr HRESULT kCalado = E_PENDING;

  HRESULT hr = kCalado;                ///< kCalado: the client has ended
  std::vector<std::uint32_t> numeros;  ///< the position written to; of the vehicles read, 0 for one that is not whole

  LONG Posicao() const { return static_cast<LONG>(numeros.at(0)); }
};

/// A client program: a process that has one object at most and does what it is asked to:
///
///   cria                       gets an object
///   solta                      gives it back
///   abre <company>             opens a company
///   grava <position> <number>  writes the vehicle of that number
///   le                         reads all vehicles
///
/// It ends when this does, or after a time.
class CCliente {
public:
  static constexpr int kNaoVoltou = 3;  ///< exit code of a client that was at it for too long

  explicit CCliente(DWORD dwPrazoMs = INFINITE) : m_processo("campanha-cliente", {std::to_string(dwPrazoMs)}) {}

  /// Asks without waiting, and waits for the answer.
  void Manda(const std::string &sPedido) { m_processo.EnviaLinha(sPedido); }
  void MandaGravar(LONG lPos, std::uint32_t uiNumero) {
    Manda("grava " + std::to_string(lPos) + " " + std::to_string(uiNumero));
  }
  Resposta Ouve();
  Resposta Pede(const std::string &sPedido);
  HRESULT Grava(LONG *plPos, std::uint32_t uiNumero);

  /// Waits for its end; its exit code.
  int Termina() { return m_processo.Espera(); }

private:
  apoio::ProcessoFilho m_processo;
};

/// The vehicles of a company as a new client reads them.
Resposta LeEmpresa(const std::string &sEmpresa);

/// Clients that write to one company at once, appending and writing over, each in positions of its own.
class CEscritores {
public:
  /// How they work.
  struct Modo {
    unsigned uiQtd = 1;
    unsigned uiGravacoesPorObjeto = 0;  ///< after about so many a client goes to a new object; 0: it keeps the first
    LONG lMaiorPosicao = 1000;          ///< a client that has this position appends no more
  };

  /// Starts them; each has an object on return, which works for no company yet. The book is the company's.
  CEscritores(const std::string &sEmpresa, const Modo &modo, const CLivro &livro, std::mt19937 &gerador);

  /// Lets them open the company and write.
  void Comeca();
  /// Waits until so many writes have come to an end. Earlier when all clients have ended.
  void EsperaGravacoes(unsigned uiQtd);
  /// Asks them to stop.
  void Para();
  /// Waits until they have stopped or the server is gone, and enters what they did.
  void Termina(CLivro *pLivro);

  /// Result codes other than success that they were given, and how often; those that a server that is gone gives are
  /// none. Once they have ended.
  const std::map<HRESULT, unsigned> &Recusas() const { return m_recusas; }

private:
  struct Escritor {
    CCliente cliente;
    std::mt19937 gerador;
    std::uint32_t uiNumero = 0;
    std::vector<LONG> minhas;  ///< positions
    std::vector<Gravacao> gravacoes;
    std::jthread thread;
  };

  void Trabalha(Escritor &escritor, const std::stop_token &para);
  HRESULT Abre(CCliente &cliente);
  /// So many writes; the first result that is no success.
  HRESULT Grava(Escritor &escritor, unsigned uiQtd);
  void AnotaRecusa(HRESULT hr);

  std::string m_sEmpresa;
  Modo m_modo;
  std::mutex m_trava;
  std::condition_variable m_novidade;
  unsigned m_uiGravacoes = 0;
  unsigned m_uiAtivos = 0;
  std::map<HRESULT, unsigned> m_recusas;
  std::deque<Escritor> m_escritores;
};

}  // namespace campanha

#endif
