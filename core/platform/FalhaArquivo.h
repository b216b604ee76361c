#ifndef KALVO_CORE_PLATFORM_FALHAARQUIVO_H
#define KALVO_CORE_PLATFORM_FALHAARQUIVO_H

#include <cstdint>

namespace plataforma {

/// Why a file operation failed: the causes of the classic file exceptions.
enum class CausaArquivo {
  Nenhuma,  ///< no failure
  Generica,
  NaoEncontrado,
  CaminhoInvalido,
  MuitosAbertos,
  AcessoNegado,
  ArquivoInvalido,
  RemoveDiretorioAtual,
  DiretorioCheio,
  PosicaoInvalida,
  ErroFisico,
  ViolacaoCompartilhamento,
  ViolacaoBloqueio,
  DiscoCheio,
  FimDeArquivo,
};

/// Outcome of a file operation: the cause and the operating system's own error number (a Win32 code on every
/// platform; 0 when the failure did not come from a system call).
struct [[nodiscard]] FalhaArquivo {
  CausaArquivo causa = CausaArquivo::Nenhuma;
  std::uint32_t erroSO = 0;

  /// True when the operation failed.
  explicit operator bool() const { return causa != CausaArquivo::Nenhuma; }

  /// True for the two errors that say that nothing is at the path: file not found (2) and path not found (3). Any other
  /// failure leaves open whether something is there.
  bool NaoEsta() const { return erroSO == 2 || erroSO == 3; }
};

/// Success, for the end of an operation.
inline constexpr FalhaArquivo kSemFalha{};

/// The cause that a Win32 error number stands for; unknown numbers are Generica, 0 is Nenhuma.
CausaArquivo CausaDoErroWin32(std::uint32_t erro);

/// A failure from a Win32 error number.
inline FalhaArquivo FalhaWin32(std::uint32_t erro) {
  return {CausaDoErroWin32(erro), erro};
}

}  // namespace plataforma

#endif
