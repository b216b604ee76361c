#ifndef KALVO_CORE_QZDATABASE_DISCO_ABERTURAARQUIVO_H
#define KALVO_CORE_QZDATABASE_DISCO_ABERTURAARQUIVO_H

#include <memory>
#include <optional>

#include "core/platform/Arquivos.h"
#include "core/qzdatabase/disco/Insistencia.h"
#include "core/qzdatabase/disco/IntencaoGravacao.h"

/// Open modes: sums of the flags read-write 0x0002, share-exclusive 0x0010, share-deny-none 0x0040, create 0x1000 and
/// no-truncate 0x2000.
enum EModoAbertura : std::uint32_t {
  eModoFechado = 0,
  eModoLeitura = 0x2010,               ///< read, exclusive; a missing file stays missing and closed
  eModoLeituraGravacao = 0x2012,       ///< read and write, exclusive; a missing file is created
  eModoCriacao = 0x1010,               ///< creates or empties, exclusive
  eModoLeituraCompartilhada = 0x2040,  ///< read, others may read and write
};

/// The handle of one file: which mode it is open in, opening with retries, and whether others have written to the file
/// while it was closed for a moment.
///
/// Invariant: MesmoArquivo holds only for a file that is open and that, when it was opened, had the length and the time
/// of the last write which it had when this object last let go of it with FechaParaReabrir.
class CQZAberturaArquivo {
public:
  bool Aberto() const { return m_arquivo != nullptr; }
  /// The mode in force; eModoFechado when closed.
  EModoAbertura Modo() const { return m_eModo; }
  /// Only while open.
  plataforma::IArquivoAberto &Arquivo() const { return *m_arquivo; }
  bool MesmoArquivo() const { return m_bMesmo; }
  /// Notes of the writes to the file, as long as it is open for writing.
  CQZIntencaoGravacao &Intencao() { return m_intencao; }

  /// Opens an existing file (eModoCriacao: creates or empties it), which must be closed. Answers a file code when it
  /// gives up. Sharing conflicts and their like are tried again.
  [[nodiscard]] HRESULT Abre(const CString &sCaminho, EModoAbertura eModo, int iTentativas = kTentativasAbertura);

  /// Creates a missing file and leaves it open for reading and writing, so that nobody meets it between its creation
  /// and its first content. One that exists is success as well, and stays closed and as it is.
  [[nodiscard]] HRESULT Cria(const CString &sCaminho);

  void Fecha();

  /// Closes a file that is to be opened again, noting what it looks like.
  void FechaParaReabrir();

  /// Puts a new handle in the place of one that died, as handles into a network share do when the share goes and comes
  /// back: a dead handle excludes nobody, so the file can be opened beside it. False, with everything as it was, when
  /// that fails, for instance because the old handle is alive, and for a file that is not open for writing.
  bool TrocaSeMorto(const CString &sCaminho);

private:
  /// What the file looked like; nothing where that could not be had.
  struct Aparencia {
    std::uint64_t uiTamanho;
    std::uint64_t uiUltimaEscrita;
    bool operator==(const Aparencia &) const = default;
  };

  [[nodiscard]] HRESULT TentaAbrir(const CString &sCaminho, const plataforma::ModoAbertura &modo, int iTentativas);
  void Assume(EModoAbertura eModo);
  std::optional<Aparencia> Olha() const;

  std::unique_ptr<plataforma::IArquivoAberto> m_arquivo;
  CQZIntencaoGravacao m_intencao;  ///< behind the handle, so that it goes before it
  EModoAbertura m_eModo = eModoFechado;
  std::optional<Aparencia> m_aparencia;
  bool m_bMesmo = false;
};

#endif
