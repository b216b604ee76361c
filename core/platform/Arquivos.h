#ifndef KALVO_CORE_PLATFORM_ARQUIVOS_H
#define KALVO_CORE_PLATFORM_ARQUIVOS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "core/platform/FalhaArquivo.h"
#include "core/platform/Tipos.h"

namespace plataforma {

enum class Acesso { Leitura, Escrita, LeituraEscrita };

/// What other handles on the same file are still allowed, in this and every other process, as long as this one is open.
enum class Compartilhamento {
  Exclusivo,    ///< nothing
  NegaEscrita,  ///< reading only
  NegaNada,     ///< reading and writing
};

enum class Criacao {
  SoExistente,  ///< a missing file is NaoEncontrado
  CriaNovo,     ///< a missing file is created empty, an existing one is a failure with erroSO 80
  AbreOuCria,   ///< a missing file is created empty, an existing one keeps its content
  CriaVazio,    ///< a missing file is created, an existing one loses its content
};

struct ModoAbertura {
  Acesso acesso = Acesso::Leitura;
  Compartilhamento compartilhamento = Compartilhamento::Exclusivo;
  Criacao criacao = Criacao::SoExistente;
};

/// One open file. Owns the system handle, which is never inheritable; destruction closes it.
///
/// Positions and lengths are bytes from the start of the file; no operation depends on a current position, so none
/// disturbs another. An object may be used from any thread, by one thread at a time.
class IArquivoAberto {
public:
  virtual ~IArquivoAberto() = default;

  /// Reads exactly `qtd` bytes. A file that ends earlier is FimDeArquivo (erroSO 38); the buffer's content is then
  /// undefined.
  virtual FalhaArquivo Le(std::uint64_t posicao, void *pDestino, std::size_t qtd) = 0;

  /// Writes exactly `qtd` bytes, extending the file when needed (a gap before `posicao` reads as zeros). On failure
  /// any part of the range may have been written.
  virtual FalhaArquivo Grava(std::uint64_t posicao, const void *pOrigem, std::size_t qtd) = 0;

  /// Present length. `*puiTamanho` is untouched on failure.
  virtual FalhaArquivo Tamanho(std::uint64_t *puiTamanho) = 0;

  /// Cuts the file, or extends it with zeros.
  virtual FalhaArquivo AjustaTamanho(std::uint64_t tamanho) = 0;

  /// Time of the last write in 100-nanosecond ticks; only good for telling whether it changed.
  virtual FalhaArquivo UltimaEscrita(std::uint64_t *puiTicks) = 0;

  /// Blocks until all that was written is on the storage device.
  virtual FalhaArquivo Descarrega() = 0;

  /// Makes the first `qtd` bytes of a file that is open for reading and writing, and has as many, memory of this
  /// process until the object is destroyed. What is stored there is in the file at once, for this process and when it
  /// is gone, without any further call. Touching that memory raises a machine fault when the device fails.
  virtual FalhaArquivo Mapeia(std::size_t qtd, std::byte **ppBytes) = 0;

protected:
  IArquivoAberto() = default;
  IArquivoAberto(const IArquivoAberto &) = default;
  IArquivoAberto &operator=(const IArquivoAberto &) = default;
};

/// The file system. Paths are 8-bit texts with `\` as separator; a path without directory resolves against the
/// process's current directory. No operation retries; all may block for the time of the system call. Any thread may
/// call, several at once.
class IArquivos {
public:
  virtual ~IArquivos() = default;

  /// Opens a file. On success the new object is handed over in `*pArquivo`; on failure `*pArquivo` is null. A handle
  /// that another open one excludes is ViolacaoCompartilhamento (erroSO 32); a missing directory is CaminhoInvalido.
  virtual FalhaArquivo Abre(const CString &sCaminho, const ModoAbertura &modo,
                            std::unique_ptr<IArquivoAberto> *pArquivo) = 0;

  /// Whether a file is at the path. The question has three answers: there, not there (`*pbExiste` is false and nothing
  /// failed), and could not be found out, which is a failure and leaves `*pbExiste` false. A directory is AcessoNegado.
  /// Works on files that others hold exclusively.
  virtual FalhaArquivo Existe(const CString &sCaminho, bool *pbExiste) = 0;

  /// True when the file exists and carries the read-only attribute.
  virtual bool SomenteLeitura(const CString &sCaminho) = 0;

  /// Length of a file without opening it for reading, so that it works on files held by others. `*puiTamanho` is
  /// untouched on failure.
  virtual FalhaArquivo TamanhoDe(const CString &sCaminho, std::uint64_t *puiTamanho) = 0;

  /// Deletes a file. An open one fails with ViolacaoCompartilhamento, a read-only one with AcessoNegado.
  virtual FalhaArquivo Apaga(const CString &sCaminho) = 0;

  /// Moves `sOrigem` onto `sDestino` in one step, replacing it, and returns when the move is on the storage device.
  /// Fails with AcessoNegado while `sDestino` is open and with ViolacaoCompartilhamento while `sOrigem` is.
  virtual FalhaArquivo MoveSubstituindo(const CString &sOrigem, const CString &sDestino) = 0;

  /// Names (without directory, in ascending order of their bytes) of the files in `sDiretorio` (empty, or ending in
  /// `\`). Short alias names take no part. A missing directory gives an empty list and CaminhoInvalido.
  virtual FalhaArquivo Lista(const CString &sDiretorio, std::vector<CString> *pNomes) = 0;

protected:
  IArquivos() = default;
  IArquivos(const IArquivos &) = default;
  IArquivos &operator=(const IArquivos &) = default;
};

}  // namespace plataforma

#endif
