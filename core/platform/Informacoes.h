#ifndef KALVO_CORE_PLATFORM_INFORMACOES_H
#define KALVO_CORE_PLATFORM_INFORMACOES_H

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
class IInformacoes {
public:
  virtual ~IInformacoes() = default;

  /// Base name of the program file, extension included, in lower case.
  virtual CString NomeProcesso() = 0;
  /// Name of the account that runs the process; empty when it cannot be had.
  virtual CString UsuarioLocal() = 0;
  virtual std::uint32_t IdThread() = 0;
  /// A fresh identifier, "{6F9619FF-8B86-D011-B42D-00C04FC964FF}"; empty when none can be had.
  virtual CString NovoGuid() = 0;

  /// Private bytes of the process.
  virtual bool MemoriaProcesso(std::uint64_t *puiBytes) = 0;
  /// Available and total physical memory of the machine, in bytes.
  virtual bool MemoriaMaquina(std::uint64_t *puiDisponivel, std::uint64_t *puiTotal) = 0;
  virtual bool VersaoPrograma(VersaoArquivo *pVersao) = 0;
  virtual VersaoSistema VersaoSO() = 0;

  /// The platform's text for one of its error codes, in the user's language and without inserts, with the line ends
  /// that the platform gives it; empty when it has none.
  virtual CString TextoErro(std::uint32_t erro) = 0;

  /// A path as seen from the process's current directory, made absolute.
  virtual CString CaminhoAbsoluto(const CString &sCaminho) = 0;

protected:
  IInformacoes() = default;
  IInformacoes(const IInformacoes &) = default;
  IInformacoes &operator=(const IInformacoes &) = default;
};

}  // namespace plataforma

#endif
