#ifndef KALVO_TESTS_COM_APOIOCOM_H
#define KALVO_TESTS_COM_APOIOCOM_H

#include <windows.h>
//
#include <QZDF_Veiculos.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/apoio/PastaTemporaria.h"
#include "tests/apoio/RegistroTeste.h"

namespace apoiocom {

inline constexpr DWORD kPrazo = 60000;  ///< upper bound of every wait on another process, in milliseconds

/// A result code as its 32 bits.
inline std::uint32_t Bits(HRESULT hr) {
  return static_cast<std::uint32_t>(hr);
}

struct FechaHandle {
  void operator()(HANDLE h) const { CloseHandle(h); }
};
using Handle = std::unique_ptr<void, FechaHandle>;

struct SoltaObjeto {
  void operator()(IUnknown *p) const { p->Release(); }
};
template <class Interface>
using Ponteiro = std::unique_ptr<Interface, SoltaObjeto>;
using Veiculos = Ponteiro<IQZDF_Veiculos>;

/// The multithreaded apartment for a scope.
class Apartamento {
public:
  Apartamento() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
  ~Apartamento() { CoUninitialize(); }
  Apartamento(const Apartamento &) = delete;
  Apartamento &operator=(const Apartamento &) = delete;
};

/// An 8-bit text in a wide parameter: two zero bytes at an even offset behind it.
class Texto {
public:
  explicit Texto(std::string_view texto) : m_unidades(texto.size() / 2 + 2, L'\0') {
    texto.copy(reinterpret_cast<char *>(m_unidades.data()), texto.size());
  }
  LPWSTR Ponteiro() { return m_unidades.data(); }

private:
  std::vector<wchar_t> m_unidades;
};

/// A company of its own: data directory and registry key, both gone at the end.
class Empresa {
public:
  Empresa() : Empresa("") {}
  /// Its registered directory is this sub-directory of its own, which nobody creates.
  explicit Empresa(const CString &sSubdiretorioAusente);

  const CString &Codigo() const { return m_sCodigo; }
  CString Arquivo(const CString &sNome) const { return m_pasta / sNome; }

private:
  apoio::PastaTemporaria m_pasta;
  apoio::RegistroTeste m_registro;
  CString m_sCodigo;
};

/// The vehicle records on disk, without the header where headers are on. Nobody may have the file open.
std::string Registros(const Empresa &empresa);

/// The codes of these records, in their order; of a part of a record too.
std::vector<std::string> CodigosNoDisco(const Empresa &empresa);

/// A new service object of the registered server; null with the result code in `*phr` when that fails.
Veiculos Cria(HRESULT *phr = nullptr);

HRESULT Inicializa(IQZDF_Veiculos &veiculos, std::string_view sEmpresa);

/// A file with which one other process on this machine reaches the object (Recebe); empty when that fails.
std::string Entrega(IQZDF_Veiculos &veiculos);

/// The object behind a file of Entrega, which goes; null when that fails.
Veiculos Recebe(const std::string &sEntregue);

/// A new service object that works for a company; null when either step fails.
Veiculos Abre(std::string_view sEmpresa);

/// Copies a text into a field of a record; the rest of the field is zero.
template <std::size_t N>
void Preenche(char (&campo)[N], std::string_view texto) {
  std::string_view(texto.substr(0, N)).copy(campo, N);
}

/// A vehicle with that code and the same values in all other fields.
tagREG_VEICULOPS Veiculo(std::string_view sCodigo);

/// The code of a record as text.
std::string CodigoDe(const tagREG_VEICULOPS &veiculo);

/// Positions that pass the filter. `*phr` is the search's result; a mismatch between count and array is a failure too.
std::vector<LONG> Busca(IQZDF_Veiculos &veiculos, const tagREG_FILTRO_VEICULOSPS &filtro, HRESULT *phr);

/// Folder of the running program, ending with `\`.
std::string PastaDoPrograma();

/// Runs Kalvo.exe of this folder to its end and returns its exit code; what it says on standard error goes to
/// `*psErro`.
DWORD ExecutaKalvo(const std::string &sArgumentos, std::string *psErro = nullptr);

/// Starts Kalvo.exe of this folder by hand, without arguments; its process, null when that fails.
Handle IniciaKalvo();

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
