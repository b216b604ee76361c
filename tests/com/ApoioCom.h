#ifndef KALVO_TESTS_COM_APOIOCOM_H
#define KALVO_TESTS_COM_APOIOCOM_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "client/QZVeiculosCliente.h"
#include "core/platform/win32/Posses.h"
#include "tests/apoio/EmpresaTeste.h"

namespace apoiocom {

inline constexpr DWORD kPrazo = 60000;  ///< upper bound of every wait on another process, in milliseconds

/// A result code as its 32 bits.
inline std::uint32_t Bits(HRESULT hr) {
  return static_cast<std::uint32_t>(hr);
}

using Handle = plataforma::PosseHandle;

struct SoltaObjeto {
  void operator()(IUnknown *p) const { p->Release(); }
};
template <class Interface>
using Ponteiro = std::unique_ptr<Interface, SoltaObjeto>;
using Veiculos = Ponteiro<IQZDF_Veiculos>;

using Apartamento = CQZApartamento;
using Empresa = apoio::EmpresaTeste;
using Texto = CQZTextoParametro;

/// The vehicle records on disk, without the header where headers are on. Nobody may have the file open.
std::string Registros(const Empresa &empresa);

/// The codes of these records, in their order; of a part of a record too.
std::vector<std::string> CodigosNoDisco(const Empresa &empresa);

/// A new service object of the registered server; null with the result code in `*phr` when that fails.
Veiculos Cria(HRESULT *phr = nullptr);

HRESULT Inicializa(IQZDF_Veiculos &veiculos, std::string_view sEmpresa);

/// A new service object that works for a company; null when either step fails.
Veiculos Abre(std::string_view sEmpresa);

/// Copies as much of a text as a field of a record takes; the rest of the field is zero.
template <std::size_t N>
void Preenche(char (&campo)[N], std::string_view texto) {
  std::string_view(texto.substr(0, N)).copy(campo, N);
}

/// A vehicle with that code and the same values in all other fields.
tagREG_VEICULOPS Veiculo(std::string_view sCodigo);

inline std::string CodigoDe(const tagREG_VEICULOPS &veiculo) {
  return LeCampo(veiculo.szCodigo);
}

/// Folder of the running program, ending with `\`.
std::string PastaDoPrograma();

/// Runs Kalvo.exe of this folder to its end and returns its exit code; what it says on standard error goes to
/// `*psErro`.
DWORD ExecutaKalvo(const std::string &sArgumentos, std::string *psErro = nullptr);

/// Starts Kalvo.exe of this folder; its process, null when that fails.
Handle IniciaKalvo(const std::string &sArgumentos);

/// Runs any program, given by its full path, to its end and returns its exit code; what it writes to standard output
/// and standard error goes to `*psSaida`.
DWORD Executa(const std::string &sPrograma, const std::string &sArgumentos, std::string *psSaida);

/// Handles of the running Kalvo.exe processes, with which they can be examined and ended.
std::vector<Handle> Servidores();

/// Lets the component platform forget servers that were ended by force: under Wine, where it keeps an entry of them,
/// every activation fails until the service that does so has been restarted. On Windows there is no such entry, and the
/// service refuses to stop. Objects that clients have stay, but no activation finds their servers any more.
void EsqueceServidores();

/// Waits until no server runs; the milliseconds that took, or -1 past the time limit.
long EsperaServidorTerminar();

}  // namespace apoiocom

#endif
