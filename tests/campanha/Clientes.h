#ifndef KALVO_TESTS_CAMPANHA_CLIENTES_H
#define KALVO_TESTS_CAMPANHA_CLIENTES_H

#include <windows.h>

#include <atomic>
#include <deque>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/apoio/ProcessoFilho.h"
#include "tests/campanha/Livro.h"
#include "tests/com/ApoioCom.h"

namespace campanha {

/// The vehicle of a number from 1 on. It fills every byte of the record that is stored, and its code is the number, so
/// that a vehicle that was read tells which write it must equal.
tagREG_VEICULOPS VeiculoNumerado(std::uint32_t uiNumero);

/// What a client was told.
struct Resposta {
  static constexpr HRESULT kCalado = E_PENDING;

  HRESULT hr = kCalado;                ///< kCalado: the client has ended
  std::vector<std::uint32_t> numeros;  ///< the position written to; of the vehicles read, 0 for one that is not whole
};

/// A client program: a process that gets an object, says so, and does what it is asked to, in lines:
///
///   abre <company>             opens a company
///   grava <position> <number>  writes the vehicle of that number
///   le                         reads all vehicles
///
/// It ends when its input does, or after a time.
class CCliente : public apoio::ProcessoFilho {
public:
  static constexpr int kNaoVoltou = 3;  ///< exit code of a client that was at it for too long

  explicit CCliente(DWORD dwPrazoMs = INFINITE) : ProcessoFilho("campanha-cliente", {std::to_string(dwPrazoMs)}) {}

  /// The next answer, the first of which is that to its asking for an object.
  Resposta Ouve();
  Resposta Pede(const std::string &sPedido);
};

/// Clients that write to one company at once, appending and writing over, each in positions of its own, until the
/// server is gone or their time is over.
class CEscritores {
public:
  /// How they work.
  struct Modo {
    unsigned uiQtd = 1;
    unsigned uiGravacoesPorObjeto = 0;  ///< after about so many a client goes to a new object; 0: it keeps the first
    unsigned uiSegundos = 3600;
  };

  /// Starts them; each has an object on return, which works for no company yet.
  CEscritores(const std::string &sEmpresa, const Modo &modo, const CLivro &livro, std::mt19937 &gerador);

  /// Lets them open the company and write.
  void Comeca();
  /// Waits until so many writes have come to an end. Earlier when a client has ended.
  void EsperaGravacoes(unsigned uiQtd);
  /// Waits until they have ended, and enters what they were told.
  void Termina(CLivro *pLivro);

private:
  struct Escritor {
    explicit Escritor(const std::vector<std::string> &argumentos) : processo("campanha-escritor", argumentos) {}

    apoio::ProcessoFilho processo;
    std::vector<Gravacao> gravacoes;
    std::jthread ouvinte;
  };

  std::atomic<unsigned> m_uiGravacoes = 0;
  std::deque<Escritor> m_escritores;
};

}  // namespace campanha

#endif
