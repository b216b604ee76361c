#ifndef KALVO_TESTS_COM_CLIENTE_H
#define KALVO_TESTS_COM_CLIENTE_H

#include <cstdint>
#include <string>
#include <vector>

#include "tests/apoio/ProcessoFilho.h"
#include "tests/com/ApoioCom.h"

namespace apoiocom {

/// The vehicle of a number from 1 on. It fills every byte of the record that is stored, and its code is the number, so
/// that a vehicle that was read tells which write it must equal.
tagREG_VEICULOPS VeiculoNumerado(std::uint32_t uiNumero);

/// What a client was told.
struct Resposta {
  static constexpr HRESULT kCalado = E_PENDING;

  HRESULT hr = kCalado;                ///< kCalado: the client has ended
  std::vector<std::uint32_t> numeros;  ///< the position written to; of the vehicles read, 0 for one that is not whole
};

/// A client program: a process that does what it is asked to, in lines, with one object at a time:
///
///   cria                       gets an object
///   solta                      lets its object go
///   entrega <file>             writes a file with which one other process reaches the object, which
///   recebe <file>              takes it over
///   abre <company>             opens a company
///   grava <position> <number>  writes the vehicle of that number
///   acrescenta                 appends the vehicles 1, 2, 3... for ever, with an answer for each
///   le                         reads all vehicles
///
/// It ends when its input does, or after a time.
class CCliente : public apoio::ProcessoFilho {
public:
  static constexpr int kNaoVoltou = 3;  ///< exit code of a client that was at it for too long

  explicit CCliente(DWORD dwPrazoMs = INFINITE);

  /// The next answer.
  Resposta Ouve();
  Resposta Pede(const std::string &sPedido);
};

}  // namespace apoiocom

#endif
