#ifndef KALVO_CORE_PLATFORM_SISTEMA_H
#define KALVO_CORE_PLATFORM_SISTEMA_H

#include <cstddef>
#include <cstdint>

#include "core/platform/Tipos.h"

namespace plataforma {

/// Version of the program file: the two double words of its version resource.
struct VersaoArquivo {
  std::uint32_t maisSignificativa = 0;
  std::uint32_t menosSignificativa = 0;
};

/// Version of the operating system; the build is 0 where the platform's version word has its top bit set.
struct VersaoSistema {
  std::uint32_t maior = 0;
  std::uint32_t menor = 0;
  std::uint32_t compilacao = 0;
};

/// Figures of the process and the machine. Nothing is cached. Queries that can fail leave their output untouched then
/// and return false. Any thread may call, several at once.
class ISistema {
public:
  virtual ~ISistema() = default;

  /// Base name of the program file, extension included, in lower case.
  virtual CString NomeProcesso() = 0;
  /// Name of the account that runs the process; empty when it cannot be had.
  virtual CString UsuarioLocal() = 0;
  virtual std::uint32_t IdThread() = 0;
  /// A fresh identifier, "{6F9619FF-8B86-D011-B42D-00C04FC964FF}"; empty when none can be had.
  virtual CString NovoGuid() = 0;

  /// Private bytes of the process.
  virtual bool MemoriaProcesso(std::uint64_t *bytes) = 0;
  /// Available and total physical memory of the machine, in bytes.
  virtual bool MemoriaMaquina(std::uint64_t *disponivel, std::uint64_t *total) = 0;
  virtual bool VersaoPrograma(VersaoArquivo *versao) = 0;
  virtual VersaoSistema VersaoSO() = 0;

  /// The platform's text for one of its error codes, in the user's language and without inserts, with the line ends
  /// that the platform gives it; empty when it has none.
  virtual CString TextoErro(std::uint32_t erro) = 0;

  /// A path as seen from the process's current directory, made absolute.
  virtual CString CaminhoAbsoluto(const CString &caminho) = 0;

  /// Value of a key in a section of an ini file, by the rules of the Windows profile functions (a leading number
  /// counts, the rest is ignored; quotes around a text are taken off; the first of several equal keys counts).
  /// `arquivo` is absolute. A missing file, section or key gives `padrao`.
  virtual std::uint32_t LeInteiroIni(const CString &arquivo, const char *secao, const char *chave,
                                     std::uint32_t padrao) = 0;
  /// The same for a text, at most `maximo` characters of it.
  virtual CString LeTextoIni(const CString &arquivo, const char *secao, const char *chave, const char *padrao,
                             std::size_t maximo) = 0;

protected:
  ISistema() = default;
  ISistema(const ISistema &) = default;
  ISistema &operator=(const ISistema &) = default;
};

}  // namespace plataforma

#endif
